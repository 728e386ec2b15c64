#include "Pallisande/Screens/ListDetailPage.h"

#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/LineField.h"
#include "Pallisande/Widgets/Theme.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace Pallisande {

namespace {

constexpr int leastListWidth = 300, usualListWidth = 340, mostListWidth = 420;

std::string splitterKey(AppSection section)
{
    return "splitter." + std::to_string(static_cast<int>(section));
}

Icon iconOf(AppSection section)
{
    return section == AppSection::clients ? Icon::person
        : section == AppSection::invoices ? Icon::invoice
                                          : Icon::list;
}

} // namespace

ListDetailPage::ListDetailPage(const ScreenServices& services, RecordListView::Source source, QWidget* parent)
    : SectionPage(services, parent)
    , m_section(source.section)
{
    m_whole = new QStackedWidget(this);
    m_splitter = new QSplitter(Qt::Horizontal, m_whole);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(1);
    auto* side = new QWidget(m_splitter);
    side->setMinimumWidth(leastListWidth);
    side->setMaximumWidth(mostListWidth);
    m_left = new QStackedWidget(side);
    m_list = new RecordListView(model(), commands(), std::move(source), m_left);
    m_noHits = new EmptyPage(Icon::magnifier, {}, m_left);
    m_clearSearch = m_noHits->addButton(QStringLiteral("Clear Search"), ButtonKind::quiet);
    m_clearSearch->setObjectName(QStringLiteral("clearSearch"));
    m_left->addWidget(m_list);
    m_left->addWidget(m_noHits);
    m_leftColumn = new QVBoxLayout(side);
    m_leftColumn->setContentsMargins(0, 0, 0, 0);
    m_leftColumn->setSpacing(0);
    m_leftColumn->addWidget(m_left, 1);
    m_right = new QStackedWidget(m_splitter);
    m_nothingSelected = new EmptyPage(iconOf(m_section), {}, m_right);
    m_right->addWidget(m_nothingSelected);
    m_splitter->setStretchFactor(0, 0);
    m_splitter->setStretchFactor(1, 1);
    const auto kept = view().text(splitterKey(m_section));
    const int width = kept ? std::atoi(kept->c_str()) : usualListWidth;
    m_splitter->setSizes({ width, 3 * usualListWidth });
    m_whole->addWidget(m_splitter);
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->addWidget(m_whole);

    connect(m_splitter, &QSplitter::splitterMoved, this,
        [this] { view().setText(splitterKey(m_section), std::to_string(m_splitter->sizes().front())); });
    connect(m_clearSearch, &QPushButton::clicked, this, [this] { model().setSearch(m_section, {}); });
    connect(m_list, &RecordListView::detailWanted, this, [this] { focusDetail(); });
    connect(m_list, &RecordListView::countChanged, this, &ListDetailPage::refresh);
    connect(m_list, &RecordListView::selectedChanged, this, &ListDetailPage::showCurrent);
    connect(&model(), &AppModel::libraryChanged, this, &ListDetailPage::refresh);
    connect(&model(), &AppModel::searchChanged, this, &ListDetailPage::refresh);
    connect(&model(), &AppModel::listChanged, this, [this](AppSection section) {
        if (section == m_section)
            refresh(); // A list that is hidden for want of rows doesn't look itself.
    });
    connect(&model(), &AppModel::selectionChanged, this, [this](AppSection section) {
        if (section == m_section)
            showCurrent();
    });
}

std::vector<QWidget*> ListDetailPage::panes() const { return { m_list, m_detail }; }

void ListDetailPage::focusList()
{
    if (m_whole->currentWidget() != m_splitter)
        return m_empty->setFocus();
    if (m_left->currentWidget() != m_list)
        return m_clearSearch->setFocus();
    m_list->selectFirst();
    m_list->setFocus(Qt::ShortcutFocusReason);
}

void ListDetailPage::focusDetail()
{
    if (!m_detail || m_right->currentWidget() != m_detail)
        return;
    for (auto* widget = m_detail->nextInFocusChain(); widget && widget != m_detail;
         widget = widget->nextInFocusChain()) {
        if (m_detail->isAncestorOf(widget) && widget->isVisible() && widget->isEnabled()
            && widget->focusPolicy() & Qt::TabFocus)
            return widget->setFocus(Qt::TabFocusReason);
    }
}

bool ListDetailPage::carryOut(Command command)
{
    if (command == Command::selectAll && m_whole->currentWidget() == m_splitter) {
        m_list->selectAll();
        return true;
    }
    if (command == Command::copyRows) {
        QStringList rows;
        for (const auto& id : m_list->selected())
            rows += m_list->textOf(id);
        QGuiApplication::clipboard()->setText(rows.join(QLatin1Char('\n')));
        return true;
    }
    return false;
}

void ListDetailPage::setDetail(QWidget* detail)
{
    m_detail = detail;
    m_right->addWidget(detail);
    if (auto* page = qobject_cast<DetailPage*>(detail))
        connect(page, &DetailPage::listWanted, this, [this] { focusList(); });
    refresh();
}

void ListDetailPage::setEmptyPage(EmptyPage* page)
{
    m_empty = page;
    m_whole->addWidget(page);
    refresh();
}

void ListDetailPage::setNothingSelected(const QString& sentence) { m_nothingSelected->setSentence(sentence); }

void ListDetailPage::setFoot(QWidget* foot) { m_leftColumn->addWidget(foot); }

void ListDetailPage::showEvent(QShowEvent* event)
{
    SectionPage::showEvent(event);
    refresh();
    showCurrent();
}

// What is typed into a field belongs to the record that was on show.
void ListDetailPage::hideEvent(QHideEvent* event)
{
    commitFocusedField(window());
    SectionPage::hideEvent(event);
}

void ListDetailPage::refresh()
{
    if (!isVisible())
        return;
    if (m_empty)
        m_whole->setCurrentWidget(hasRecords() ? static_cast<QWidget*>(m_splitter) : m_empty);
    const auto& search = model().search(m_section);
    const bool isEmpty = !m_list->hasRows();
    m_noHits->setSentence(search.empty() ? QStringLiteral("Nothing passes the filters above.")
                                         : QStringLiteral("Nothing matches “%1”.").arg(qt(search)));
    m_clearSearch->setVisible(!search.empty());
    m_left->setCurrentWidget(isEmpty ? static_cast<QWidget*>(m_noHits) : m_list);
}

void ListDetailPage::showCurrent()
{
    if (!isVisible() || !m_detail)
        return;
    const auto id = model().selection(m_section);
    if (id && id != m_shown) {
        commitFocusedField(window());
        m_shown = id;
        showRecord(*id);
    } else if (!id) {
        m_shown.reset();
    }
    m_right->setCurrentWidget(id ? m_detail : m_nothingSelected);
}

} // namespace Pallisande
