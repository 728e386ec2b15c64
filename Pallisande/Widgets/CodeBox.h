#pragma once

#include "Pallisande/Widgets/ComboBox.h"

#include <utility>
#include <vector>

namespace Pallisande {

// A long list of codes to search, each with a text that tells what it is: currencies, time zones. A code
// that isn’t among them stands first while it is the one chosen.
class CodeBox : public ComboBox {
    Q_OBJECT

public:
    using Choices = std::vector<std::pair<QString, QString>>; // Code and text.

    CodeBox(const Choices& choices, QWidget* parent = nullptr);

    QString code() const { return m_code; }
    void setCode(const QString& code);

signals:
    void chosen(const QString& code); // By the user, and another than before.

private:
    QString m_code;
    bool m_hasForeign = false; // The first one isn’t of the list.
};

} // namespace Pallisande
