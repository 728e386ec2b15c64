#include "PallisandeKit/Analyses/PhraseJSON.h"

#include "Base/Json.h"
#include "PallisandeKit/Analyses/ReportTally.h"
#include "TamberlinKit/Text/TextDecoder.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <utility>

namespace Pallisande::PhraseJSON {

namespace {

using Base::Form, Base::Frame, Base::Place;

constexpr std::size_t namesShown = 3;

// What a match was made by. The exported file gives all sources under each count and their sum besides; the
// API gives all counts under each source.
enum Source : std::size_t {
    sumOfSources,
    translationMemory,
    machineTranslation,
    nonTranslatable,
    internalFuzzy
};
constexpr std::array<std::string_view, 5> exportedSources { "sum", "tm", "mt", "nt", "if" };
constexpr std::array<std::string_view, 5> sourcesOfAPI { "", "transMemoryMatches",
    "machineTranslationMatches", "nonTranslatablesMatches", "internalFuzzyMatches" };

constexpr std::array<std::string_view, 3> metricKeys { "segments", "words", "characters" };
enum Metric : std::size_t { segments, words, characters };

constexpr std::pair<std::string_view, MatchBand> bandKeys[] {
    { "contextMatch", MatchBand::context },
    { "match101", MatchBand::context },
    { "repetitions", MatchBand::repetitions },
    { "match100", MatchBand::exact },
    { "match95", MatchBand::fuzzy95 },
    { "match85", MatchBand::fuzzy85 },
    { "match75", MatchBand::fuzzy75 },
    { "match50", MatchBand::fuzzy50 },
    { "match0", MatchBand::noMatch },
};

// Where a key stands in a list, or the list's size.
template <std::size_t size>
std::size_t placeIn(const std::array<std::string_view, size>& list, std::string_view key)
{
    return static_cast<std::size_t>(std::find(list.begin(), list.end(), key) - list.begin());
}

// One count by its sources. Counts may be fractions, so they are rounded only when all of it is there.
struct CountBySource {
    std::array<std::optional<Base::Decimal>, exportedSources.size()> of;

    std::optional<Base::Decimal> whole() const
    {
        std::optional<Base::Decimal> whole = of[sumOfSources];
        for (std::size_t source = translationMemory; !of[sumOfSources] && source < of.size(); ++source) {
            if (of[source])
                whole = whole.value_or(0) + *of[source];
        }
        return whole;
    }
};
using Category = std::array<CountBySource, metricKeys.size()>;

// The counts of a file or of a language part.
struct Grid {
    BandMap<Category> bands;
    std::map<std::string, Category, std::less<>> others; // Of matches that have no band here.
    Category total;
    bool isAvailable = true; // False where the analysis wasn't made; what is there all the same counts.

    bool hasCounts() const
    {
        const auto words = total[Metric::words].whole();
        return words ? isAvailable || *words != 0 : isAvailable && !bands.isEmpty();
    }
};

struct Job {
    std::string name;
    std::optional<Grid> grid;
};

struct Part {
    std::string sourceLanguage, targetLanguage;
    std::optional<Grid> grid;
    std::size_t rows = 0; // Of its files that have counts of their own.
    std::vector<std::string> names; // Of the first of the others.
    std::size_t filesWithoutCounts = 0;
};

// Turns the parts of an analysis into rows as they go by.
class Collector {
public:
    explicit Collector(const std::string& file)
        : m_file(file)
    {
    }

    Part part; // What is being read.
    Job job;
    bool hasParts = false;

    void endJob()
    {
        if (job.grid && job.grid->hasCounts()) {
            addRow(std::move(job.name), *job.grid);
        } else {
            ++part.filesWithoutCounts;
            if (part.names.size() < namesShown && !job.name.empty())
                part.names.push_back(std::move(job.name));
        }
        job = {};
    }

    // The API has no counts by file: then the part as a whole is the row.
    void endPart()
    {
        const bool hasCounts = part.grid && part.grid->hasCounts();
        if (part.rows == 0 && hasCounts) {
            addRow(nameOfPart(), *part.grid);
            part.filesWithoutCounts = 0;
        }
        m_filesWithoutCounts += part.filesWithoutCounts;
        if (part.rows > 0) {
            const auto total = hasCounts ? part.grid->total[words].whole() : std::nullopt;
            m_statesEveryPart = m_statesEveryPart && total;
            m_statedWords += total.value_or(0);
            m_tally.addLanguages(part.sourceLanguage, part.targetLanguage);
            m_pairs.push_back({ part.rows, part.sourceLanguage + '>' + part.targetLanguage });
        }
        part = {};
    }

    Analysis finished(Base::Instant now);

private:
    void addRow(std::string name, const Grid& grid);
    std::string nameOfPart() const;
    std::vector<ImportNote> notes();

