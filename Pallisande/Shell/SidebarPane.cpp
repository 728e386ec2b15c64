#include "Pallisande/Shell/SidebarPane.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/LineField.h"
#include "Pallisande/Widgets/SidebarView.h"
#include "Pallisande/Widgets/Theme.h"

#include <QMenu>
#include <QVBoxLayout>

namespace Pallisande {

SidebarPane::SidebarPane(AppModel& model, Commands& commands, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_sections(new SidebarView(this))
    , m_foot(new QToolButton(this))
{
    setAutoFillBackground(true);
    m_foot->setObjectName(QStringLiteral("saveState"));
    m_foot->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_foot->setFocusPolicy(Qt::TabFocus);
    auto* menu = new QMenu(m_foot);
    commands.fill(*menu, { Command::showLibraryFolder, Command::backUpNow });
    menu->addAction(QStringLiteral("Library &Settings…"), this, &SidebarPane::libraryPageWanted);
    m_menu = menu;
    m_foot->setPopupMode(QToolButton::InstantPopup);
    connect(m_foot, &QToolButton::clicked, this, [this] {
        if (!m_foot->menu())
            m_menu->popup(m_foot->mapToGlobal(QPoint(0, -m_menu->sizeHint().height())));
    });
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, Space::small);
    box->setSpacing(0);
    box->addWidget(m_sections, 1);
    auto* foot = new QHBoxLayout;
    foot->setContentsMargins(Space::small, 0, Space::small, 0);
    foot->addWidget(m_foot, 0, Qt::AlignLeft);
    box->addLayout(foot);

    connect(m_sections, &SidebarView::chosen, this, [this](int place) {
        if (place < 0 || place == static_cast<int>(m_model.section()))
            return;
        commitFocusedField(window());
        m_model.setSection(AppSection(place));
    });
    connect(&model, &AppModel::sectionChanged, this,
        [this] { m_sections->setCurrent(static_cast<int>(m_model.section())); });
    connect(&model, &AppModel::badgesChanged, this, &SidebarPane::refreshBadges);
    connect(&model, &AppModel::saveStateChanged, this, &SidebarPane::refreshFoot);
    connect(&model, &AppModel::stateChanged, this, &SidebarPane::refreshFoot);
    refreshBadges();
    refreshFoot();
    m_sections->setCurrent(static_cast<int>(model.section()));
    dress();
}

void SidebarPane::setNarrow(bool isNarrow)
{
    if (m_sections->isNarrow() == isNarrow)
        return;
    m_sections->setNarrow(isNarrow);
    dress();
}

void SidebarPane::refreshBadges()
{
    const auto& badges = m_model.badges();
    const auto due = badges.overdueJobs + badges.jobsDueToday;
    auto deadlines = QStringLiteral("Deadlines");
    if (badges.overdueJobs > 0)
        deadlines += QStringLiteral(", %1 overdue").arg(badges.overdueJobs);
    if (badges.jobsDueToday > 0)
        deadlines += QStringLiteral(", %1 due today").arg(badges.jobsDueToday);
    m_sections->setItems({
        { .icon = Icon::clock,
            .title = QStringLiteral("Deadlines"),
            .badge = static_cast<int>(due),
            .isAlarming = badges.overdueJobs > 0,
            .spoken = deadlines },
        { .icon = Icon::list,
            .title = QStringLiteral("Jobs"),
            .badge = static_cast<int>(badges.openJobs),
            .spoken = badges.openJobs > 0 ? QStringLiteral("Jobs, %1 open").arg(badges.openJobs)
                                          : QStringLiteral("Jobs") },
        { .icon = Icon::person, .title = QStringLiteral("Clients") },
        { .icon = Icon::invoice,
            .title = QStringLiteral("Invoices"),
            .badge = static_cast<int>(badges.overdueInvoices),
            .isAlarming = true,
            .spoken = badges.overdueInvoices > 0
                ? QStringLiteral("Invoices, %1 overdue").arg(badges.overdueInvoices)
                : QStringLiteral("Invoices") },
    });
}

void SidebarPane::refreshFoot()
{
    Icon icon = Icon::check;
    auto text = QStringLiteral("Saved");
    if (m_model.isOpening()) {
        icon = Icon::folder;
        text = QStringLiteral("Opening…");
    } else if (!m_model.canEdit()) {
        icon = Icon::lock;
        text = QStringLiteral("Read-only");
    } else if (m_model.saveState() == SaveState::failed) {
        icon = Icon::warning;
        text = QStringLiteral("Not saved");
    }
    auto tip = qt(m_model.folder().string());
    if (const auto saved = m_model.lastSaved()) {
        const auto at = m_model.services().calendar.components(*saved);
        tip += QStringLiteral("\nLast saved %1, %2")
                   .arg(qt(Formats::day(at.day)), qt(m_model.formats().time(at)));
    }
    const bool isNarrow = m_sections->isNarrow();
    m_foot->setMenu(isNarrow ? nullptr : m_menu); // There is no room for its arrow.
    m_foot->setIcon(themedIcon(icon));
    m_foot->setText(text);
    m_foot->setAccessibleName(text);
    m_foot->setToolButtonStyle(isNarrow ? Qt::ToolButtonIconOnly : Qt::ToolButtonTextBesideIcon);
    m_foot->setToolTip(isNarrow ? text + QLatin1Char('\n') + tip : tip);
}

void SidebarPane::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void SidebarPane::dress()
{
    const auto& theme = Theme::of(this);
    setPalette(theme.palette(theme.colours.sidebar));
    const bool isNarrow = m_sections->isNarrow();
    setMinimumWidth(isNarrow ? SidebarView::narrowWidth : theme.scaled(SidebarView::leastWidth));
    setMaximumWidth(isNarrow ? SidebarView::narrowWidth : theme.scaled(SidebarView::mostWidth));
    refreshFoot();
}

} // namespace Pallisande
