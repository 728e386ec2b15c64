#include "Pallisande/Screens/Deadlines/BoardView.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Screens/Deadlines/CardDelegate.h"
#include "Pallisande/Screens/Jobs/JobDrops.h"
#include "Pallisande/Screens/RecordListView.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Chip.h"
#include "Pallisande/Widgets/FocusRing.h"
#include "Pallisande/Widgets/Painting.h"

#include <QContextMenuEvent>
#include <QMenu>

#include <algorithm>

namespace Pallisande {

// The cards of all lanes, one lane after the other.
class BoardModel final : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_cards.size());
    }
    const DeadlineCard& at(int row) const { return m_cards[static_cast<std::size_t>(row)]; }
    QVariant data(const QModelIndex& index, int role) const override
    {
        if (!index.isValid() || index.row() >= rowCount())
            return {};
        const auto& card = at(index.row());
        switch (role) {
        case titleRole:
            return qt(card.title);
        case Qt::AccessibleTextRole:
            return qt(card.spoken);
        case detailRole:
            return qt(card.clientAndPair);
        case figureRole:
            return qt(card.price);
        case chipRole:
            return QVariant::fromValue(Chip::of(card.status));
        case placeholderRole:
            return card.isUntitled;
        case warningRole:
            return card.hasProblems ? QStringLiteral("Something is wrong with its price.") : QString();
        case dueRole:
            return qt(card.due);
        case dueHereRole:
            return qt(card.dueHere);
        case nearnessRole:
            return qt(card.nearness);
        case overdueRole:
            return card.isOverdue;
        case dropRole:
            return index.row() == m_dropRow;
        default:
            return {};
        }
    }
    void show(const DeadlineBoard& board)
    {
        beginResetModel();
        m_cards.clear();
        for (const auto& lane : board.lanes)
            m_cards.insert(m_cards.end(), lane.begin(), lane.end());
        m_dropRow = -1;
        endResetModel();
    }
    bool markDrop(int row) { return std::exchange(m_dropRow, row) != row; }

private:
    std::vector<DeadlineCard> m_cards;
    int m_dropRow = -1;
};

namespace {

constexpr int headingGap = Space::small, laneGap = Space::group;

Tone toneOf(DeadlineLane lane)
{
    switch (lane) {
    case DeadlineLane::overdue:
        return Tone::red;
    case DeadlineLane::today:
        return Tone::amber;
    case DeadlineLane::tomorrow:
        return Tone::blue;
    default:
        return Tone::grey;
    }
}

} // namespace

BoardView::BoardView(AppModel& model, Commands& commands, QWidget* parent)
    : QAbstractItemView(parent)
    , m_model(model)
    , m_commands(commands)
    , m_cards(new BoardModel(this))
{
    setObjectName(QStringLiteral("board"));
    setAccessibleName(QStringLiteral("Deadlines"));
    setModel(m_cards);
    setItemDelegate(new CardDelegate(this));
    setFrameShape(QFrame::NoFrame);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMouseTracking(true);
    viewport()->setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_Hover);
    viewport()->setAutoFillBackground(false);
    setAcceptDrops(true);
    FocusRing::setCorner(this, FocusRing::none);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this, &BoardView::handSelection);
    connect(this, &QAbstractItemView::doubleClicked, this, &BoardView::openWanted);
    connect(&model, &AppModel::selectionChanged, this, [this](AppSection section) {
        if (section == AppSection::jobs && isVisible())
            takeSelection();
    });
}

int BoardView::cardCount() const { return m_cards->rowCount(); }

const DeadlineCard* BoardView::card(const QModelIndex& index) const
{
    return index.isValid() ? &m_cards->at(index.row()) : nullptr;
}

void BoardView::refresh()
{
    m_isTaking = true;
    m_cards->show(m_model.deadlines().board());
    m_isTaking = false;
    arrange();
    takeSelection();
}

// --- Places

