#include "Pallisande/Widgets/Buttons.h"

#include <QVariant>

namespace Pallisande {

namespace {

constexpr const char* kindProperty = "buttonKind";

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
    auto* button = new QPushButton(text, parent);
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
