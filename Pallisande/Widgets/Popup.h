#pragma once

#include <QFrame>

class QVBoxLayout;

namespace Pallisande {

// A small surface that opens below a field and goes when something else is clicked or Esc is pressed.
class Popup : public QFrame {
    Q_OBJECT

public:
    explicit Popup(QWidget* opener);

    QVBoxLayout* content() const { return m_content; }
    void showBelow(const QWidget* field); // Or above, where there is more room.

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* m_content;
};

} // namespace Pallisande
