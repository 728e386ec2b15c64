#include "Pallisande/Widgets/FocusRing.h"

#include "Pallisande/Widgets/Theme.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCalendarWidget>
#include <QFocusEvent>
#include <QFocusFrame>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QVariant>

namespace Pallisande {

namespace {

constexpr const char* cornerProperty = "focusCorner";

bool isField(const QWidget* widget)
{
    return qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QPlainTextEdit*>(widget);
}

bool comesBack(Qt::FocusReason reason)
{
    return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason
        || reason == Qt::MenuBarFocusReason;
}

} // namespace

FocusRing::FocusRing(QObject* parent)
    : QObject(parent)
{
    qApp->installEventFilter(this);
}

void FocusRing::setCorner(QWidget* widget, int radius) { widget->setProperty(cornerProperty, radius); }

int FocusRing::cornerOf(const QWidget* widget)
{
    const auto corner = widget->property(cornerProperty);
    if (corner.isValid())
        return corner.toInt();
    const bool drawsRows = qobject_cast<const QAbstractItemView*>(widget)
        || (qobject_cast<const QAbstractScrollArea*>(widget) && !isField(widget));
    return drawsRows || widget->isWindow() ? none : Radius::field;
}

bool FocusRing::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::FocusIn && event->type() != QEvent::FocusOut)
        return false;
    auto* widget = qobject_cast<QWidget*>(watched);
    if (!widget)
        return false;
    const auto reason = static_cast<QFocusEvent*>(event)->reason();
    if (event->type() == QEvent::FocusOut) {
        m_last = comesBack(reason) && m_frame && m_frame->widget() == widget ? widget : nullptr;
        show(nullptr);
    } else if (cornerOf(widget) != none) {
        const bool byKeyboard = comesBack(reason) ? m_last == widget : reason != Qt::MouseFocusReason;
        show(isField(widget) || byKeyboard ? widget : nullptr);
    }
    return false;
}

void FocusRing::show(QWidget* widget)
{
    if (!widget) {
        if (m_frame)
            m_frame->setWidget(nullptr);
        return;
    }
    // A frame belongs to the window of its widget and goes with it, so each time a new one is as cheap.
    delete m_frame;
    m_frame = new QFocusFrame(widget->window());
    m_frame->setWidget(widget);
}

} // namespace Pallisande
