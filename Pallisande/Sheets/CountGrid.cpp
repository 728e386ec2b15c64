#include "Pallisande/Sheets/CountGrid.h"

#include "Pallisande/Model/Formats.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/BandBar.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/NumberEdit.h"
#include "Pallisande/Widgets/Painting.h"

#include <QClipboard>
#include <QGridLayout>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QRegularExpression>

namespace Pallisande {

namespace {

const QString columnTitles[] { QStringLiteral("Words"), QStringLiteral("Segments"),
    QStringLiteral("Characters") };

// A band's label behind its colour.
class BandLabel : public Label {
public:
    BandLabel(MatchBand band, QWidget* parent)
        : Label(qt(label(band)), parent)
        , m_band(band)
    {
        setIndent(20);
    }

protected:
    void paintEvent(QPaintEvent* event) override
    {
        Label::paintEvent(event);
        QPainter painter(this);
        BandBar::drawSwatch(
            painter, QRectF(0, (height() - 10) / 2.0, 10, 10), m_band, Theme::of(this), false);
    }

private:
    MatchBand m_band;
};

} // namespace

// Empty is 0. Return, Up and Down move in the column; what is pasted fills it.
class CountCell : public CountEdit {
public:
    CountCell(CountGrid* grid)
        : CountEdit(QLocale::system(), grid)
    {
        setOptional(true);
        setAlignment(Qt::AlignRight);
        setPlaceholderText(QStringLiteral("0"));
        setWidthInCharacters(12);
    }

    std::function<void(int)> onMove;
    std::function<void(const QString&)> onPaste;

protected:
    QString notRead(const QString&) const override { return QStringLiteral("Counts are whole numbers."); }
    void keyPressEvent(QKeyEvent* event) override
    {
        const bool isPlain = !(event->modifiers() & ~Qt::KeypadModifier);
        const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (isPlain && (isReturn || event->key() == Qt::Key_Down)) {
            if (commit())
                onMove(1);
        } else if (isPlain && event->key() == Qt::Key_Up) {
            if (commit())
                onMove(-1);
        } else if (event->matches(QKeySequence::Paste)) {
            onPaste(QGuiApplication::clipboard()->text());
        } else {
            CountEdit::keyPressEvent(event);
        }
    }
};

CountGrid::CountGrid(const Formats& formats, RateUnit first, QWidget* parent)
    : QWidget(parent)
    , m_formats(formats)
    , m_columns(first == RateUnit::word ? std::array { words, segments, characters }
                                        : std::array { characters, words, segments })
{
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(Space::medium);
    grid->setVerticalSpacing(Space::tiny);
    grid->setColumnStretch(0, 1);
    grid->addWidget(new Label(QStringLiteral("Band"), this, TextStyle::tableHead, Ink::muted), 0, 0);
    for (int column = 0; column < 3; ++column) {
        const auto at = static_cast<std::size_t>(column);
        auto* head = new Label(columnTitles[m_columns[at]], this, TextStyle::tableHead, Ink::muted);
        head->setIndent(Space::small);
        head->setAlignment(Qt::AlignRight);
        grid->addWidget(head, 0, column + 1);
        m_totals[at] = new Label(this, TextStyle::bodyStrong);
        m_totals[at]->setIndent(Space::small);
        m_totals[at]->setAlignment(Qt::AlignRight);
    }
    for (std::size_t row = 0; row < allMatchBands.size(); ++row) {
        const auto band = allMatchBands[row];
        grid->addWidget(new BandLabel(band, this), static_cast<int>(row) + 1, 0);
        for (std::size_t column = 0; column < 3; ++column) {
            auto* field = new CountCell(this);
            const auto title = columnTitles[m_columns[column]];
            field->setAccessibleName(qt(label(band)) + QStringLiteral(", ") + title.toLower());
            field->setObjectName(QStringLiteral("count%1%2").arg(title).arg(row));
            field->onMove = [this, row, column](int by) { move(row, column, by); };
            field->onPaste = [this, row, column](const QString& text) { paste(row, column, text); };
            connect(field, &CountEdit::committed, this, &CountGrid::tell);
            connect(field, &CountEdit::problemChanged, this, &CountGrid::problemChanged);
            grid->addWidget(field, static_cast<int>(row) + 1, static_cast<int>(column) + 1);
            m_cells[row][column] = field;
        }
    }
    grid->addWidget(new Label(QStringLiteral("Total"), this, TextStyle::bodyStrong), 10, 0);
    for (int column = 0; column < 3; ++column)
        grid->addWidget(m_totals[static_cast<std::size_t>(column)], 10, column + 1);
    showTotals();
}

BandMap<std::int64_t>& CountGrid::metric(BandCounts& counts, Column column)
{
    return column == words ? counts.words : column == segments ? counts.segments : counts.characters;
}

CountCell* CountGrid::cell(std::size_t row, std::size_t column) const { return m_cells[row][column]; }

QWidget* CountGrid::firstCell() const { return cell(0, 0); }

// A band without a count is left out, so that a report without characters is seen to have none.
BandCounts CountGrid::counts() const
{
    BandCounts counts;
    for (std::size_t row = 0; row < m_cells.size(); ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            if (const auto count = cell(row, column)->count())
                metric(counts, m_columns[column])[allMatchBands[row]] = *count;
        }
    }
    return counts;
}

