#include "TamberlinKit/Batch/CountBatch.h"

#include "TamberlinKit/Batch/DocumentList.h"
#include "TamberlinKit/Counting/Counter.h"
#include "TamberlinKit/Quotes/CountCSV.h"
#include "TamberlinKit/Text/ReadError.h"
#include "Tests/Support/Folders.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sys/stat.h>

namespace Tamberlin {

namespace {

namespace fs = std::filesystem;

class CountBatch : public testing::Test {
protected:
    fs::path put(const std::string& name, const std::string& text)
    {
        const auto path = folder() / name;
        fs::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }
    fs::path folder() const { return m_folder.path(); }

    static BatchCount count(const std::vector<fs::path>& files, unsigned threads = 2)
    {
        return countBatch(files, { .threads = threads }, {});
    }

private:
    ::Test::TemporaryFolder m_folder;
};

TEST_F(CountBatch, countsInTheOrderOfTheListHoweverManyThreadsRead)
{
    std::vector<fs::path> files;
    for (int number = 0; number < 40; ++number) {
        std::string text = "The same sentence everywhere. ";
        for (int line = 0; line < number % 7 * 300; ++line)
            text += "Sentence " + std::to_string(line) + " of some.\n";
        files.push_back(put("file " + std::to_string(number) + ".txt", text));
    }
    const auto one = count(files, 1);
    ASSERT_EQ(one.files.size(), files.size());
    EXPECT_EQ(one.files[0].repeated, TextStats());
    EXPECT_EQ(one.files[1].repeated.segments, 1);
    for (const unsigned threads : { 2u, 3u, 8u, 0u })
        EXPECT_EQ(count(files, threads).files, one.files) << threads;
    std::vector<std::size_t> progress;
    countBatch(files, { .onProgress = [&](std::size_t done, std::size_t) { progress.push_back(done); } }, {});
    EXPECT_EQ(progress.size(), files.size());
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
}

TEST_F(CountBatch, goesOnPastFilesThatCannotBeRead)
{
    const auto good = put("good.txt", "Three good words"), broken = put("broken.docx", "no archive"),
               unknown = put("picture.png", "x"), pipe = folder() / "pipe.txt";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const auto result = count({ broken, folder() / "gone.txt", good, unknown, pipe, folder() });
    ASSERT_EQ(result.files.size(), 1u);
    EXPECT_EQ(result.files[0].name, "good.txt");
    EXPECT_EQ(result.files[0].total.words, 3);
    std::vector<std::string> sentences;
    for (const auto& failure : result.failures)
        sentences.push_back(failure.message);
    EXPECT_EQ(sentences,
        (std::vector<std::string> {
            "“broken.docx” isn’t a Word (.docx) file that can be read (it isn’t a zip package).",
            "“gone.txt” couldn’t be opened: " + std::generic_category().message(ENOENT),
            "“picture.png” isn’t a kind of document that can be counted.",
            "“pipe.txt” couldn’t be opened: not a regular file",
            "“" + folder().filename().string() + "” isn’t a kind of document that can be counted." }));
}

TEST_F(CountBatch, stopsWhenAsked)
{
    std::vector<fs::path> files(200, put("a.txt", std::string(100'000, 'a')));
    std::stop_source stop;
    const BatchOptions options { .onProgress = [&](std::size_t done, std::size_t) {
        if (done == 3)
            stop.request_stop();
    } };
    EXPECT_THROW(countBatch(files, options, stop.get_token()), Cancelled);
}

TEST_F(CountBatch, findsTheDocumentsOfFolders)
{
    for (const auto* const name : { "b/file 10.txt", "b/file 9.docx", "b/.hidden.txt", "b/~$file 9.docx",
             "b/note.png", "a.html", "b/c/deep.SRT" })
        put(name, "");
    fs::create_directory_symlink(folder() / "b", folder() / "b/c/loop");
    fs::create_symlink(folder() / "a.html", folder() / "b/linked.html");
    std::vector<std::string> found;
    for (const auto& path : documentsIn({ folder(), folder() / "a.html" }))
        found.push_back(path.lexically_relative(folder()).string());
    EXPECT_EQ(found,
        (std::vector<std::string> {
            "a.html", "b/file 9.docx", "b/file 10.txt", "b/linked.html", "b/c/deep.SRT", "a.html" }));
}

TEST(CountCSV, givesALineAFileThatSpreadsheetsTakeForNothingElse)
{
    const std::vector<Extracted> files { { .name = "=cmd|,\"x\".txt",
                                             .segments
                                             = { { "One two. One two." }, { "Note", Part::comments } },
                                             .notes = { "First.", "Second\nline." } },
        { .name = "日本.pdf", .format = FileFormat::pdf, .segments = { { "日本" } }, .approximate = true } };
    EXPECT_EQ(countCSV(Counter::count(files, {})),
        "File,Format,Words,Characters without spaces,Characters with spaces,CJK characters,Segments,Repeated "
        "words,"
        "Repeated segments,Words: Main text,Words: Headers and footers,Words: Footnotes and endnotes,"
        "Words: Text boxes and shapes,Words: Slide notes,Words: Hidden text,Words: "
        "Comments,Approximate,Notes\r\n"
        "\"'=cmd|,\"\"x\"\".txt\",Text,4,14,17,0,2,2,1,4,0,0,0,0,0,1,,\"First. Second\nline.\"\r\n"
        "日本.pdf,PDF,2,2,2,2,1,0,0,2,0,0,0,0,0,0,yes,\r\n"
        "Total,,6,16,19,2,3,2,1,6,0,0,0,0,0,1,yes,\r\n");
}

} // namespace

} // namespace Tamberlin
