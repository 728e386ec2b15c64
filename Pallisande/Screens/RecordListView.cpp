#include "Pallisande/Screens/RecordListView.h"

#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Painting.h"
#include "Pallisande/Widgets/RowDelegate.h"
#include "Pallisande/Widgets/Theme.h"

#include <QContextMenuEvent>
#include <QDrag>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>

#include <algorithm>
#include <unordered_map>

namespace Pallisande {

namespace {

QString nameOf(AppSection section)
{
    return section == AppSection::clients ? QStringLiteral("Clients")
        : section == AppSection::invoices ? QStringLiteral("Invoices")
                                          : QStringLiteral("Jobs");
}

} // namespace

// The ids that are on show, and the row that would take what is dragged.
class RecordListModel final : public QAbstractListModel {
public:
    RecordListModel(const RecordListView::Source& source, QObject* parent)
        : QAbstractListModel(parent)
        , m_source(source)
    {
    }

    const std::vector<Base::Uuid>& ids() const { return m_ids; }
    int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_ids.size());
    }
    QVariant data(const QModelIndex& index, int role) const override
    {
        if (!index.isValid() || index.row() >= rowCount())
            return {};
        if (role == dropRole)
            return index.row() == m_dropRow;
        return m_source.data(m_ids[static_cast<std::size_t>(index.row())], role);
    }
    Qt::ItemFlags flags(const QModelIndex& index) const override
    {
        return index.isValid() ? Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled
                               : Qt::NoItemFlags;
    }
    int rowOf(const Base::Uuid& id) const
    {
        return static_cast<int>(std::find(m_ids.begin(), m_ids.end(), id) - m_ids.begin());
    }
    void markDrop(int row)
    {
        if (std::exchange(m_dropRow, row) != row && rowCount() > 0)
            emit dataChanged(index(0), index(rowCount() - 1), { dropRole });
    }

    // Only what lies between the rows that stay at the top and at the bottom is taken out and put in.
    void show(const std::vector<Base::Uuid>& ids)
    {
        const auto [oldTop, newTop] = std::mismatch(m_ids.begin(), m_ids.end(), ids.begin(), ids.end());
        const auto top = static_cast<int>(newTop - ids.begin());
        const auto [oldEnd, newEnd] = std::mismatch(m_ids.rbegin(), std::make_reverse_iterator(oldTop),
            ids.rbegin(), std::make_reverse_iterator(newTop));
        const auto below = static_cast<int>(newEnd - ids.rbegin());
        const int oldLast = rowCount() - below - 1, newLast = static_cast<int>(ids.size()) - below - 1;
        if (oldLast >= top) {
            beginRemoveRows({}, top, oldLast);
            m_ids.erase(m_ids.begin() + top, m_ids.begin() + oldLast + 1);
            endRemoveRows();
        }
        if (newLast >= top) {
            beginInsertRows({}, top, newLast);
            m_ids.insert(m_ids.begin() + top, ids.begin() + top, ids.begin() + newLast + 1);
            endInsertRows();
        }
    }

private:
    const RecordListView::Source& m_source;
    std::vector<Base::Uuid> m_ids;
    int m_dropRow = -1;
};

RecordListView::RecordListView(AppModel& model, Commands& commands, Source source, QWidget* parent)
    : QListView(parent)
    , m_model(model)
    , m_commands(commands)
    , m_source(std::move(source))
    , m_rows(new RecordListModel(m_source, this))
{
    setObjectName(QStringLiteral("records"));
    setAccessibleName(nameOf(m_source.section));
    setModel(m_rows);
    setItemDelegate(new RowDelegate(this));
    setFrameShape(QFrame::NoFrame);
    setUniformItemSizes(true);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(ExtendedSelection);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMouseTracking(true);
    setDragEnabled(true);
    dress();

    const auto concerns = [this](AppSection section) { return section == m_source.section; };
    connect(&model, &AppModel::listChanged, this, [this, concerns](AppSection section) {
        if (concerns(section))
            outdate();
    });
    connect(&model, &AppModel::timePassed, this, &RecordListView::outdate);
    connect(&model, &AppModel::libraryChanged, this, [this](const LibraryChanges& changes) {
        if (changes.everything)
            outdate();
        viewport()->update(); // Rows ask for their texts when they are painted.
    });
    connect(&model, &AppModel::selectionChanged, this, [this, concerns](AppSection section) {
        if (concerns(section) && !m_isHanding && isVisible() && !m_isOutdated)
            takeSelection();
        else if (concerns(section) && !m_isHanding)
            outdate();
    });
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, &RecordListView::handSelection);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this, &RecordListView::handSelection);
    connect(this, &QListView::doubleClicked, this, &RecordListView::detailWanted);
}

