#include "Pallisande/Sheets/CountedFiles.h"

#include "Pallisande/Model/Formats.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Painting.h"
#include "Pallisande/Widgets/TableDelegate.h"
#include "Pallisande/Widgets/Theme.h"

#include <QAbstractTableModel>
#include <QEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QStyleOptionButton>
#include <QTimer>

#include <fmt/format.h>

namespace Pallisande {

namespace {

enum Column { check, file, kind, words, repeated, columnCount };
constexpr int shownRows = 6;

// The check box in front of a file.
class CheckDelegate : public TableDelegate {
public:
    using TableDelegate::TableDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& given, const QModelIndex& index) const override
    {
        TableDelegate::paint(painter, given, index);
        QStyleOptionButton box;
        box.initFrom(given.widget);
        const int side = given.widget->style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, given.widget);
        box.rect = QStyle::alignedRect(given.direction, Qt::AlignCenter, { side, side }, given.rect);
        box.state &= ~QStyle::State_HasFocus;
        box.state |= index.data(Qt::CheckStateRole) == Qt::Checked ? QStyle::State_On : QStyle::State_Off;
        given.widget->style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, painter, given.widget);
    }
};

} // namespace

class CountedRows : public QAbstractTableModel {
public:
    struct Row {
        std::filesystem::path path;
        Tamberlin::FileCount count;
        bool isTaken = true;
    };

    CountedRows(std::vector<Row> rows, const Formats& formats, QObject* parent)
        : QAbstractTableModel(parent)
        , m_rows(std::move(rows))
        , m_formats(formats)
    {
    }

    std::vector<Row>& rows() { return m_rows; }
    void changed(int first, int last) { emit dataChanged(index(first, 0), index(last, columnCount() - 1)); }

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
        static constexpr std::array<const char*, Column::columnCount> titles { "", "File", "Kind", "Words",
            "Repeated" };
        if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
            return QString::fromUtf8(titles[static_cast<std::size_t>(section)]);
        if (orientation == Qt::Horizontal && role == Qt::AccessibleTextRole && section == check)
            return QStringLiteral("Taken");
        if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole)
            return QVariant(alignment(section));
        return QAbstractTableModel::headerData(section, orientation, role);
    }

    QVariant data(const QModelIndex& index, int role) const override
    {
        const auto& [path, count, isTaken] = m_rows[static_cast<std::size_t>(index.row())];
        switch (role) {
        case Qt::DisplayRole:
            return text(count, index.column());
        case Qt::CheckStateRole:
            return index.column() == check ? QVariant(isTaken ? Qt::Checked : Qt::Unchecked) : QVariant();
        case Qt::ToolTipRole:
            return index.column() == file ? QVariant(qt(path.string())) : QVariant();
        case Qt::TextAlignmentRole:
            return QVariant(alignment(index.column()));
        case Qt::AccessibleTextRole:
            return qt(fmt::format("{}, {}, {} words, {} repeated{}", count.name, title(count.format),
                m_formats.count(count.total.words), m_formats.count(count.repeated.words),
                isTaken ? "" : ", left out"));
        case TableDelegate::mutedRole:
            return !isTaken;
        default:
            return {};
        }
    }

    QString text(const Tamberlin::FileCount& count, int column) const
    {
        switch (column) {
        case file:
            return qt(count.name);
        case kind:
            return qt(title(count.format));
        case words:
            return (count.approximate ? QStringLiteral("≈ ") : QString())
                + qt(m_formats.count(count.total.words));
        case repeated:
            return qt(m_formats.count(count.repeated.words));
        default:
            return {};
        }
    }

private:
    static int alignment(int column)
    {
        return static_cast<int>((column < words ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
    }

    std::vector<Row> m_rows;
    const Formats& m_formats;
};

namespace {

std::vector<CountedRows::Row> rowsOf(const CountedFiles::Paths& paths, const Tamberlin::BatchCount& batch)
{
    std::vector<CountedRows::Row> rows;
    for (std::size_t place = 0; place < std::min(paths.size(), batch.files.size()); ++place)
        rows.push_back({ paths[place], batch.files[place] });
    return rows;
}

} // namespace

CountedFiles::CountedFiles(
    const Paths& paths, const Tamberlin::BatchCount& batch, const Formats& formats, QWidget* parent)
    : QTableView(parent)
    , m_rows(new CountedRows(rowsOf(paths, batch), formats, this))
{
    setModel(m_rows);
    setObjectName(QStringLiteral("countedFiles"));
    setAccessibleName(QStringLiteral("Counted files"));
    prepareTable(this);
    setItemDelegateForColumn(check, new CheckDelegate(this));
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setWordWrap(false);
    horizontalHeader()->setMinimumSectionSize(1);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setSectionResizeMode(file, QHeaderView::Stretch);
    setCurrentIndex(m_rows->index(0, file));
    clearSelection();
    connect(this, &QTableView::clicked, this, [this](const QModelIndex& index) {
        if (index.column() == check)
            toggle(index.row());
    });
    measure();
}

CountedFiles::Paths CountedFiles::taken() const
{
    Paths paths;
    for (const auto& row : m_rows->rows()) {
        if (row.isTaken)
            paths.push_back(row.path);
    }
    return paths;
}

void CountedFiles::setCounts(const Paths& paths, const Tamberlin::BatchCount& batch)
{
    auto counted = rowsOf(paths, batch);
    auto next = counted.begin();
    for (auto& row : m_rows->rows()) { // Both stand in the same order.
        if (next != counted.end() && next->path == row.path)
            row.count = std::move((next++)->count);
    }
    m_rows->changed(0, m_rows->rowCount() - 1);
}

void CountedFiles::toggle(int row)
{
    auto& taken = m_rows->rows()[static_cast<std::size_t>(row)].isTaken;
    taken = !taken;
    m_rows->changed(row, row);
    emit takenChanged();
}

void CountedFiles::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Space && currentIndex().isValid())
        toggle(currentIndex().row());
    else
        QTableView::keyPressEvent(event);
}

void CountedFiles::changeEvent(QEvent* event)
{
    QTableView::changeEvent(event);
    if (event->type() == QEvent::StyleChange && m_rows) // The height of the rows follows first.
        QTimer::singleShot(0, this, &CountedFiles::measure);
}

void CountedFiles::measure()
{
    const auto& theme = Theme::of(this);
    const QFontMetrics head(theme.font(TextStyle::tableHead));
    const auto body = theme.font(TextStyle::body);
    for (const int column : { kind, words, repeated }) {
        double widest
            = head.horizontalAdvance(m_rows->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
        for (const auto& row : m_rows->rows())
            widest = std::max(widest, figuresWidth(body, m_rows->text(row.count, column)));
        setColumnWidth(column, static_cast<int>(widest) + 2 * Space::small + 2);
    }
    setColumnWidth(check, theme.scaled(32));
    const int rows = std::min(m_rows->rowCount(), shownRows);
    setFixedHeight(horizontalHeader()->sizeHint().height() + rows * verticalHeader()->defaultSectionSize());
}

} // namespace Pallisande
