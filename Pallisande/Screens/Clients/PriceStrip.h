#pragma once

#include "Pallisande/Model/AppModel.h"

#include <QWidget>

#include <functional>
#include <optional>

class QPushButton;
class QToolButton;

namespace Pallisande {

class Label;

// Says how many jobs have another price since this client came on show, because of what one card holds, and
// offers to keep their rate. It asks nothing before a change is made: what was typed counts at once, and as
// soon as it is taken back the strip is gone.
class PriceStrip : public QWidget {
    Q_OBJECT

public:
    // `restore` gives a client back what that card held before.
    using Restore = std::function<void(Client& client, const Client& before)>;

    PriceStrip(AppModel& model, Restore restore, QWidget* parent);

    void show(const Client& client);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void dress();
    void keepRates();
    void forget(); // Prices are compared with those of now.

    AppModel& m_model;
    Restore m_restore;
    std::optional<Client> m_before;
    Label* m_sentence;
    QPushButton* m_keep;
    QToolButton* m_dismiss;
};

} // namespace Pallisande
