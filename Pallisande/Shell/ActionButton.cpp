#include "Pallisande/Shell/ActionButton.h"

#include <QAction>

namespace Pallisande {

QPushButton* makeActionButton(QAction* action, ButtonKind kind, QWidget* parent)
{
    auto* button = makeButton({}, kind, parent);
    const auto dress = [button, action] {
        auto text = action->text();
        text.remove(QLatin1Char('&'));
        if (text.endsWith(QChar(0x2026)) && !action->shortcut().isEmpty())
            text.chop(1); // A main button promises the thing itself: “New Job”.
        button->setText(text);
        button->setIcon(action->icon());
        button->setEnabled(action->isEnabled());
        button->setToolTip(action->toolTip());
    };
    QObject::connect(action, &QAction::changed, button, dress);
    QObject::connect(button, &QPushButton::clicked, action, &QAction::trigger);
    dress();
    return button;
}

} // namespace Pallisande
