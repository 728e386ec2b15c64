#include "Pallisande/Sheets/ReviewTable.h"

#include "Pallisande/Model/Formats.h"
#include "Pallisande/Screens/AnalysisFigures.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Painting.h"
#include "Pallisande/Widgets/TableDelegate.h"
#include "Pallisande/Widgets/Theme.h"

#include <QAbstractTableModel>
#include <QBrush>
#include <QEvent>
#include <QHeaderView>
#include <QScrollBar>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

namespace Pallisande {

namespace {

constexpr int shownRows = 8, fileWidth = 120;

enum Column { file, firstBand, sumOfBands = 10, stated, difference, columnCount };

std::optional<MatchBand> bandOf(int column)
{
    return column >= firstBand && column < sumOfBands
        ? std::optional(allMatchBands[static_cast<std::size_t>(column - firstBand)])
        : std::nullopt;
}

QString heading(int column) // Where thirteen columns stand side by side.
{
    if (const auto band = bandOf(column))
        return shortHead(*band);
    switch (column) {
    case sumOfBands:
        return QStringLiteral("Sum");
    case stated:
        return QStringLiteral("Report");
    case difference:
        return QStringLiteral("≠");
    default:
        return QStringLiteral("File");
    }
}

QString fullHeading(int column)
{
    if (const auto band = bandOf(column))
        return qt(label(*band));
    switch (column) {
    case sumOfBands:
        return QStringLiteral("What the bands add up to");
    case stated:
        return QStringLiteral("What the report says");
    case difference:
        return QStringLiteral("By how much the bands have more or less than the report says");
    default:
        return heading(column);
    }
}

} // namespace

// Rows of files, or the one that sums them up.
class ReviewRows : public QAbstractTableModel {
public:
    ReviewRows(std::vector<AnalysisRow> rows, bool isTotal, const Formats& formats, QWidget* parent)
        : QAbstractTableModel(parent)
        , m_rows(std::move(rows))
        , m_titles(fileTitles(m_rows))
        , m_isTotal(isTotal)
        , m_formats(formats)
        , m_widget(parent)
    {
    }

    void setMetric(CountMetric metric)
    {
        beginResetModel();
        m_metric = metric;
        endResetModel();
    }

    int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : Column::columnCount;
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation != Qt::Horizontal)
            return QAbstractTableModel::headerData(section, orientation, role);
        if (role == Qt::DisplayRole)
            return heading(section);
        if (role == Qt::ToolTipRole || role == Qt::AccessibleTextRole)
            return fullHeading(section);
        if (role == Qt::TextAlignmentRole)
            return QVariant(alignment(section));
        return {};
    }

    QVariant data(const QModelIndex& index, int role) const override
    {
        const auto& row = m_rows[static_cast<std::size_t>(index.row())];
        const int column = index.column();
        switch (role) {
        case Qt::DisplayRole:
            return column == file ? m_titles[static_cast<std::size_t>(index.row())] : text(row, column);
        case Qt::ToolTipRole:
            return column == file ? QVariant(qt(row.file)) : QVariant();
        case Qt::AccessibleTextRole:
            return column == file
                ? qt(row.file)
                : QStringLiteral("%1, %2: %3").arg(qt(row.file), fullHeading(column), text(row, column));
        case Qt::TextAlignmentRole:
            return QVariant(alignment(column));
        case Qt::ForegroundRole:
            return column == difference && value(row, column).value_or(0) != 0
                ? QVariant(QBrush(Theme::of(m_widget).colours.tone(Tone::amber).text))
                : QVariant();
        case TableDelegate::totalRole:
            return m_isTotal;
        case TableDelegate::mutedRole:
            return column != file && value(row, column).value_or(0) == 0;
        default:
            return {};
        }
    }

    // The widest text of a column: counts are widest where they are largest.
    int width(int column, const QFont& font) const
    {
        const AnalysisRow* widest = nullptr;
        std::int64_t most = -1;
        for (const auto& row : m_rows) {
            const auto size = std::abs(value(row, column).value_or(0));
            if (size > most) {
                most = size;
                widest = &row;
            }
        }
        return widest ? static_cast<int>(figuresWidth(font, text(*widest, column))) : 0;
    }