RecordListView::IDs RecordListView::selected() const
{
    std::vector<int> rows;
    for (const auto& index : selectionModel()->selectedIndexes())
        rows.push_back(index.row());
    std::sort(rows.begin(), rows.end());
    IDs ids;
    for (const int row : rows)
        ids.push_back(m_rows->ids()[static_cast<std::size_t>(row)]);
    return ids;
}

void RecordListView::setContextMenu(std::vector<std::optional<Command>> commands)
{
    m_menu = std::move(commands);
}

void RecordListView::setDrops(Drops drops)
{
    m_drops = std::move(drops);
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
}

void RecordListView::setDraggedFile(std::function<std::filesystem::path(const Base::Uuid&)> file)
{
    m_file = std::move(file);
}

// --- Rows and selection

// Not while the user's own click is being carried out, which goes by the rows as they were.
void RecordListView::outdate()
{
    m_isOutdated = true;
    if (m_isHanding)
        QMetaObject::invokeMethod(
            this, [this] { outdate(); }, Qt::QueuedConnection);
    else if (isVisible())
        catchUp();
}

void RecordListView::catchUp()
{
    if (m_isUpdating || !m_isOutdated)
        return;
    if (m_rows->ids() == m_source.ids()) { // Only what the rows say may be new.
        m_isOutdated = false;
        viewport()->update();
        return takeSelection();
    }
    m_isUpdating = true;
    const auto before = selected();
    // The uppermost row that stays keeps its place under the user's eyes.
    const auto offsets = [this] {
        std::vector<std::pair<Base::Uuid, int>> found;
        for (int y = 1; y < viewport()->height() && m_rows->rowCount() > 0;
             y += std::max(1, sizeHintForRow(0)))
            if (const auto index = indexAt({ 1, y }); index.isValid())
                found.emplace_back(
                    m_rows->ids()[static_cast<std::size_t>(index.row())], visualRect(index).top());
        return found;
    }();
    const bool wasEmpty = m_rows->rowCount() == 0;
    m_isOutdated = false;
    m_rows->show(m_source.ids());
    std::unordered_map<Base::Uuid, int> places;
    if (before.size() + offsets.size() > 0) {
        for (int row = 0; const auto& id : m_rows->ids())
            places.emplace(id, row++);
    }
    std::vector<int> kept;
    for (const auto& id : before) {
        if (const auto place = places.find(id); place != places.end())
            kept.push_back(place->second);
    }
    std::sort(kept.begin(), kept.end());
    QItemSelection selection; // Of whole stretches: thousands of single rows would take seconds.
    for (std::size_t first = 0, next = 0; first < kept.size(); first = next) {
        for (next = first + 1; next < kept.size() && kept[next] == kept[next - 1] + 1;)
            ++next;
        selection.select(m_rows->index(kept[first]), m_rows->index(kept[next - 1]));
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    for (const auto& [id, offset] : offsets) {
        if (const auto place = places.find(id); place != places.end()) {
            executeDelayedItemsLayout();
            verticalScrollBar()->setValue(
                verticalScrollBar()->value() + visualRect(m_rows->index(place->second)).top() - offset);
            break;
        }
    }
    m_isUpdating = false;
    takeSelection();
    if (wasEmpty != (m_rows->rowCount() == 0))
        emit countChanged();
}

void RecordListView::takeSelection()
{
    const auto id = m_model.selection(m_source.section);
    const int row = id ? m_rows->rowOf(*id) : m_rows->rowCount();
    const auto index = m_rows->index(row);
    m_isUpdating = true;
    if (!index.isValid()) {
        selectionModel()->clear();
    } else if (!selectionModel()->isSelected(index)) {
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
        scrollTo(index);
    } else if (currentIndex() != index) {
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    }
    m_isUpdating = false;
    m_commands.setSelected(m_source.section, selected());
    emit selectedChanged();
}

void RecordListView::handSelection()
{
    if (m_isUpdating || m_isHanding)
        return;
    m_isHanding = true;
    const auto ids = selected();
    const auto current = currentIndex();
    std::optional<Base::Uuid> id;
    if (current.isValid() && selectionModel()->isSelected(current))
        id = m_rows->ids()[static_cast<std::size_t>(current.row())];
    else if (!ids.empty())
        id = ids.front();
    m_commands.setSelected(m_source.section, ids);
    m_model.select(m_source.section, id);
    m_isHanding = false;
    emit selectedChanged();
}

void RecordListView::selectFirst()
{
    catchUp();
    if (selectionModel()->hasSelection() || m_rows->rowCount() == 0)
        return;
    setCurrentIndex(m_rows->index(0));
}

void RecordListView::showEvent(QShowEvent* event)
{
    QListView::showEvent(event);
    const bool isFirst = m_rows->rowCount() == 0;
    m_isOutdated = true;
    catchUp();
    if (isFirst && currentIndex().isValid())
        scrollTo(currentIndex());
}

void RecordListView::keyPressEvent(QKeyEvent* event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && !(event->modifiers() & ~Qt::KeypadModifier)) {
        if (!selected().empty())
            emit detailWanted();
    } else if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
        const auto place = visualRect(currentIndex()).center();
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, place, viewport()->mapToGlobal(place));
        contextMenuEvent(&menu);
    } else {
        QListView::keyPressEvent(event);
    }
}

