#include "Pallisande/Screens/Jobs/FiguresTable.h"

#include "Pallisande/Widgets/BandBar.h"
#include "Pallisande/Widgets/Icons.h"
#include "Pallisande/Widgets/Painting.h"
#include "Pallisande/Widgets/TableDelegate.h"

#include <QEvent>
#include <QHeaderView>
#include <QScrollBar>

#include <algorithm>

namespace Pallisande {

namespace {

// Names of files say enough in the middle elided; in a tight table there is no more room for them.
int leastFirstColumn(const QWidget* table)
{
    const bool isTight = tablePadding(table) < Space::small;
    return Theme::of(table).scaled(isTight ? 76 : 120);
}

QIcon swatchOf(MatchBand band, const QWidget* widget, bool isDotted)
{
    const auto& theme = Theme::of(widget);
    const double density = widget->devicePixelRatioF();
    QPixmap picture((QSizeF(theme.iconSize(), theme.iconSize()) * density).toSize());
    picture.setDevicePixelRatio(density);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    const double side = theme.scaled(10), margin = (theme.iconSize() - side) / 2;
    BandBar::drawSwatch(painter, QRectF(margin, margin, side, side), band, theme, isDotted);
    QIcon icon(picture);
    icon.addPixmap(picture, QIcon::Selected);
    return icon;
}

} // namespace

FiguresTable::FiguresTable(QWidget* parent)
    : QTableWidget(parent)
{
    prepareTable(this);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setWordWrap(false);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setMinimumSectionSize(20);
}

void FiguresTable::setHeads(const QStringList& heads, const QStringList& toolTips)
{
    setColumnCount(static_cast<int>(heads.size()));
    horizontalHeader()->setVisible(!heads.join(QString()).isEmpty());
    for (int column = 0; column < columnCount(); ++column) {
        auto* head = new QTableWidgetItem(heads[column]);
        head->setTextAlignment((column ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
        if (column < toolTips.size()) {
            head->setToolTip(toolTips[column]);
            head->setData(Qt::AccessibleTextRole, toolTips[column]);
        }
        setHorizontalHeaderItem(column, head);
    }
    measure();
}

void FiguresTable::setRows(const std::vector<Row>& rows, bool floorIsDotted)
{
    m_rows = rows;
    m_floorIsDotted = floorIsDotted;
    setRowCount(static_cast<int>(rows.size()));
    for (int place = 0; place < rowCount(); ++place)
        show(rows[static_cast<std::size_t>(place)], place);
    measure();
}

void FiguresTable::show(const Row& row, int place)
{
    for (int column = 0; column < columnCount(); ++column) {
        const auto at = static_cast<std::size_t>(column);
        const auto cell = at < row.cells.size() ? row.cells[at] : Cell {};
        auto* shown = item(place, column);
        if (!shown) {
            shown = new QTableWidgetItem;
            shown->setTextAlignment((column ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
            setItem(place, column, shown);
        }
        shown->setText(cell.text);
        shown->setToolTip(cell.toolTip);
        shown->setIcon(cell.swatch ? swatchOf(*cell.swatch, this, m_floorIsDotted)
                : cell.hasHint     ? themedIcon(Icon::info)
                                   : QIcon());
        shown->setData(TableDelegate::totalRole, row.isTotal);
        shown->setData(TableDelegate::mutedRole, row.isMuted);
        const auto* const head = horizontalHeaderItem(column);
        const auto name = head ? head->text() : QString();
        shown->setData(Qt::AccessibleTextRole,
            column == 0 && !row.spoken.isEmpty() ? row.spoken
                : name.isEmpty()                 ? cell.text
                                                 : name + QStringLiteral(" ") + cell.text);
    }
}

// Figures take what they need; the first column has the rest, or the table scrolls sideways.
void FiguresTable::measure()
{
    if (columnCount() == 0)
        return;
    int used = 0;
    for (int column = 1; column < columnCount(); ++column) {
        const int width = std::max(sizeHintForColumn(column), horizontalHeader()->sectionSizeHint(column));
        setColumnWidth(column, width);
        used += width;
    }
    setColumnWidth(0, std::max(leastFirstColumn(this), viewport()->width() - used));
    setFixedHeight(sizeHint().height()); // Nothing squeezes rows out of sight.
}

QSize FiguresTable::sizeHint() const
{
    const int rows = std::min(rowCount(), m_mostRows);
    int height = rows * verticalHeader()->defaultSectionSize();
    if (!horizontalHeader()->isHidden())
        height += horizontalHeader()->sizeHint().height();
    int width = 0;
    for (int column = 1; column < columnCount(); ++column)
        width += columnWidth(column);
    if (width + leastFirstColumn(this) > this->width())
        height += horizontalScrollBar()->sizeHint().height();
    return { 320, height };
}

QSize FiguresTable::minimumSizeHint() const { return { 120, sizeHint().height() }; }

void FiguresTable::changeEvent(QEvent* event)
{
    QTableWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange || event->type() == QEvent::PaletteChange) {
        for (int place = 0; place < rowCount(); ++place)
            show(m_rows[static_cast<std::size_t>(place)], place);
        measure();
    }
}

void FiguresTable::resizeEvent(QResizeEvent* event)
{
    QTableWidget::resizeEvent(event);
    measure();
}

void FiguresTable::focusOutEvent(QFocusEvent* event)
{
    QTableWidget::focusOutEvent(event);
    clearSelection(); // It stood for where the arrow keys were.
}

} // namespace Pallisande
