#include "PallisandeKit/Analyses/FileCounting.h"

#include "TamberlinKit/Counting/Counter.h"
#include "Tests/Support/Samples.h"

#include <gtest/gtest.h>

using namespace Pallisande;

namespace {

TEST(FileCounting, makesAnAnalysisOfABatch)
{
    using Tamberlin::Extracted;
    const std::vector<Extracted> files {
        { .name = "a.txt", .segments = { { "One two. One two." } }, .notes = { "Seen." } },
        { .name = "b.pdf", .segments = { { "One two. Three" } }, .approximate = true }
    };
    const Tamberlin::BatchCount batch { Tamberlin::Counter::count(files, {}), { { "c.doc", "It failed." } } };
    const auto analysis = FileCounting::analysis(batch, ::Test::moment().now);
    EXPECT_EQ(analysis.source, AnalysisSource::tamberlinCount);
    EXPECT_EQ(analysis.name, "2 files");
    ASSERT_EQ(analysis.rows.size(), 2u);
    EXPECT_EQ(analysis.rows[1].file, "b.pdf");
    EXPECT_EQ(analysis.rows[0].counts.words,
        (BandMap<std::int64_t> { { MatchBand::repetitions, 2 }, { MatchBand::noMatch, 2 } }));
    EXPECT_EQ(analysis.rows[1].counts.words,
        (BandMap<std::int64_t> { { MatchBand::repetitions, 2 }, { MatchBand::noMatch, 1 } }));
    EXPECT_EQ(analysis.rows[0].counts.segments,
        (BandMap<std::int64_t> { { MatchBand::repetitions, 1 }, { MatchBand::noMatch, 1 } }));
    EXPECT_EQ(analysis.rows[0].counts.characters,
        (BandMap<std::int64_t> { { MatchBand::repetitions, 8 }, { MatchBand::noMatch, 9 } }));
    std::vector<std::string> notes;
    for (const auto& note : analysis.notes)
        notes.push_back(sentence(note));
    EXPECT_EQ(notes,
        (std::vector<std::string> { "PDF counts come from the text layer and are approximate (≈).",
            "a.txt: Seen.", "“c.doc” wasn’t counted: It failed." }));
    EXPECT_EQ(analysis.mismatchCount(), 0);
}

} // namespace
