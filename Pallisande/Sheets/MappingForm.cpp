#include "Pallisande/Sheets/MappingForm.h"

#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/ComboBox.h"
#include "Pallisande/Widgets/FlowLayout.h"
#include "Pallisande/Widgets/Label.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QVBoxLayout>

namespace Pallisande {

namespace {

// Of tables that have more, the rest keeps its guess.
constexpr std::size_t mostColumns = 100, mostLabels = 100, shownSamples = 4;

struct Choice {
    ColumnRole role = ColumnRole::ignore;
    std::optional<MatchBand> band;
    std::optional<CountMetric> metric;
    QString text;

    bool holds(const MappedColumn& column) const
    {
        return role == column.role && band == column.band && (metric == column.metric || !metric);
    }
};

QString word(CountMetric metric) { return qt(Base::caseName(metric)); }
QString capital(const QString& text) { return text.left(1).toUpper() + text.mid(1); }

const std::vector<Choice>& columnChoices()
{
    static const auto choices = [] {
        constexpr CountMetric metrics[] { CountMetric::words, CountMetric::segments,
            CountMetric::characters };
        std::vector<Choice> all { { ColumnRole::ignore, {}, {}, QStringLiteral("Nothing that counts") },
            { ColumnRole::file, {}, {}, QStringLiteral("File name") },
            { ColumnRole::label, {}, {}, QStringLiteral("Band of the row") } };
        for (const auto metric : metrics) {
            for (const auto band : allMatchBands)
                all.push_back({ ColumnRole::band, band, metric,
                    QStringLiteral("%1: %2").arg(qt(label(band)), word(metric)) });
        }
        for (const auto metric : metrics)
            all.push_back({ ColumnRole::total, {}, metric, QStringLiteral("Total %1").arg(word(metric)) });
        for (const auto metric : metrics)
            all.push_back({ ColumnRole::counts, {}, metric,
                QStringLiteral("%1 of the row’s band").arg(capital(word(metric))) });
        for (const auto metric : metrics)
            all.push_back({ ColumnRole::notBilled, {}, metric,
                QStringLiteral("%1 that aren’t billed").arg(capital(word(metric))) });
        return all;
    }();
    return choices;
}

const std::vector<Choice>& labelChoices()
{
    static const auto choices = [] {
        std::vector<Choice> all { { ColumnRole::ignore, {}, {}, QStringLiteral("Nothing that counts") } };
        for (const auto band : allMatchBands)
            all.push_back({ ColumnRole::band, band, {}, qt(label(band)) });
        all.push_back({ ColumnRole::total, {}, {}, QStringLiteral("The total") });
        all.push_back({ ColumnRole::notBilled, {}, {}, QStringLiteral("What isn’t billed") });
        return all;
    }();
    return choices;
}

int choiceOf(const std::vector<Choice>& choices, const MappedColumn& column)
{
    for (std::size_t place = 0; place < choices.size(); ++place) {
        if (choices[place].holds(column))
            return static_cast<int>(place);
    }
    return 0;
}

ComboBox* makeChoice(const std::vector<Choice>& choices, const QString& name, QWidget* parent)
{
    auto* box = new ComboBox(parent);
    for (const auto& choice : choices)
        box->addItem(choice.text);
    box->setAccessibleName(name);
    return box;
}

QGridLayout* makeGrid(QWidget* parent)
{
    auto* grid = new QGridLayout(parent);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(Space::large);
    grid->setVerticalSpacing(Space::small);
    return grid;
}

QString samplesOf(const MappingTable& table, std::size_t column)
{
    QStringList samples;
    for (const auto& row : table.sample) {
        if (column < row.size() && !row[column].empty() && samples.size() < qsizetype(shownSamples))
            samples.append(qt(row[column]).simplified());
    }
    return samples.join(QStringLiteral("  ·  "));
}

} // namespace

MappingForm::MappingForm(const MappingTable& table, QWidget* parent)
    : QWidget(parent)
    , m_mapping(table.guess)
    , m_delimiter(new ComboBox(this))
    , m_decimalMark(new ComboBox(this))
    , m_hasHeadings(new QCheckBox(QStringLiteral("First row holds headings"), this))
    , m_rowsHeading(new Label(QStringLiteral("What the rows hold"), this, TextStyle::bodyStrong))
    , m_rows(nullptr)
{
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(Space::medium);
    addReading();
    showReading(table);
    addColumns(table);
    box->addWidget(m_rowsHeading);
    showLabels();
}

void MappingForm::addReading()
{
    m_delimiter->setObjectName(QStringLiteral("delimiter"));
    m_decimalMark->setObjectName(QStringLiteral("decimalMark"));
    m_hasHeadings->setObjectName(QStringLiteral("hasHeadings"));
    for (const auto& [text, mark] : { std::pair { "Comma", "," }, std::pair { "Semicolon", ";" },
             std::pair { "Tab", "\t" }, std::pair { "Bar", "|" } })
        m_delimiter->addItem(QString::fromUtf8(text), QString::fromUtf8(mark));
    for (const auto& [text, mark] : { std::pair { "As the numbers tell", "" },
             std::pair { "Point: 1,234.5", "." }, std::pair { "Comma: 1.234,5", "," } })
        m_decimalMark->addItem(QString::fromUtf8(text), QString::fromUtf8(mark));
    auto* line = new QWidget(this);
    auto* flow = new FlowLayout(line);
    const auto add = [&](const char* text, ComboBox* box) {
        auto* pair = new QWidget(line);
        auto* inside = new QHBoxLayout(pair);
        inside->setContentsMargins(0, 0, Space::medium, 0);
        inside->setSpacing(Space::small);
        auto* label = new Label(QString::fromUtf8(text), pair, TextStyle::body, Ink::muted);
        label->setBuddy(box);
        box->setAccessibleName(label->text());
        inside->addWidget(label);
        inside->addWidget(box);
        flow->addWidget(pair);
    };
    add("Between cells", m_delimiter);
    add("Decimal mark", m_decimalMark);
    flow->addWidget(m_hasHeadings);
    layout()->addWidget(line);

    connect(m_delimiter, &QComboBox::activated, this, [this] {
        auto reading = m_mapping.reading;
        reading.delimiter = plain(m_delimiter->currentData().toString());
        emit anotherReadingWanted(reading);
    });
    connect(m_hasHeadings, &QCheckBox::clicked, this, [this](bool isOn) {
        auto reading = m_mapping.reading;
        reading.hasHeadings = isOn;
        emit anotherReadingWanted(reading);
    });
    connect(m_decimalMark, &QComboBox::activated, this, [this] { // The columns stay what they are.
        m_mapping.reading.decimalMark = plain(m_decimalMark->currentData().toString());
        emit changed();
    });
}

void MappingForm::showReading(const MappingTable& table)
{
    const auto delimiter = qt(table.delimiter);
    if (m_delimiter->findData(delimiter) < 0) // The table's own first line says so.
        m_delimiter->addItem(delimiter, delimiter);
    m_delimiter->setCurrentIndex(m_delimiter->findData(delimiter));
    m_decimalMark->setCurrentIndex(std::max(0, m_decimalMark->findData(qt(m_mapping.reading.decimalMark))));
    m_hasHeadings->setChecked(table.hasHeadings);
}

void MappingForm::addColumns(const MappingTable& table)
{
    auto* columns = new QWidget(this);
    auto* grid = makeGrid(columns);
    int row = 0, column = 0;
    for (const auto* text : { "Column", "First rows", "Holds" })
        grid->addWidget(
            new Label(QString::fromUtf8(text), columns, TextStyle::tableHead, Ink::muted), row, column++);
    for (std::size_t place = 0; place < std::min(m_mapping.columns.size(), mostColumns); ++place) {
        const auto heading = qt(m_mapping.columns[place].heading);
        auto* choice = makeChoice(columnChoices(), QStringLiteral("“%1” holds").arg(heading), columns);
        choice->setObjectName(QStringLiteral("column%1").arg(place));
        choice->setSearchable(true);
        choice->setCurrentIndex(choiceOf(columnChoices(), m_mapping.columns[place]));
        connect(choice, &QComboBox::activated, this, [this, place](int index) { setColumn(place, index); });
        m_columns.push_back(choice);
        grid->addWidget(new ElidedLabel(heading, columns), ++row, 0);
        grid->addWidget(
            new ElidedLabel(samplesOf(table, place), columns, TextStyle::body, Ink::muted), row, 1);
        grid->addWidget(choice, row, 2);
    }
    grid->setColumnStretch(0, 2);
    grid->setColumnStretch(1, 3);
    layout()->addWidget(columns);
    if (m_mapping.columns.size() > mostColumns)
        layout()->addWidget(makeSentence(
            QStringLiteral("The table has %1 more columns, which stay as Pallisande understands them.")
                .arg(m_mapping.columns.size() - mostColumns),
            this, TextStyle::body, Ink::muted));
}

// There is one column of files and one of labels at most: choosing another frees the first.
void MappingForm::setColumn(std::size_t column, int index)
{
    const auto& choice = columnChoices()[static_cast<std::size_t>(index)];
    auto& mapped = m_mapping.columns[column];
    mapped.role = choice.role;
    mapped.band = choice.band;
    mapped.metric = choice.metric;
    for (std::size_t place = 0; place < m_mapping.columns.size(); ++place) {
        auto& other = m_mapping.columns[place];
        const bool isAlone = choice.role == ColumnRole::file || choice.role == ColumnRole::label;
        if (place == column || !isAlone || other.role != choice.role)
            continue;
        other = { .heading = other.heading };
        if (place < m_columns.size())
            m_columns[place]->setCurrentIndex(0);
    }
    if (!hasLabelColumn())
        m_mapping.labels.clear();
    showLabels();
    emit changed();
}

bool MappingForm::hasLabelColumn() const
{
    return std::any_of(m_mapping.columns.begin(), m_mapping.columns.end(),
        [](const MappedColumn& column) { return column.role == ColumnRole::label; });
}

bool MappingForm::countsSomething() const
{
    const auto counted = hasLabelColumn() ? ColumnRole::counts : ColumnRole::band;
    return std::any_of(m_mapping.columns.begin(), m_mapping.columns.end(), [&](const MappedColumn& column) {
        return column.role == counted && column.metric != CountMetric::segments;
    });
}

QWidget* MappingForm::firstField() const { return m_columns.empty() ? nullptr : m_columns.front(); }

void MappingForm::setLabels(const std::vector<MappedLabel>& labels)
{
    const bool areSame
        = std::equal(labels.begin(), labels.end(), m_mapping.labels.begin(), m_mapping.labels.end(),
            [](const MappedLabel& one, const MappedLabel& other) { return one.label == other.label; });
    m_mapping.labels = labels;
    if (!areSame) // Under the user's hands nothing is made anew.
        showLabels();
}

void MappingForm::showLabels()
{
    delete m_rows;
    m_rows = new QWidget(this);
    auto* grid = makeGrid(m_rows);
    for (std::size_t place = 0; place < std::min(m_mapping.labels.size(), mostLabels); ++place) {
        const auto& [text, role, band] = m_mapping.labels[place];
        auto* choice = makeChoice(labelChoices(), QStringLiteral("Rows “%1” hold").arg(qt(text)), m_rows);
        choice->setObjectName(QStringLiteral("label%1").arg(place));
        choice->setCurrentIndex(choiceOf(labelChoices(), { .role = role, .band = band }));
        connect(choice, &QComboBox::activated, this, [this, place](int index) {
            const auto& chosen = labelChoices()[static_cast<std::size_t>(index)];
            m_mapping.labels[place].role = chosen.role;
            m_mapping.labels[place].band = chosen.band;
            emit changed();
        });
        grid->addWidget(new ElidedLabel(qt(text), m_rows), static_cast<int>(place), 0);
        grid->addWidget(choice, static_cast<int>(place), 1);
    }
    grid->setColumnStretch(0, 1);
    if (!m_columns.empty()) // In line with the choices above.
        grid->setColumnMinimumWidth(1, m_columns.front()->sizeHint().width());
    layout()->addWidget(m_rows);
    const bool hasRows = !m_mapping.labels.empty();
    m_rowsHeading->setVisible(hasRows);
    m_rows->setVisible(hasRows);
}

} // namespace Pallisande
