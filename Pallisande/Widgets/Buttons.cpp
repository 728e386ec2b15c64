#include "Pallisande/Widgets/Buttons.h"

#include <QKeyEvent>
#include <QVariant>

namespace Pallisande {

namespace {

constexpr const char* kindProperty = "buttonKind";

// Outside of dialogs, Qt leaves it to the desktop whether Return presses the button that has the focus.
class Button : public QPushButton {
public:
    using QPushButton::QPushButton;

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (isReturn && !(event->modifiers() & ~Qt::KeypadModifier) && !event->isAutoRepeat())
            click();
        else
            QPushButton::keyPressEvent(event);
    }
};

} // namespace

void setKind(QAbstractButton* button, ButtonKind kind)
{
    button->setProperty(kindProperty, static_cast<int>(kind));
    button->updateGeometry();
    button->update();
}

ButtonKind kindOf(const QWidget* button)
{
    const auto kind = button ? button->property(kindProperty) : QVariant();
    if (kind.isValid())
        return static_cast<ButtonKind>(kind.toInt());
    return qobject_cast<const QToolButton*>(button) ? ButtonKind::quiet : ButtonKind::plain;
}

QPushButton* makeButton(const QString& text, ButtonKind kind, QWidget* parent)
{
    auto* button = new Button(text, parent);
    button->setAutoDefault(false);
    setKind(button, kind);
    return button;
}

QPushButton* makeButton(const QString& text, Icon icon, ButtonKind kind, QWidget* parent)
{
    auto* button = makeButton(text, kind, parent);
    button->setIcon(themedIcon(icon));
    return button;
}

QToolButton* makeIconButton(Icon icon, const QString& name, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setIcon(themedIcon(icon));
    button->setToolTip(name);
    button->setAccessibleName(name);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

} // namespace Pallisande