void CountGrid::setCounts(const BandCounts& given)
{
    auto counts = given;
    for (std::size_t row = 0; row < m_cells.size(); ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            const auto* const count = metric(counts, m_columns[column]).find(allMatchBands[row]);
            cell(row, column)->setCount(count ? std::optional(*count) : std::nullopt);
        }
    }
    showTotals();
}

bool CountGrid::commit()
{
    bool isWell = true;
    for (const auto& row : m_cells) {
        for (auto* field : row)
            isWell = field->commit() && isWell;
    }
    return isWell;
}

void CountGrid::move(std::size_t row, std::size_t column, int rows)
{
    const auto to = static_cast<int>(row) + rows;
    if (to >= 0 && to < 9)
        cell(static_cast<std::size_t>(to), column)->setFocus(Qt::TabFocusReason);
    else if (to == 9 && column < 2)
        cell(0, column + 1)->setFocus(Qt::TabFocusReason);
}

void CountGrid::paste(std::size_t row, std::size_t column, const QString& text)
{
    static const QRegularExpression digit(QStringLiteral("\\d"));
    auto lines = text.split(QRegularExpression(QStringLiteral("\r\n|\n|\r")));
    while (!lines.isEmpty() && lines.last().trimmed().isEmpty())
        lines.removeLast();
    if (lines.size() > 1 && !digit.match(lines.first()).hasMatch())
        lines.removeFirst(); // The headings.
    if (lines.size() <= 1 && !text.contains(QLatin1Char('\t')))
        return cell(row, column)->insert(text.trimmed());
    m_isFilling = true;
    for (const auto& line : lines) {
        const auto values = line.split(QLatin1Char('\t'));
        const auto from = values.size() >= 3 ? 0 : column; // Three columns are all three.
        for (std::size_t at = 0; at < static_cast<std::size_t>(values.size()) && from + at < 3 && row < 9;
             ++at) {
            cell(row, from + at)->setText(values[static_cast<qsizetype>(at)].trimmed());
            cell(row, from + at)->commit();
        }
        ++row;
    }
    m_isFilling = false;
    tell();
    if (row > 9)
        emit problemChanged(
            QStringLiteral("More was pasted than there are bands: the last %1 left out.")
                .arg(row == 10 ? QStringLiteral("row was") : QStringLiteral("%1 rows were").arg(row - 9)));
}

void CountGrid::tell()
{
    if (m_isFilling)
        return;
    showTotals();
    emit changed();
}

void CountGrid::showTotals()
{
    auto counts = this->counts();
    for (std::size_t column = 0; column < 3; ++column)
        m_totals[column]->setText(qt(m_formats.count(sum(metric(counts, m_columns[column])))));
}

} // namespace Pallisande
