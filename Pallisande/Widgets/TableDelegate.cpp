#include "Pallisande/Widgets/TableDelegate.h"

#include "Pallisande/Widgets/FocusRing.h"
#include "Pallisande/Widgets/Painting.h"
#include "Pallisande/Widgets/Theme.h"

#include <QEvent>
#include <QHeaderView>
#include <QTableView>

#include <algorithm>

namespace Pallisande {

namespace {

constexpr int rowHeight = 32;

// Sets the heights of rows anew when the text grows.
class TableTuner : public QObject {
public:
    explicit TableTuner(QTableView* table)
        : QObject(table)
        , m_table(table)
    {
        table->installEventFilter(this);
        tune();
    }

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::StyleChange || event->type() == QEvent::ParentChange
            || event->type() == QEvent::Polish)
            tune();
        return false;
    }

private:
    void tune()
    {
        const auto& theme = Theme::of(m_table);
        const int line = QFontMetrics(theme.font(TextStyle::body)).height();
        const int height = std::max(theme.scaled(rowHeight), line + Space::small);
        auto colours = m_table->palette(); // Those of the card that it lies on.
        if (const auto* card = m_table->parentWidget())
            colours.setColor(QPalette::Base, card->palette().color(QPalette::Window));
        m_table->setPalette(colours);
        m_table->verticalHeader()->setMinimumSectionSize(height);
        m_table->verticalHeader()->setDefaultSectionSize(height);
    }

    QTableView* m_table;
};

constexpr const char* tightProperty = "isTight";

} // namespace

void setTight(QTableView* table)
{
    table->setProperty(tightProperty, true);
    table->horizontalHeader()->setProperty(tightProperty, true);
}

int tablePadding(const QWidget* widget)
{
    return widget && widget->property(tightProperty).toBool() ? Space::tiny : Space::small;
}

QSize TableDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const auto& theme = Theme::of(option.widget);
    const bool isTotal = index.data(totalRole).toBool();
    const auto font = theme.font(isTotal ? TextStyle::bodyStrong : TextStyle::body);
    const auto text = index.data().toString();
    const int width = static_cast<int>(figuresWidth(font, text)) + 2 * tablePadding(option.widget) + 2;
    return { width, std::max(theme.scaled(rowHeight), QFontMetrics(font).height() + Space::small) };
}

void TableDelegate::paint(
    QPainter* painter, const QStyleOptionViewItem& given, const QModelIndex& index) const
{
    const auto& theme = Theme::of(given.widget);
    auto option = given;
    initStyleOption(&option, index);
    const bool isTotal = index.data(totalRole).toBool();
    painter->save();
    option.widget->style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter, option.widget);
    drawLineBelow(*painter, option.rect, theme.colours.border);
    if (isTotal)
        painter->fillRect(
            QRectF(option.rect.left(), option.rect.top(), option.rect.width(), 1), theme.colours.outline);

    auto font = index.data(Qt::FontRole).isValid() ? option.font : theme.font(TextStyle::body);
    if (isTotal)
        font.setWeight(QFont::DemiBold);
    painter->setFont(font);
    const auto ink = index.data(Qt::ForegroundRole);
    painter->setPen(index.data(mutedRole).toBool() ? theme.colours.disabled
            : ink.isValid()                        ? ink.value<QBrush>().color()
                                                   : theme.colours.text);
    const int padding = tablePadding(option.widget);
    auto area = QRectF(option.rect).adjusted(padding, 0, -padding, 0);
    if (!option.icon.isNull()) {
        const int side = theme.iconSize();
        option.icon.paint(painter, QRectF(area.left(), area.center().y() - side / 2.0, side, side).toRect());
        area.setLeft(area.left() + side + Space::small);
    }
    if (option.displayAlignment & Qt::AlignRight && figuresWidth(font, option.text) <= area.width())
        drawFigures(*painter, area, Qt::AlignRight | Qt::AlignVCenter, option.text);
    else
        drawLine(*painter, area, option.text, option.displayAlignment | Qt::AlignVCenter);
    if (option.state & QStyle::State_HasFocus && option.state & QStyle::State_KeyboardFocusChange)
        drawSurface(*painter, QRectF(option.rect).adjusted(1, 1, -1, -1), 4, Qt::transparent,
            theme.colours.accent, FocusRing::width);
    painter->restore();
}

void prepareTable(QTableView* table)
{
    table->setItemDelegate(new TableDelegate(table));
    table->setShowGrid(false);
    table->setFrameShape(QFrame::NoFrame);
    table->setTabKeyNavigation(false);
    table->setMouseTracking(true);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    table->verticalHeader()->hide();
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->horizontalHeader()->setHighlightSections(false);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    new TableTuner(table);
}

} // namespace Pallisande