void BoardView::arrange()
{
    const auto& theme = Theme::of(this);
    const auto& board = m_model.deadlines().board();
    const int least = theme.scaled(CardDelegate::leastWidth), gap = CardDelegate::gap;
    const int columns = std::max(1, (width() + gap) / (least + gap));
    const int across
        = std::min(theme.scaled(CardDelegate::mostWidth), (width() - gap * (columns - 1)) / columns);
    m_lanes.clear();
    m_places.assign(static_cast<std::size_t>(m_cards->rowCount()), {});
    int y = 0, card = 0;
    for (std::size_t kind = 0; kind < board.lanes.size(); ++kind) {
        const auto count = static_cast<int>(board.lanes[kind].size());
        const auto lane = DeadlineLane(kind);
        if (card + count > m_cards->rowCount()) // It is about to be shown anew.
            break;
        if (count == 0 && (lane != DeadlineLane::today || m_cards->rowCount() == 0))
            continue;
        const int heading = theme.lineHeight(TextStyle::heading);
        m_lanes.push_back({ lane, QRect(0, y, width(), heading), card, count });
        y += heading + headingGap;
        if (count == 0)
            y += theme.lineHeight(TextStyle::body);
        for (int first = card; first < card + count; first += columns) {
            const int end = std::min(first + columns, card + count);
            bool hasTwoZones = false;
            for (int place = first; place < end; ++place)
                hasTwoZones = hasTwoZones || !m_cards->at(place).dueHere.empty();
            const int height = CardDelegate::height(theme, hasTwoZones);
            for (int place = first; place < end; ++place)
                m_places[static_cast<std::size_t>(place)]
                    = QRect((place - first) * (across + gap), y, across, height);
            y += height + (end < card + count ? gap : 0);
        }
        card += count;
        y += laneGap;
    }
    setFixedHeight(std::max(0, y - laneGap) + 2);
    viewport()->update();
}

QRect BoardView::visualRect(const QModelIndex& index) const
{
    const auto row = static_cast<std::size_t>(index.row());
    return index.isValid() && row < m_places.size() ? m_places[row] : QRect();
}

QModelIndex BoardView::indexAt(const QPoint& point) const
{
    for (std::size_t place = 0; place < m_places.size(); ++place) {
        if (m_places[place].contains(point))
            return m_cards->index(static_cast<int>(place));
    }
    return {};
}

void BoardView::scrollTo(const QModelIndex& index, ScrollHint)
{
    auto place = visualRect(index);
    if (!place.isValid())
        return;
    for (const auto& lane : m_lanes) { // The heading of its lane belongs to the first cards.
        if (index.row() >= lane.first && index.row() < lane.first + lane.count
            && place.top() == visualRect(m_cards->index(lane.first)).top())
            place.setTop(lane.heading.top());
    }
    emit placeWanted(place);
}

QModelIndex BoardView::neighbour(const QModelIndex& from, int direction) const
{
    const auto place = visualRect(from);
    QModelIndex best;
    for (int row = from.row() + direction; row >= 0 && row < m_cards->rowCount(); row += direction) {
        const auto index = m_cards->index(row);
        const auto other = visualRect(index);
        if (other.top() == place.top())
            continue;
        if (best.isValid() && other.top() != visualRect(best).top())
            break;
        const auto distance = [&](const QRect& area) { return std::abs(area.left() - place.left()); };
        if (!best.isValid() || distance(other) < distance(visualRect(best)))
            best = index;
    }
    return best.isValid() ? best : from;
}

QModelIndex BoardView::moveCursor(CursorAction action, Qt::KeyboardModifiers)
{
    const int last = m_cards->rowCount() - 1;
    const auto now = currentIndex();
    if (last < 0)
        return {};
    if (!now.isValid())
        return m_cards->index(0);
    switch (action) {
    case MoveLeft:
    case MovePrevious:
        return m_cards->index(std::max(0, now.row() - 1));
    case MoveRight:
    case MoveNext:
        return m_cards->index(std::min(last, now.row() + 1));
    case MoveUp:
    case MovePageUp:
        return neighbour(now, -1);
    case MoveDown:
    case MovePageDown:
        return neighbour(now, 1);
    case MoveHome:
        return m_cards->index(0);
    case MoveEnd:
        return m_cards->index(last);
    }
    return now;
}

