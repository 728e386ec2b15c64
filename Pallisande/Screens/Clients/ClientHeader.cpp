#include "Pallisande/Screens/Clients/ClientHeader.h"

#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Chip.h"
#include "Pallisande/Widgets/Label.h"

#include <QAction>
#include <QHBoxLayout>
#include <QMenu>

namespace Pallisande {

ClientHeader::ClientHeader(AppModel&, Commands& commands, QWidget* parent)
    : QWidget(parent)
    , m_name(makeSentence({}, this, TextStyle::title))
    , m_archived(new ChipLabel(archivedChip(), this))
{
    m_name->setObjectName(QStringLiteral("clientTitle"));
    auto* job = makeButton(QStringLiteral("New Job"), Icon::plus, ButtonKind::plain, this);
    auto* action = commands.action(Command::newJob);
    const auto follow = [job, action] {
        job->setEnabled(action->isEnabled());
        job->setToolTip(action->isEnabled() ? QString() : action->toolTip());
    };
    connect(action, &QAction::changed, job, follow);
    connect(job, &QPushButton::clicked, action, &QAction::trigger);
    follow();
    auto* more = new QToolButton(this);
    more->setText(QStringLiteral("⋯"));
    more->setAccessibleName(QStringLiteral("More"));
    more->setToolTip(QStringLiteral("More"));
    more->setObjectName(QStringLiteral("clientMenu"));
    more->setFocusPolicy(Qt::TabFocus);
    more->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(more);
    commands.fill(*menu, { Command::archiveClient, Command::deleteClient });
    more->setMenu(menu);

    auto* box = new QHBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(Space::small);
    box->addWidget(m_name, 1);
    box->addWidget(m_archived, 0, Qt::AlignVCenter);
    box->addWidget(job, 0, Qt::AlignTop);
    box->addWidget(more, 0, Qt::AlignTop);
}

void ClientHeader::show(const Client& client)
{
    m_name->setText(clientTitle(client.name));
    m_name->setInk(client.name.empty() ? Ink::muted : Ink::text);
    m_archived->setVisible(client.archived);
}

QString clientTitle(const std::string& name)
{
    return name.empty() ? QStringLiteral("Unnamed client") : qt(name);
}

Chip archivedChip() { return { Tone::grey, Icon::archive, QStringLiteral("Archived") }; }

} // namespace Pallisande