void RecordListView::contextMenuEvent(QContextMenuEvent* event)
{
    if (m_menu.empty())
        return;
    auto place = event->globalPos();
    if (event->reason() != QContextMenuEvent::Mouse) {
        const auto row = visualRect(currentIndex());
        place = viewport()->mapToGlobal(row.isValid() ? row.center() : QPoint(Space::large, Space::large));
    }
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    m_commands.fill(*menu, m_menu);
    menu->popup(place);
    event->accept();
}

// --- Dragging and dropping

void RecordListView::startDrag(Qt::DropActions)
{
    QStringList rows;
    QList<QUrl> files;
    for (const auto& id : selected()) {
        rows += m_source.asText(id);
        const auto file = m_file ? m_file(id) : std::filesystem::path();
        if (!file.empty())
            files += QUrl::fromLocalFile(qt(file.string()));
    }
    if (rows.isEmpty())
        return;
    auto* drag = new QDrag(this);
    auto* content = new QMimeData;
    content->setText(rows.join(QLatin1Char('\n')));
    if (!files.isEmpty())
        content->setUrls(files);
    drag->setMimeData(content);
    drag->exec(Qt::CopyAction); // What is ours is never moved away.
}

std::optional<Base::Uuid> RecordListView::rowUnder(const QPoint& place) const
{
    const auto index = indexAt(place);
    return index.isValid() ? std::optional(m_rows->ids()[static_cast<std::size_t>(index.row())])
                           : std::nullopt;
}

void RecordListView::markDrop(std::optional<int> row, bool isBeside)
{
    m_rows->markDrop(row.value_or(-1));
    if (std::exchange(m_isDropBeside, isBeside) != isBeside)
        viewport()->update();
}

void RecordListView::dragEnterEvent(QDragEnterEvent* event) { dragMoveEvent(event); }

void RecordListView::dragMoveEvent(QDragMoveEvent* event)
{
    const auto files = filesOf(event->mimeData());
    const auto place = event->position().toPoint();
    const auto id = rowUnder(place);
    if (event->source() == this || files.empty() || !m_drops.takes || !m_drops.takes(files, id)) {
        markDrop({}, false);
        event->setDropAction(Qt::IgnoreAction);
        event->accept(); // So that moves go on coming; the action refuses.
        return;
    }
    markDrop(id ? std::optional(indexAt(place).row()) : std::nullopt, !id);
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void RecordListView::dragLeaveEvent(QDragLeaveEvent*) { markDrop({}, false); }

void RecordListView::dropEvent(QDropEvent* event)
{
    const auto files = filesOf(event->mimeData());
    const auto id = rowUnder(event->position().toPoint());
    markDrop({}, false);
    if (files.empty() || !m_drops.takes || !m_drops.takes(files, id))
        return event->ignore();
    event->setDropAction(Qt::CopyAction);
    event->accept();
    m_drops.drop(files, id);
}

void RecordListView::paintEvent(QPaintEvent* event)
{
    QListView::paintEvent(event);
    if (!m_isDropBeside)
        return;
    const auto& accent = Theme::of(this).colours.accent;
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    auto tint = accent;
    tint.setAlphaF(0.06F);
    drawSurface(painter, QRectF(viewport()->rect()).adjusted(2, 2, -2, -2), Radius::field, tint, accent, 2);
}

void RecordListView::changeEvent(QEvent* event)
{
    QListView::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void RecordListView::dress()
{
    const auto& theme = Theme::of(this);
    setPalette(theme.palette(theme.colours.content));
    doItemsLayout();
}

std::vector<std::filesystem::path> filesOf(const QMimeData* data)
{
    std::vector<std::filesystem::path> files;
    if (!data || !data->hasUrls())
        return files;
    for (const auto& url : data->urls()) {
        if (!url.isLocalFile())
            return {};
        files.emplace_back(plain(url.toLocalFile()));
    }
    return files;
}

} // namespace Pallisande