    std::optional<std::int64_t> rounded(const CountBySource& count)
    {
        const auto whole = count.whole();
        return whole ? std::optional(m_tally.rounded(*whole)) : std::nullopt;
    }
    ReportFigures rounded(const Category& category)
    {
        return { rounded(category[segments]), rounded(category[words]), rounded(category[characters]) };
    }

    const std::string& m_file;
    std::vector<AnalysisRow> m_rows;
    std::vector<std::pair<std::size_t, std::string>> m_pairs; // How many rows have which languages.
    ReportTally m_tally;
    std::array<Base::Decimal, exportedSources.size()> m_wordsBySource;
    Base::Decimal m_statedWords;
    std::size_t m_filesWithoutCounts = 0;
    bool m_statesEveryPart = true;
};

void Collector::addRow(std::string name, const Grid& grid)
{
    if (m_rows.size() == mostReportRows)
        throw ImportError::tooManyFiles(m_file);
    AnalysisRow row { .id = Base::Uuid::random(), .file = std::move(name) };
    if (row.file.empty())
        row.file = fmt::format("File {}", m_rows.size() + 1);
    grid.bands.forEach([&](MatchBand band, const Category& category) {
        m_tally.add(row, { BandLabel::Kind::band, band, true }, {}, rounded(category));
        for (std::size_t source = translationMemory; source < exportedSources.size(); ++source)
            m_wordsBySource[source] += category[words].of[source].value_or(0);
    });
    for (const auto& [key, category] : grid.others)
        m_tally.add(row, {}, key, rounded(category));
    ReportTally::setStated(row, rounded(grid.total));
    m_rows.push_back(std::move(row));
    ++part.rows;
}

std::string Collector::nameOfPart() const
{
    const auto others = part.filesWithoutCounts - part.names.size();
    return fmt::format("{}{}", fmt::join(part.names, ", "),
        part.names.empty() || others == 0 ? "" : fmt::format(" and {} more", others));
}

std::vector<ImportNote> Collector::notes()
{
    std::vector<ImportNote> notes;
    const auto tell = [&](std::string_view what, Source source) {
        if (const auto count = m_tally.rounded(m_wordsBySource[source]); count >= 1)
            notes.push_back(TextNote { fmt::format(
                "{} ({} words) are counted in the bands of their percentages, as the report has them.", what,
                count) });
    };
    tell("Machine translation matches", machineTranslation);
    tell("Non-translatables", nonTranslatable);
    tell("Internal fuzzy matches", internalFuzzy);
    if (m_filesWithoutCounts > 0)
        notes.push_back(
            TextNote { fmt::format("Files without counts in this report: {}.", m_filesWithoutCounts) });
    return notes;
}

Analysis Collector::finished(Base::Instant now)
{
    Analysis analysis {
        .id = Base::Uuid::random(), .source = AnalysisSource::phraseJSON, .name = m_file, .importedAt = now
    };
    const auto isOther = [&](const auto& pair) { return pair.second != m_pairs.front().second; };
    if (std::any_of(
            m_pairs.begin(), m_pairs.end(), isOther)) { // The same files come again for each language.
        auto row = m_rows.begin();
        for (const auto& pair : m_pairs)
            row = std::for_each_n(
                row, pair.first, [&](AnalysisRow& each) { each.file += " | " + pair.second; });
    }
    if (m_statesEveryPart)
        analysis.statedTotalWords = m_tally.rounded(m_statedWords);
    analysis.rows = std::move(m_rows);
    analysis.notes = notes();
    m_tally.finish(analysis);
    return analysis;
}

// A member that is null is as good as missing.
struct MemberForm : Form {
    Place openObject(void* target) const override { return { this, target }; }
    void memberIsNull(Frame&) const override { }
    static Place skipped() { return { &Base::skippingForm(), nullptr }; }

protected:
    ~MemberForm() = default;
};

template <typename Value> Place placeOf(Value& value) { return { &Base::formOf<Value>(), &value }; }

// A number, or an object of numbers by source.
struct CountForm final : MemberForm {
    void setNumber(void* target, std::string_view text) const override
    {
        const auto sum = placeOf(static_cast<CountBySource*>(target)->of[sumOfSources]);
        sum.form->setNumber(sum.target, text);
    }
    Place member(Frame& frame, std::string_view key) const override
    {
        const auto source = placeIn(exportedSources, key);
        return source < exportedSources.size()
            ? placeOf(static_cast<CountBySource*>(frame.target)->of[source])
            : skipped();
    }
};
constexpr CountForm countForm;

template <Source source> struct CategoryForm final : MemberForm {
    Place member(Frame& frame, std::string_view key) const override
    {
        const auto metric = placeIn(metricKeys, key);
        if (metric == metricKeys.size())
            return skipped();
        auto& count = (*static_cast<Category*>(frame.target))[metric];
        if constexpr (source == sumOfSources)
            return { &countForm, &count };
        else
            return placeOf(count.of[source]);
    }
};
template <Source source> constexpr CategoryForm<source> categoryForm;

template <Source source> Place placeOfBand(Grid& grid, std::string_view key)
{
    for (const auto& [name, band] : bandKeys) {
        if (name == key)
            return { &categoryForm<source>, &grid.bands[band] };
    }
    constexpr std::size_t mostOthers = 100;
    if (key.starts_with("match") && grid.others.size() < mostOthers)
        return { &categoryForm<source>, &grid.others[std::string(key)] };
    return MemberForm::skipped();
}

// The bands of one source.
template <Source source> struct GroupForm final : MemberForm {
    Place member(Frame& frame, std::string_view key) const override
    {
        return placeOfBand<source>(*static_cast<Grid*>(frame.target), key);
    }
};
template <Source source> constexpr GroupForm<source> groupForm;

struct GridForm final : MemberForm {
    Place openObject(void* target) const override
    {
        return { this, &static_cast<std::optional<Grid>*>(target)->emplace() };
    }
    Place member(Frame& frame, std::string_view key) const override
    {
        static constexpr std::array<const Form*, sourcesOfAPI.size()> groups { nullptr,
            &groupForm<translationMemory>, &groupForm<machineTranslation>, &groupForm<nonTranslatable>,
            &groupForm<internalFuzzy> };
        auto& grid = *static_cast<Grid*>(frame.target);
        if (key == "total" || key == "all")
            return { &categoryForm<sumOfSources>, &grid.total };
        if (key == "available")
            return placeOf(grid.isAvailable);
        if (const auto source = placeIn(sourcesOfAPI, key); source != sumOfSources && source < groups.size())
            return { groups[source], &grid };
        return placeOfBand<sumOfSources>(grid, key);
    }
};
constexpr GridForm gridForm;

// These take the collector as their target.
struct JobForm final : MemberForm {
    Place member(Frame& frame, std::string_view key) const override
    {
        auto& job = static_cast<Collector*>(frame.target)->job;
        if (key == "fileName" || key == "filename")
            return placeOf(job.name);
        return key == "data" ? Place { &gridForm, &job.grid } : skipped();
    }
    void close(Frame& frame, const Base::ReadingContext&) const override
    {
        static_cast<Collector*>(frame.target)->endJob();
    }
};
constexpr JobForm jobForm;

class ListForm final : public MemberForm {
public:
    explicit constexpr ListForm(const Form& elements)
        : m_elements(&elements)
    {
    }
    Place openArray(void* target) const override { return { this, target }; }
    Place openObject(void* target) const override { return Form::openObject(target); }
    Place element(Frame& frame) const override { return { m_elements, frame.target }; }

private:
    const Form* m_elements;
};
constexpr ListForm jobsForm(jobForm);

struct PartForm final : MemberForm {
    Place member(Frame& frame, std::string_view key) const override
    {
        auto& collector = *static_cast<Collector*>(frame.target);
        if (key == "sourceLang")
            return placeOf(collector.part.sourceLanguage);
        if (key == "targetLang")
            return placeOf(collector.part.targetLanguage);
        if (key == "data")
            return { &gridForm, &collector.part.grid };
        return key == "jobs" ? Place { &jobsForm, &collector } : skipped();
    }
    void close(Frame& frame, const Base::ReadingContext&) const override
    {
        static_cast<Collector*>(frame.target)->endPart();
    }
};
constexpr PartForm partForm;
constexpr ListForm partsForm(partForm);

// The analysis as it is exported or answered, or in the message that tells of it.
struct AnalysisForm final : MemberForm {
    Place openArray(void*) const override { return skipped(); }
    Place member(Frame& frame, std::string_view key) const override
    {
        auto& collector = *static_cast<Collector*>(frame.target);
        if (key == "analyse")
            return { this, &collector };
        if (key != "analyseLanguageParts")
            return skipped();
        collector.hasParts = true;
        return { &partsForm, &collector };
    }
};
constexpr AnalysisForm analysisForm;

} // namespace

Analysis read(std::string_view data, const std::string& name, Base::Instant now)
{
    Collector collector(name);
    try {
        Base::readJson(Tamberlin::decodeText(data, "UTF-8").text(), analysisForm, &collector, {});
    } catch (const Base::DecodingError& error) {
        throw ImportError(fmt::format("“{}” couldn’t be read as a Phrase analysis: {}", name, error.what()));
    }
    if (!collector.hasParts)
        throw ImportError(
            fmt::format("“{}” isn’t a Phrase analysis (no “analyseLanguageParts”). In Phrase, open "
                        "the analysis and download it as JSON or CSV.",
                name));
    return collector.finished(now);
}

} // namespace Pallisande::PhraseJSON
