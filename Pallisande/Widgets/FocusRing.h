#pragma once

#include <QObject>
#include <QPointer>

class QFocusFrame;
class QWidget;

namespace Pallisande {

// The one ring around what has the focus: always for fields, for everything else only when the keyboard moved
// it there. Views that draw rows show the focus inside the row instead.
class FocusRing : public QObject {
    Q_OBJECT

public:
    static constexpr int width = 2, gap = 2, margin = width + gap;

    explicit FocusRing(QObject* parent);

    // Widgets that draw their own, or none; the ring's corner is that of the shape that it goes around.
    static void setCorner(QWidget* widget, int radius);
    static int cornerOf(const QWidget* widget);
    static constexpr int none = -1;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void show(QWidget* widget);

    QPointer<QFocusFrame> m_frame;
    QPointer<QWidget> m_last; // Had the ring when the window or a menu took the focus away.
};

} // namespace Pallisande
