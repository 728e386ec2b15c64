#include "Pallisande/Shell/Toolbar.h"

#include "Pallisande/Screens/Text.h"
#include "Pallisande/Shell/ActionButton.h"
#include "Pallisande/Shell/MenuBar.h"
#include "Pallisande/Shell/SearchField.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/Painting.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>

namespace Pallisande {

namespace {

constexpr int toolbarHeight = 52;

QWidget* makeNewInvoice(AppModel& model, QWidget* parent)
{
    auto* button = makeButton(QStringLiteral("New Invoice"), Icon::plus, ButtonKind::primary, parent);
    button->setObjectName(QStringLiteral("newInvoice"));
    button->setMenu(makeNewInvoiceMenu(model, button));
    const auto dress = [button, &model] {
        button->setEnabled(model.canEdit());
        button->setToolTip(model.canEdit() ? QString() : qt(model.readOnlyText()));
    };
    QObject::connect(&model, &AppModel::stateChanged, button, dress);
    dress();
    return button;
}

} // namespace

Toolbar::Toolbar(AppModel& model, Commands& commands, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_title(new Label({}, this, TextStyle::title))
    , m_count(new Label({}, this, TextStyle::small, Ink::muted))
    , m_first(new QHBoxLayout)
    , m_second(new QHBoxLayout)
    , m_filterHost(new QWidget(this))
    , m_search(new SearchField(model, this))
{
    setObjectName(QStringLiteral("toolbar"));
    setAccessibleName(QStringLiteral("Toolbar"));
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(Space::large, Space::small, Space::large, Space::small);
    rows->setSpacing(0);
    rows->addLayout(m_first);
    rows->addLayout(m_second);
    auto* box = m_first;
    box->setSpacing(Space::small);
    m_filters = new QHBoxLayout(m_filterHost);
    m_filters->setContentsMargins(0, 0, 0, 0);
    m_filters->setSpacing(Space::small);
    box->addWidget(m_title);
    box->addSpacing(Space::small);
    box->addWidget(m_filterHost);
    box->addStretch(1);
    box->addWidget(m_count);
    box->addSpacing(Space::tiny);
    box->addWidget(m_search, 2);
    m_inspector = makeIconButton(Icon::inspector, QStringLiteral("Inspector or Preview"), this);
    m_inspector->setObjectName(QStringLiteral("inspectorButton"));
    m_inspector->setCheckable(true);
    auto* action = commands.action(Command::inspector);
    const auto follow = [this, action] {
        m_inspector->setVisible(action->isEnabled());
        m_inspector->setChecked(action->isChecked());
    };
    connect(action, &QAction::changed, this, follow);
    connect(m_inspector, &QToolButton::clicked, action, &QAction::trigger);
    follow();
    box->addWidget(m_inspector);
    m_main = {
        { AppSection::deadlines,
            makeActionButton(commands.action(Command::newJob), ButtonKind::primary, this) },
        { AppSection::clients,
            makeActionButton(commands.action(Command::newClient), ButtonKind::primary, this) },
        { AppSection::invoices, makeNewInvoice(model, this) },
    };
    m_main[AppSection::deadlines]->setObjectName(QStringLiteral("newJob"));
    m_main[AppSection::clients]->setObjectName(QStringLiteral("newClient"));
    for (const auto& [section, button] : m_main) {
        button->hide();
        box->addWidget(button);
    }
    m_main[AppSection::jobs] = m_main[AppSection::deadlines];
    connect(m_search, &SearchField::listWanted, this, &Toolbar::listWanted);
    connect(&model, &AppModel::listChanged, this, &Toolbar::refresh);
    connect(&model, &AppModel::libraryChanged, this, &Toolbar::refresh);
    dress();
}

QWidget* Toolbar::filtersOf(SectionPage* page)
{
    auto& row = m_filterRows[page];
    if (row)
        return row;
    row = new QWidget(this);
    auto* box = new QHBoxLayout(row);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(Space::small);
    auto* before = m_search->previousInFocusChain();
    while (!(before->focusPolicy() & Qt::TabFocus)) // Qt orders nothing behind others.
        before = before->previousInFocusChain();
    for (auto* filter : page->filters()) {
        box->addWidget(filter);
        filter->show();
        setTabOrder(before, filter); // They were made with their page, far behind.
        setTabOrder(filter, m_search);
        before = filter;
    }
    m_filters->addWidget(row);
    return row;
}

void Toolbar::showPage(SectionPage* page, AppSection section)
{
    m_page = page;
    m_title->setText(page ? page->title() : QString());
    for (const auto& [other, row] : m_filterRows)
        row->hide();
    for (const auto& [other, button] : m_main)
        button->hide();
    m_search->showSection(section, page ? page->searchHint() : QString());
    if (page) {
        filtersOf(page)->show();
        m_main[section]->show();
    }
    refresh();
}

void Toolbar::refresh()
{
    const auto count = m_page ? m_page->countText() : std::string();
    m_count->setText(qt(count));
    m_count->setVisible(!count.empty());
    placeFilters(false);
    constexpr int comfort = 100; // For the search, which can be narrower than is pleasant.
    if (layout()->minimumSize().width() + comfort > width())
        m_count->hide(); // Gives way first.
    if (layout()->minimumSize().width() > width())
        placeFilters(true);
}

void Toolbar::placeFilters(bool areBelow)
{
    constexpr int place = 2; // Behind the title.
    if (areBelow && m_second->isEmpty()) {
        m_second->addWidget(m_filterHost, 1, Qt::AlignLeft);
        m_second->setContentsMargins(0, Space::small, 0, 0);
    } else if (!areBelow && !m_second->isEmpty()) {
        m_first->insertWidget(place, m_filterHost);
        m_second->setContentsMargins(0, 0, 0, 0);
    }
    m_first->invalidate();
    layout()->activate();
}

void Toolbar::focusFirst()
{
    if (m_search->isVisible())
        return m_search->setFocus(Qt::ShortcutFocusReason);
    for (auto* button : findChildren<QAbstractButton*>()) {
        if (button->isVisible() && button->isEnabled())
            return button->setFocus(Qt::TabFocusReason);
    }
}

// Left and Right walk what stands in it.
void Toolbar::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Left)
        focusNextPrevChild(false);
    else if (event->key() == Qt::Key_Right)
        focusNextPrevChild(true);
    else
        QWidget::keyPressEvent(event);
}

void Toolbar::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    refresh();
}

void Toolbar::paintEvent(QPaintEvent*)
{
    const auto& colours = Theme::of(this).colours;
    QPainter painter(this);
    painter.fillRect(rect(), colours.window);
    drawLineBelow(painter, rect(), colours.border);
}

void Toolbar::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange) {
        dress();
        QMetaObject::invokeMethod(this, &Toolbar::refresh, Qt::QueuedConnection); // What it holds goes first.
    }
}

void Toolbar::dress() { setMinimumHeight(Theme::of(this).scaled(toolbarHeight)); }

} // namespace Pallisande
