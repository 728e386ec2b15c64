#include "Pallisande/Model/DeadlineSection.h"
#include "Pallisande/Screens/Deadlines/BoardView.h"
#include "Pallisande/Screens/Deadlines/DeliveredCard.h"
#include "Pallisande/Screens/Deadlines/JobInspector.h"
#include "Pallisande/Screens/SectionPage.h"
#include "Pallisande/Widgets/EmptyPage.h"
#include "Pallisande/Widgets/Theme.h"

#include <QAction>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace Pallisande {

namespace {

constexpr const char* inspectorKey = "deadlines.inspector";

// The first page: what is due when, and what waits for its invoice.
class DeadlinesPage final : public SectionPage {
public:
    DeadlinesPage(const ScreenServices& services, QWidget* parent);

    QString title() const override { return QStringLiteral("Deadlines"); }
    std::vector<QWidget*> panes() const override { return { m_board, m_delivered, m_inspector }; }
    void focusList() override;
    void focusDetail() override { m_inspector->setFocus(); }
    bool carryOut(Command command) override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void build();
    void refresh();
    void showInspector(bool isShown);
    void open();
    void inspect();

    QStackedWidget* m_whole;
    EmptyPage *m_noClients, *m_noJobs;
    QSplitter* m_splitter;
    QScrollArea* m_scroll;
    BoardView* m_board;
    DeliveredCard* m_delivered;
    JobInspector* m_inspector;
};

DeadlinesPage::DeadlinesPage(const ScreenServices& services, QWidget* parent)
    : SectionPage(services, parent)
{
    build();
    connect(m_board, &BoardView::openWanted, this, &DeadlinesPage::open);
    connect(m_board, &BoardView::inspectorWanted, commands().action(Command::inspector), &QAction::trigger);
    connect(m_board, &BoardView::placeWanted, this, [this](const QRect& place) {
        const auto offset = m_board->mapTo(m_scroll->widget(), QPoint(0, 0));
        const auto wanted = place.translated(offset);
        const int top = m_scroll->verticalScrollBar()->value(), height = m_scroll->viewport()->height();
        if (wanted.bottom() + Space::large > top + height)
            m_scroll->verticalScrollBar()->setValue(wanted.bottom() + Space::large - height);
        if (wanted.top() - Space::large < m_scroll->verticalScrollBar()->value())
            m_scroll->verticalScrollBar()->setValue(wanted.top() - Space::large);
    });
    connect(m_inspector, &JobInspector::openWanted, this, &DeadlinesPage::open);
    connect(&model(), &AppModel::libraryChanged, this, &DeadlinesPage::refresh);
    connect(&model(), &AppModel::timePassed, this, &DeadlinesPage::refresh);
    connect(&model(), &AppModel::stateChanged, this, &DeadlinesPage::refresh);
    connect(&model(), &AppModel::selectionChanged, this, [this](AppSection section) {
        if (section == AppSection::jobs && isVisible())
            inspect();
    });
    showInspector(view().flag(inspectorKey));
}

void DeadlinesPage::build()
{
    m_whole = new QStackedWidget(this);
    m_noClients = new EmptyPage(Icon::clock,
        QStringLiteral("Welcome. Add a client first, then a job for it: its deadline appears here."),
        m_whole);
    auto* newClient = m_noClients->addButton(QStringLiteral("New Client"), ButtonKind::primary);
    connect(newClient, &QPushButton::clicked, commands().action(Command::newClient), &QAction::trigger);
    m_splitter = new QSplitter(Qt::Horizontal, m_whole);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(1);
    m_scroll = new QScrollArea(m_splitter);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    auto* page = new QWidget;
    m_noJobs = new EmptyPage(Icon::check, QStringLiteral("No open jobs. Enjoy the quiet."), page);
    auto* newJob = m_noJobs->addButton(QStringLiteral("New Job"), ButtonKind::plain);
    connect(newJob, &QPushButton::clicked, commands().action(Command::newJob), &QAction::trigger);
    m_board = new BoardView(model(), commands(), page);
    m_delivered = new DeliveredCard(model(), page);
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(Space::page, Space::group, Space::page, Space::page);
    column->setSpacing(Space::page);
    column->addWidget(m_noJobs);
    column->addWidget(m_board);
    column->addWidget(m_delivered);
    column->addStretch();
    m_scroll->setWidget(page);
    m_inspector = new JobInspector(model(), m_splitter);
    m_inspector->setMinimumWidth(300);
    m_splitter->setStretchFactor(0, 1);
    m_splitter->setStretchFactor(1, 0);
    m_splitter->setSizes({ 3 * JobInspector::usualWidth, JobInspector::usualWidth });
    m_whole->addWidget(m_splitter);
    m_whole->addWidget(m_noClients);
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->addWidget(m_whole);
}

void DeadlinesPage::focusList()
{
    if (m_whole->currentWidget() == m_splitter && m_board->isVisible())
        m_board->setFocus(Qt::ShortcutFocusReason);
    else if (auto* const button = m_whole->currentWidget()->findChild<QPushButton*>())
        button->setFocus(Qt::ShortcutFocusReason);
}

bool DeadlinesPage::carryOut(Command command)
{
    if (command != Command::inspector)
        return false;
    showInspector(m_inspector->isHidden());
    return true;
}

void DeadlinesPage::showInspector(bool isShown)
{
    m_inspector->setVisible(isShown);
    view().setFlag(inspectorKey, isShown);
    if (model().section() == AppSection::deadlines)
        commands().action(Command::inspector)->setChecked(isShown);
    inspect();
}

void DeadlinesPage::open()
{
    if (const auto selected = m_board->selected(); !selected.empty())
        model().show(AppSection::jobs, selected.front());
}

void DeadlinesPage::inspect()
{
    const auto selected = m_board->selected();
    m_inspector->showJob(selected.empty() ? std::nullopt : std::optional(selected.front()));
}

void DeadlinesPage::showEvent(QShowEvent* event)
{
    SectionPage::showEvent(event);
    commands().action(Command::inspector)->setChecked(!m_inspector->isHidden());
    refresh();
}

void DeadlinesPage::refresh()
{
    if (!isVisible() || !model().hasLibrary())
        return;
    const bool hasClients = !model().library().clients.empty();
    m_whole->setCurrentWidget(hasClients ? static_cast<QWidget*>(m_splitter) : m_noClients);
    m_board->refresh();
    m_delivered->refresh();
    m_board->setVisible(m_board->cardCount() > 0);
    m_noJobs->setVisible(m_board->cardCount() == 0);
    inspect();
}

} // namespace

SectionPage* makeDeadlinesPage(const ScreenServices& services, QWidget* parent)
{
    return new DeadlinesPage(services, parent);
}

} // namespace Pallisande
