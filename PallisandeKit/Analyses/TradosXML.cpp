#include "PallisandeKit/Analyses/TradosXML.h"

#include "Base/Checked.h"
#include "TamberlinKit/Markup/XMLEvents.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace Pallisande::TradosXML {

namespace {

constexpr std::size_t deepest = 64; // Real reports have five levels.

// What a category element stands for; the label is of those that a note must name.
struct Category {
    std::string_view element;
    MatchBand band;
    std::string_view mergedLabel;
};

constexpr Category categories[] {
    { "perfect", MatchBand::perfect, "" },
    { "inContextExact", MatchBand::context, "" },
    { "exact", MatchBand::exact, "" },
    { "locked", MatchBand::perfect, "Locked" },
    { "crossFileRepeated", MatchBand::repetitions, "Cross-file repetitions" },
    { "repeated", MatchBand::repetitions, "" },
    { "new", MatchBand::noMatch, "" },
};

// Goes along with the document and keeps only its numbers.
class Collector {
public:
    void start(std::string_view element, Tamberlin::XMLAttributes attributes)
    {
        if (element == "project")
            return; // Its name isn't used; the analysis is named after the file.
        if (element == "language")
            takeFirst(m_targetLanguage, attributes.find("name"));
        else if (element == "file") {
            const auto name = attributes.find("name");
            m_fileName = name ? std::string(*name) : nextFileName();
        } else if (element == "batchTotal")
            m_inBatch = true;
        else if (element == "analyse")
            m_current.emplace();
        else if (m_current)
            category(element, attributes);
        m_sawAnalyse = m_sawAnalyse || m_current;
    }

    void end(std::string_view element)
    {
        if (element == "analyse" && m_current) {
            if (m_inBatch)
                m_batch = std::move(*m_current);
            else
                m_files.push_back({ m_fileName ? *m_fileName : nextFileName(), std::move(*m_current) });
            m_current.reset();
        } else if (element == "file") {
            m_fileName.reset();
        } else if (element == "batchTotal") {
            m_inBatch = false;
        }
    }

    struct File {
        std::string name;
        Reader reader;
    };

    std::vector<File>& files() { return m_files; }
    const std::optional<Reader>& batch() const { return m_batch; }
    const std::optional<std::string>& targetLanguage() const { return m_targetLanguage; }
    bool sawAnalyse() const { return m_sawAnalyse; }
    bool isAbsurd() const { return m_isAbsurd; }

private:
    static void takeFirst(std::optional<std::string>& value, std::optional<std::string_view> found)
    {
        if (!value && found)
            value = std::string(*found);
    }

    std::string nextFileName() const { return fmt::format("File {}", m_files.size() + 1); }

    // A whole number with an optional sign. One that can't be a count makes the report absurd.
    std::optional<std::int64_t> number(std::string_view text)
    {
        if (text.starts_with('+'))
            text.remove_prefix(text.size() > 1 && text[1] == '-' ? 0 : 1);
        std::int64_t value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error == std::errc::invalid_argument || end != text.data() + text.size())
            return std::nullopt;
        if (error != std::errc() || value > Base::Checked::largestCount
            || value < -Base::Checked::largestCount) {
            m_isAbsurd = true;
            return 0;
        }
        return value;
    }

    std::int64_t numberOrZero(Tamberlin::XMLAttributes attributes, std::string_view name)
    {
        const auto text = attributes.find(name);
        return text ? number(*text).value_or(0) : 0;
    }

    // Both are within the bound, so the sum can't overflow; one beyond the bound makes the report absurd.
    void add(std::int64_t& total, std::int64_t count)
    {
        const auto sum = total + count;
        if (sum > Base::Checked::largestCount || sum < -Base::Checked::largestCount)
            m_isAbsurd = true;
        else
            total = sum;
    }

    Numbers numbers(Tamberlin::XMLAttributes attributes)
    {
        const auto read = [&](std::string_view name) {
            const auto text = attributes.find(name);
            return text ? number(*text) : std::nullopt;
        };
        return { read("segments"), read("words").value_or(0), read("characters") };
    }

    void addToBand(MatchBand band, const Numbers& numbers)
    {
        add(m_current->counts.words[band], numbers.words);
        if (numbers.segments)
            add(m_current->counts.segments[band], *numbers.segments);
        if (numbers.characters)
            add(m_current->counts.characters[band], *numbers.characters);
    }

    void addMerged(const std::string& label, MatchBand band, std::int64_t words)
    {
        auto& merged = m_current->merged[label];
        merged.band = band;
        add(merged.words, words);
    }

    void category(std::string_view element, Tamberlin::XMLAttributes attributes)
    {
        if (element == "fuzzy")
            return fuzzy(attributes);
        if (element == "total") {
            m_current->total = numbers(attributes);
            return;
        }
        if (element == "internalFuzzy") {
            const auto found = numbers(attributes);
            add(m_current->internalFuzzyWords, found.words);
            add(m_current->internalFuzzySegments, found.segments.value_or(0));
            add(m_current->internalFuzzyCharacters, found.characters.value_or(0));
            return;
        }
        for (const auto& [name, band, label] : categories) {
            if (name != element)
                continue;
            const auto found = numbers(attributes);
            addToBand(band, found);
            if (!label.empty())
                addMerged(std::string(label), band, found.words);
            return;
        }
    }

    void fuzzy(Tamberlin::XMLAttributes attributes)
    {
        const auto minimum = numberOrZero(attributes, "min"), maximum = numberOrZero(attributes, "max");
        const auto band = bandForPercent(minimum);
        const auto found = numbers(attributes);
        addToBand(band, found);
        if (!isStandardRange(band, minimum, maximum))
            addMerged(fmt::format("Fuzzy {}–{}%", minimum, maximum), band, found.words);
    }