// --- Selection

void BoardView::setSelection(const QRect& area, QItemSelectionModel::SelectionFlags flags)
{
    const auto index = indexAt(area.topLeft());
    selectionModel()->select(index.isValid() ? QItemSelection(index, index) : QItemSelection(), flags);
}

QRegion BoardView::visualRegionForSelection(const QItemSelection& selection) const
{
    QRegion region;
    for (const auto& index : selection.indexes())
        region += visualRect(index);
    return region;
}

void BoardView::takeSelection()
{
    const auto id = m_model.selection(AppSection::deadlines);
    m_isTaking = true;
    QModelIndex found;
    for (int row = 0; id && row < m_cards->rowCount() && !found.isValid(); ++row) {
        if (m_cards->at(row).id == *id)
            found = m_cards->index(row);
    }
    if (found != currentIndex() || (found.isValid() && !selectionModel()->isSelected(found)))
        selectionModel()->setCurrentIndex(found, QItemSelectionModel::ClearAndSelect);
    m_isTaking = false;
    m_commands.setSelected(AppSection::deadlines, selected());
    viewport()->update();
}

std::vector<Base::Uuid> BoardView::selected() const
{
    const auto* const shown = selectionModel()->isSelected(currentIndex()) ? card(currentIndex()) : nullptr;
    return shown ? std::vector { shown->id } : std::vector<Base::Uuid>();
}

void BoardView::handSelection()
{
    if (!m_isTaking && currentIndex().isValid())
        m_model.select(AppSection::deadlines, m_cards->at(currentIndex().row()).id);
}

void BoardView::focusInEvent(QFocusEvent* event)
{
    QAbstractItemView::focusInEvent(event);
    if (!currentIndex().isValid() && event->reason() != Qt::MouseFocusReason && m_cards->rowCount() > 0)
        setCurrentIndex(m_cards->index(0));
}

void BoardView::keyPressEvent(QKeyEvent* event)
{
    const bool isPlain = !(event->modifiers() & ~Qt::KeypadModifier);
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && isPlain) {
        if (currentIndex().isValid())
            emit openWanted();
    } else if (event->key() == Qt::Key_Space && isPlain) {
        emit inspectorWanted();
    } else if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
        const auto place = visualRect(currentIndex()).center();
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, place, viewport()->mapToGlobal(place));
        contextMenuEvent(&menu);
    } else {
        QAbstractItemView::keyPressEvent(event);
    }
}

void BoardView::contextMenuEvent(QContextMenuEvent* event)
{
    const bool isMouse = event->reason() == QContextMenuEvent::Mouse;
    const auto index = isMouse ? indexAt(viewport()->mapFromGlobal(event->globalPos())) : currentIndex();
    if (index.isValid())
        setCurrentIndex(index);
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (index.isValid())
        m_commands.fill(*menu,
            { Command::statusQuote, Command::statusInProgress, Command::statusDelivered,
                Command::statusCancelled, Command::markDelivered, std::nullopt, Command::importAnalysis,
                Command::typeCounts, std::nullopt, Command::makeInvoice, Command::duplicateJob,
                Command::openClient, Command::deleteJob });
    else
        m_commands.fill(*menu, { Command::newJob, Command::countDocuments });
    menu->popup(isMouse ? event->globalPos() : viewport()->mapToGlobal(visualRect(index).center()));
    event->accept();
}

// --- Painting

