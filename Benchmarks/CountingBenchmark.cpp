// How fast the steps of counting are, each by itself, on the documents of a folder, which are read into
// memory first (Google Benchmark):
//
//     make_documents.py FOLDER --scale 0.1
//     counting-benchmark FOLDER [--benchmark_filter=…]
//
// Texts are cut into blocks, counted, cut into sentences and looked up; every document is read, and counted
// as a whole.

#include "Base/DurableFile.h"
#include "TamberlinKit/Counting/Counter.h"
#include "TamberlinKit/Counting/Sentences.h"
#include "TamberlinKit/Counting/TextCounter.h"
#include "TamberlinKit/Readers/Readers.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <memory>

namespace {

using namespace Tamberlin;

using Reader = Extracted (*)(std::string_view file, std::string name, const std::stop_token& cancel);

struct Document {
    std::string name;
    Base::LargeVector<char> bytes;
    Reader read;

    std::string_view view() const { return { bytes.data(), bytes.size() }; }
    Extracted extracted() const { return read(view(), name, {}); }
};

Reader readerOf(const std::filesystem::path& path)
{
    static constexpr std::pair<std::string_view, Reader> readers[] { { ".docx", readDocx },
        { ".html", readHtml }, { ".odt", readOdt }, { ".pptx", readPptx }, { ".rtf", readRtf },
        { ".srt", readSubtitles }, { ".txt", readText }, { ".xlsx", readXlsx } };
    for (const auto& [extension, reader] : readers) {
        if (path.extension() == extension)
            return reader;
    }
    return nullptr;
}

template <typename Work>
void add(std::string_view step, const std::shared_ptr<const Document>& document, Work work)
{
    benchmark::RegisterBenchmark(fmt::format("{}/{}", step, document->name).c_str(),
        [document, work](benchmark::State& state) {
            for (auto _ : state)
                benchmark::DoNotOptimize(work());
            state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations())
                * static_cast<std::int64_t>(document->bytes.size()));
        })
        ->Unit(benchmark::kMillisecond);
}

template <typename Use> std::size_t eachSentence(std::string_view text, Use use)
{
    TextBlocks blocks(text);
    SentenceReader reader(blocks);
    std::size_t count = 0;
    for (std::string_view sentence; reader.next(sentence); ++count)
        use(sentence);
    return count;
}

void addText(const std::shared_ptr<const Document>& document)
{
    add("blocks", document, [document] {
        TextBlocks blocks(document->view());
        std::uint64_t letters = 0;
        for (std::size_t at = 0; at < document->bytes.size(); at += TextBlock::size)
            letters ^= blocks.at(at).letters;
        return letters;
    });
    add("stats", document, [document] { return countText(document->view(), {}).words; });
    add("sentences", document,
        [document] { return eachSentence(document->view(), [](std::string_view) {}); });
    const auto extracted = std::make_shared<const Extracted>(document->extracted());
    const auto sentences = std::make_shared<std::vector<SeenSentences::Sentence>>();
    for (const auto& segment : extracted->segments) {
        eachSentence(segment.text, [&](std::string_view sentence) {
            if (sentence.data() >= document->bytes.data()
                && sentence.data() < document->bytes.data() + document->bytes.size())
                sentences->emplace_back(sentence, true);
        });
    }
    add("look-up", document, [sentences] {
        SeenSentences seen;
        std::size_t found = 0;
        for (const auto& sentence : *sentences)
            found += !seen.insert(sentence);
        return found;
    });
}

void addDocument(const std::filesystem::path& path)
{
    const auto read = readerOf(path);
    if (!read)
        return;
    const auto document = std::make_shared<const Document>(
        Document { path.filename().string(), Base::readBytes(path, 1 << 30), read });
    if (path.extension() == ".txt")
        addText(document);
    add("read", document, [document] { return document->extracted().segments.size(); });
    add("count", document, [document] {
        SeenSentences seen;
        return Counter::count(document->extracted(), 0, {}, seen).total.words;
    });
}

} // namespace

int main(int count, char** arguments)
try {
    benchmark::Initialize(&count, arguments);
    if (count != 2) {
        fmt::print(stderr, "counting-benchmark FOLDER\n");
        return 1;
    }
    for (const auto& entry : std::filesystem::directory_iterator(arguments[1]))
        addDocument(entry.path());
    benchmark::RunSpecifiedBenchmarks();
} catch (const std::exception& error) {
    fmt::print(stderr, "{}\n", error.what());
    return 1;
}