private:
    static int alignment(int column)
    {
        return static_cast<int>((column == file ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
    }

    std::optional<std::int64_t> value(const AnalysisRow& row, int column) const
    {
        const auto& counts = figuresOf(row.counts, m_metric);
        if (const auto band = bandOf(column))
            return counts.valueOr(*band, 0);
        const auto said = statedIn(row, m_metric);
        if (column == sumOfBands)
            return sum(counts);
        if (column == stated || !said)
            return said;
        return sum(counts) - *said;
    }

    QString text(const AnalysisRow& row, int column) const
    {
        const auto shown = value(row, column);
        if (!shown)
            return QStringLiteral("–");
        const auto figure = qt(m_formats.count(*shown));
        return column == difference && *shown > 0 ? QLatin1Char('+') + figure : figure;
    }

    std::vector<AnalysisRow> m_rows;
    std::vector<QString> m_titles; // Of the files.
    bool m_isTotal;
    const Formats& m_formats;
    QWidget* m_widget;
    CountMetric m_metric = CountMetric::words;
};

namespace {

AnalysisRow totalOf(const Analysis& analysis)
{
    AnalysisRow total { .file = "Total", .counts = analysis.totals() };
    const auto all = [&](auto member) {
        std::optional<std::int64_t> whole = 0;
        for (const auto& row : analysis.rows) {
            if (!(row.*member))
                return std::optional<std::int64_t>();
            *whole += *(row.*member);
        }
        return whole;
    };
    total.statedWords = analysis.statedTotalWords;
    total.statedSegments = all(&AnalysisRow::statedSegments);
    total.statedCharacters = all(&AnalysisRow::statedCharacters);
    return total;
}

} // namespace

ReviewTable::ReviewTable(const Analysis& analysis, const Formats& formats, QWidget* parent)
    : QWidget(parent)
    , m_files(new ReviewRows(analysis.rows, false, formats, this))
    , m_total(new ReviewRows({ totalOf(analysis) }, true, formats, this))
    , m_body(new QTableView(this))
    , m_foot(new QTableView(this))
{
    m_body->setModel(m_files);
    m_body->setObjectName(QStringLiteral("reviewFiles"));
    m_body->setAccessibleName(QStringLiteral("Counts of the files by band"));
    m_foot->setModel(m_total);
    m_foot->setObjectName(QStringLiteral("reviewTotal"));
    m_foot->setAccessibleName(QStringLiteral("Counts of the whole report by band"));
    m_foot->horizontalHeader()->hide();
    for (auto* table : { m_body, m_foot }) {
        prepareTable(table);
        table->setEditTriggers(QAbstractItemView::NoEditTriggers);
        table->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        table->horizontalHeader()->setMinimumSectionSize(1);
        table->setWordWrap(false);
    }
    m_foot->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_foot->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(m_body->horizontalScrollBar(), &QScrollBar::valueChanged, m_foot->horizontalScrollBar(),
        &QScrollBar::setValue);
    m_foot->setVisible(analysis.rows.size() > 1);

    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
    box->addWidget(m_body);
    box->addWidget(m_foot);
    measure();
}

void ReviewTable::setMetric(CountMetric metric)
{
    m_files->setMetric(metric);
    m_total->setMetric(metric);
    measure();
}

void ReviewTable::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    layColumns();
}

void ReviewTable::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange) // The tables take up the new height of their rows first.
        QTimer::singleShot(0, this, &ReviewTable::measure);
}

void ReviewTable::measure()
{
    const auto& theme = Theme::of(this);
    const QFontMetrics head(theme.font(TextStyle::tableHead));
    const auto strong = theme.font(TextStyle::bodyStrong);
    for (int column = firstBand; column < columnCount; ++column)
        m_widths[static_cast<std::size_t>(column)]
            = std::max({ head.horizontalAdvance(heading(column)), m_files->width(column, strong),
                  m_total->width(column, strong) })
            + 2 * Space::small + 2;
    m_foot->setFixedHeight(m_body->verticalHeader()->defaultSectionSize());
    layColumns();
}

void ReviewTable::layColumns()
{
    int others = 0;
    for (int column = firstBand; column < columnCount; ++column)
        others += m_widths[static_cast<std::size_t>(column)];
    const bool scrolls = m_files->rowCount() > shownRows;
    const int bar = scrolls ? m_body->verticalScrollBar()->sizeHint().width() : 0;
    const int room = width() - others - bar;
    const int least = Theme::of(this).scaled(fileWidth);
    m_widths[file] = std::max(room, least);
    for (auto* table : { m_body, m_foot }) {
        for (int column = 0; column < columnCount; ++column)
            table->setColumnWidth(column, m_widths[static_cast<std::size_t>(column)]);
    }
    const int row = m_body->verticalHeader()->defaultSectionSize();
    const int under = room < least ? m_body->horizontalScrollBar()->sizeHint().height() : 0;
    m_body->setFixedHeight(m_body->horizontalHeader()->sizeHint().height()
        + std::min(m_files->rowCount(), shownRows) * row + under);
}

} // namespace Pallisande