void BoardView::paintHeading(QPainter& painter, const Lane& lane) const
{
    const auto& theme = Theme::of(this);
    const QRectF area(lane.heading);
    const double bar = theme.scaled(14);
    drawSurface(painter, QRectF(area.left(), area.center().y() - bar / 2, 4, bar), 2,
        theme.colours.tone(toneOf(lane.kind)).text);
    auto text = area.adjusted(Space::medium, 0, 0, 0);
    const auto name = qt(title(lane.kind));
    painter.setFont(theme.font(TextStyle::heading));
    painter.setPen(theme.colours.text);
    drawLine(painter, text, name);
    text.setLeft(text.left() + painter.fontMetrics().horizontalAdvance(name) + 1);
    painter.setPen(theme.colours.muted);
    if (lane.count > 0)
        drawLine(painter, text, QStringLiteral(" · %1").arg(lane.count));
    if (lane.count > 0)
        return;
    painter.setFont(theme.font(TextStyle::body));
    drawLine(painter, area.translated(Space::medium, area.height() + headingGap - Space::tiny),
        QStringLiteral("Nothing is due today."));
}

void BoardView::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    const auto hovered = indexAt(viewport()->mapFromGlobal(QCursor::pos()));
    for (const auto& lane : m_lanes) {
        if (lane.heading.adjusted(0, 0, 0, 2 * lane.heading.height()).intersects(event->rect()))
            paintHeading(painter, lane);
    }
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    for (std::size_t place = 0; place < m_places.size(); ++place) {
        if (!m_places[place].intersects(event->rect()))
            continue;
        const auto index = m_cards->index(static_cast<int>(place));
        auto card = option;
        card.rect = m_places[place];
        card.widget = this;
        card.state.setFlag(QStyle::State_Active, isActiveWindow());
        card.state.setFlag(QStyle::State_Selected, selectionModel()->isSelected(index));
        card.state.setFlag(QStyle::State_MouseOver, index == hovered && viewport()->underMouse());
        card.state.setFlag(QStyle::State_HasFocus, hasFocus() && index == currentIndex());
        card.state.setFlag(
            QStyle::State_KeyboardFocusChange, window()->testAttribute(Qt::WA_KeyboardFocusChange));
        itemDelegate()->paint(&painter, card, index);
    }
}

void BoardView::resizeEvent(QResizeEvent* event)
{
    QAbstractItemView::resizeEvent(event);
    if (event->oldSize().width() != event->size().width())
        arrange();
}

void BoardView::changeEvent(QEvent* event)
{
    QAbstractItemView::changeEvent(event);
    if (event->type() != QEvent::StyleChange)
        return;
    const auto& theme = Theme::of(this);
    setPalette(theme.palette(theme.colours.window));
    arrange();
}

// --- Dropping

bool BoardView::takes(const std::vector<std::filesystem::path>& files, const QModelIndex& index) const
{
    return index.isValid() && JobDrops::takes(m_model, files, m_cards->at(index.row()).id);
}

void BoardView::markDrop(int row)
{
    if (m_cards->markDrop(row))
        viewport()->update();
}

void BoardView::dragEnterEvent(QDragEnterEvent* event) { dragMoveEvent(event); }

void BoardView::dragMoveEvent(QDragMoveEvent* event)
{
    const auto index = indexAt(event->position().toPoint());
    const bool isTaken = takes(filesOf(event->mimeData()), index);
    markDrop(isTaken ? index.row() : -1);
    event->setDropAction(isTaken ? Qt::CopyAction : Qt::IgnoreAction);
    event->accept();
}

void BoardView::dragLeaveEvent(QDragLeaveEvent*) { markDrop(-1); }

void BoardView::dropEvent(QDropEvent* event)
{
    const auto files = filesOf(event->mimeData());
    const auto index = indexAt(event->position().toPoint());
    markDrop(-1);
    if (!takes(files, index))
        return event->ignore();
    event->setDropAction(Qt::CopyAction);
    event->accept();
    const auto id = m_cards->at(index.row()).id;
    m_model.select(AppSection::deadlines, id);
    JobDrops::drop(m_model, this, files, id);
}

} // namespace Pallisande