    std::vector<File> m_files;
    std::optional<Reader> m_batch;
    std::optional<Reader> m_current;
    std::optional<std::string> m_targetLanguage;
    std::optional<std::string> m_fileName;
    bool m_inBatch = false;
    bool m_sawAnalyse = false;
    bool m_isAbsurd = false;
};

// Where internal fuzzy matches went, in words.
struct InternalFuzzy {
    std::int64_t asNew = 0, outsideTotal = 0, withoutFit = 0;

    // Decides by the file's own total, which either holds them or not.
    void settle(Reader& reader)
    {
        if (reader.internalFuzzyWords < 1 || !reader.total)
            return;
        const auto words = sum(reader.counts.words);
        if (words + reader.internalFuzzyWords == reader.total->words) {
            reader.counts.words[MatchBand::noMatch] += reader.internalFuzzyWords;
            // A report without segments or characters mustn't seem to have counted none.
            if (reader.internalFuzzySegments != 0)
                reader.counts.segments[MatchBand::noMatch] += reader.internalFuzzySegments;
            if (reader.internalFuzzyCharacters != 0)
                reader.counts.characters[MatchBand::noMatch] += reader.internalFuzzyCharacters;
            asNew += reader.internalFuzzyWords;
        } else if (words == reader.total->words) {
            outsideTotal += reader.internalFuzzyWords;
        } else {
            withoutFit += reader.internalFuzzyWords;
        }
    }
};

std::vector<ImportNote> notes(const std::vector<Collector::File>& files, const InternalFuzzy& internalFuzzy)
{
    std::vector<ImportNote> notes { UnverifiedLayout { "Trados Studio" } };
    if (internalFuzzy.asNew >= 1)
        notes.push_back(InternalFuzzyAsNew { internalFuzzy.asNew });
    if (internalFuzzy.outsideTotal >= 1)
        notes.push_back(InternalFuzzyOutsideTotal { internalFuzzy.outsideTotal });
    if (internalFuzzy.withoutFit >= 1)
        notes.push_back(
            TextNote { fmt::format("Internal fuzzy matches ({} words) were left out: the bands don’t add "
                                   "up to the file’s total with or without them.",
                internalFuzzy.withoutFit) });
    std::map<std::string, Reader::Merged> merged;
    bool hasCharacters = false;
    for (const auto& file : files) {
        for (const auto& [label, found] : file.reader.merged) {
            auto& total = merged[label];
            total.band = found.band;
            total.words += found.words;
        }
        hasCharacters = hasCharacters || !file.reader.counts.characters.isEmpty();
    }
    for (const auto& [label, found] : merged) {
        if (found.words >= 1)
            notes.push_back(MergedCategory { label, found.band, found.words });
    }
    if (!hasCharacters)
        notes.push_back(NoCharacters {});
    return notes;
}

AnalysisRow row(Collector::File& file)
{
    AnalysisRow row {
        .id = Base::Uuid::random(), .file = std::move(file.name), .counts = file.reader.counts
    };
    if (const auto& total = file.reader.total) {
        row.statedWords = total->words;
        row.statedSegments = total->segments;
        row.statedCharacters = total->characters;
    }
    return row;
}

// Sums over all files stay within the bound when each file's counts and internal matches together do.
bool fitsTogether(const std::vector<Collector::File>& files)
{
    CountBound bound;
    for (const auto& [name, reader] : files) {
        AnalysisRow probe { .counts = reader.counts };
        if (reader.total) {
            probe.statedWords = reader.total->words;
            probe.statedSegments = reader.total->segments;
            probe.statedCharacters = reader.total->characters;
        }
        AnalysisRow internal;
        internal.counts.words[MatchBand::noMatch] = reader.internalFuzzyWords;
        internal.counts.segments[MatchBand::noMatch] = reader.internalFuzzySegments;
        internal.counts.characters[MatchBand::noMatch] = reader.internalFuzzyCharacters;
        if (!bound.admits(probe) || !bound.admits(internal))
            return false;
    }
    return true;
}

} // namespace

Analysis read(std::string_view data, const std::string& name, Base::Instant now)
{
    Collector collector;
    const auto failure = Tamberlin::parseXML(
        data, { .deepest = deepest },
        [&](std::string_view element, Tamberlin::XMLAttributes attributes) {
            collector.start(element, attributes);
        },
        [&](std::string_view element) { collector.end(element); });
    if (failure)
        throw ImportError(fmt::format(
            "“{}” isn’t readable XML ({}).", name, failure->empty() ? "unknown error" : *failure));
    if (!collector.sawAnalyse())
        throw ImportError(
            fmt::format("“{}” isn’t a Trados Studio analysis report (no “analyse” section). In Trados, "
                        "open Reports, choose the Analyze Files report and save it as XML.",
                name));
    auto& files = collector.files();
    if (files.empty())
        throw ImportError(fmt::format("“{}” has no files in its analysis.", name));
    if (collector.isAbsurd() || !fitsTogether(files))
        throw ImportError(fmt::format("“{}” states counts that are too large to be right.", name));

    InternalFuzzy internalFuzzy;
    for (auto& file : files)
        internalFuzzy.settle(file.reader);

    Analysis analysis {
        .id = Base::Uuid::random(), .source = AnalysisSource::tradosXML, .name = name, .importedAt = now
    };
    analysis.targetLanguage = collector.targetLanguage().value_or("");
    analysis.notes = notes(files, internalFuzzy);
    if (const auto& batch = collector.batch(); batch && batch->total)
        analysis.statedTotalWords = batch->total->words;
    analysis.rows.reserve(files.size());
    for (auto& file : files)
        analysis.rows.push_back(row(file));
    return analysis;
}

} // namespace Pallisande::TradosXML
