#include "Pallisande/Screens/Jobs/JobCard.h"

#include "Pallisande/Screens/Text.h"

#include <QAction>

namespace Pallisande {

void JobPart::showJob(const Base::Uuid& id)
{
    if (id != m_id)
        revert();
    m_id = id;
    if (job())
        refresh();
}

const Client* JobPart::client() const
{
    const auto* const shown = job();
    return shown ? model().client(shown->clientID) : nullptr;
}

QString JobPart::readOnlyReason() const
{
    if (model().canEdit())
        return {};
    const auto& reason = model().readOnlyText();
    return reason.empty() ? QStringLiteral("The library can’t be changed now.") : qt(reason);
}

QString JobPart::lockReason() const
{
    const auto reason = readOnlyReason();
    const auto lock = reason.isEmpty() && job() ? model().jobs().lockText(*job()) : std::nullopt;
    return lock ? qt(*lock) : reason;
}

bool JobPart::edit(LineField& field, const std::string& name, const std::function<void(Job&)>& change)
{
    if (model().jobs().edit(m_id, name, change))
        return true;
    field.setProblem(model().problem() ? qt(model().problem()->text) : QString());
    return false;
}

void setLocked(QLineEdit* field, const QString& reason)
{
    field->setReadOnly(!reason.isEmpty());
    field->setToolTip(reason);
}

QPushButton* actionButton(QAction* action, const QString& text, ButtonKind kind, QWidget* parent)
{
    auto* button = makeButton(text, kind, parent);
    const auto follow = [button, action] {
        button->setEnabled(action->isEnabled());
        button->setToolTip(action->isEnabled() ? QString() : action->toolTip());
    };
    QObject::connect(action, &QAction::changed, button, follow);
    QObject::connect(button, &QPushButton::clicked, action, &QAction::trigger);
    follow();
    return button;
}

} // namespace Pallisande
