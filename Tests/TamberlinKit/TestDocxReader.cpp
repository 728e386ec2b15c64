#include "Base/Json.h"
#include "TamberlinKit/Counting/Counter.h"
#include "TamberlinKit/Readers/Readers.h"
#include "Tests/TamberlinKit/OfficeFiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <span>
#include <unicode/unistr.h>

using namespace Tamberlin;
using ::Test::Files, ::Test::lines, ::Test::refusal, ::Test::relationships, ::Test::zipOf;
using Lines = std::vector<std::string>;
using Notes = std::vector<std::string>;
using ::Test::operator+;

namespace {

const std::pair<std::string, std::string> root = relationships("", { { "officeDocument", "w/d.xml" } });

std::string run(const std::string& text, const std::string& properties = "")
{
    return "<w:r>" + (properties.empty() ? "" : "<w:rPr>" + properties + "</w:rPr>") + "<w:t>" + text
        + "</w:t></w:r>";
}

std::string paragraph(const std::string& content) { return "<w:p>" + content + "</w:p>"; }

std::string field(const std::string& code, const std::string& result)
{
    const auto mark
        = [](const std::string& kind) { return "<w:r><w:fldChar w:fldCharType='" + kind + "'/></w:r>"; };
    return mark("begin") + code + mark("separate") + result + mark("end");
}

std::string codeOf(const std::string& text) { return "<w:r><w:instrText>" + text + "</w:instrText></w:r>"; }

std::string box(const std::string& paragraphs) { return "<w:txbxContent>" + paragraphs + "</w:txbxContent>"; }

Files document(const std::string& body)
{
    return { root, { "w/d.xml", "<w:document><w:body>" + body + "</w:body></w:document>" } };
}

Extracted read(const Files& files) { return readDocx(zipOf(files), "n.docx", {}); }
Lines linesOf(const std::string& body) { return lines(read(document(body))); }

TEST(DocxReader, runsMakeUpTheTextOfAParagraph)
{
    const std::pair<std::string, std::string> cases[] {
        { run("Hel") + "<w:proofErr/>" + run("lo", "<w:b/>") + run(" you"), "Hello you" },
        { "<w:pPr><w:tabs><w:tab w:val='left'/></w:tabs></w:pPr>" + run("a<!-- -->b</w:t><w:tab/><w:t>c"),
            "ab c" },
        { run("a</w:t><w:br/><w:t>b</w:t><w:cr/><w:t>c</w:t><w:ptab/><w:t>d</w:t><w:br "
              "w:type='page'/><w:t>e"),
            "a\nb\nc d\ne" },
        { run("e</w:t><w:noBreakHyphen/><w:t>mail</w:t><w:softHyphen/><w:lastRenderedPageBreak/><w:t>s"),
            "e\u2011mail\u00ADs" },
        { "<w:r><w:sym w:font='Wingdings' w:char='F0E0'/><w:sym w:char='x'/><w:sym w:char='D800'/></w:r>"
                + run(" a"),
            "\uF0E0 a" },
        // A picture character: the branch for those who know it, not both.
        { "<w:r><mc:AlternateContent><mc:Choice><w16se:symEx w16se:char='1F60A'/></mc:Choice><mc:Fallback>"
          "<w:t>\U0001F60A</w:t></mc:Fallback></mc:AlternateContent></w:r>",
            "\U0001F60A" },
        { "<w:smartTag><w:smartTagPr><w:attr w:val='no'/></w:smartTagPr><w:hyperlink r:id='r'>" + run("a")
                + "</w:hyperlink></w:smartTag><w:customXml>" + run("b") + "</w:customXml>",
            "ab" },
        { "<w:sdt><w:sdtPr><w:rPr><w:vanish/></w:rPr><w:dropDownList><w:listItem "
          "w:value='no'/></w:dropDownList>"
          "</w:sdtPr><w:sdtContent>"
                + run("chosen") + "</w:sdtContent></w:sdt>",
            "chosen" },
        { "<w:r><w:ruby><w:rt>" + run("とう") + "</w:rt><w:rubyBase>" + run("東")
                + "</w:rubyBase></w:ruby></w:r>" + run("京"),
            "東京" },
        { run("x=")
                + "<m:oMath><m:f><m:num><m:r><w:rPr/><m:t>way</m:t></m:r></m:num><m:den><m:r><m:t>time</m:t>"
                  "</m:r></m:den></m:f><m:sSup><m:e><m:r><m:t>c</m:t></m:r></m:e><m:sup><m:r><m:t>2</m:t></"
                  "m:r>"
                  "</m:sup></m:sSup></m:oMath>",
            "x=\nway\ntime\nc2" },
        { "<w:r><w:drawing><wp:docPr descr='alternative'/></w:drawing></w:r>" + run("a"), "a" },
        { run("a &amp; <![CDATA[<b>]]>"), "a & <b>" },
    };
    for (const auto& [content, text] : cases)
        EXPECT_EQ(linesOf(paragraph(content)), Lines { "body: " + text }) << content;
    EXPECT_EQ(linesOf("<w:p/>" + paragraph("<w:r/>")), Lines {});
}

TEST(DocxReader, tablesGiveASegmentAParagraph)
{
    EXPECT_EQ(linesOf("<w:tbl><w:tr><w:tc>" + paragraph(run("a")) + paragraph(run("b"))
                  + "</w:tc><w:tc><w:tbl><w:tr>"
                    "<w:tc>"
                  + paragraph(run("in")) + "</w:tc></w:tr></w:tbl><w:p/></w:tc></w:tr></w:tbl>"
                  + paragraph(run("after"))),
        (Lines { "body: a", "body: b", "body: in", "body: after" }));
}

TEST(DocxReader, ofFieldsTheResultCounts)
{
    const auto code = codeOf(" IF ") + field(codeOf(" A "), run("inner")) + codeOf(" = 1 ");
    const auto outer = field(code, run("b") + field(codeOf(" C "), run("c")));
    EXPECT_EQ(linesOf(paragraph(run("a") + outer + run("d"))), Lines { "body: abcd" });
    EXPECT_EQ(linesOf(paragraph("<w:fldSimple w:instr='PAGE'>" + run("7") + "</w:fldSimple>")),
        Lines { "body: 7" });
    EXPECT_EQ(linesOf(paragraph(run("a") + field(codeOf(" SET mark b"), run("b")) + run("c"))),
        Lines { "body: ac" });
    // A field may hold paragraphs.
    EXPECT_EQ(linesOf(paragraph(field(codeOf("TOC"), run("x") + "</w:p><w:p>" + run("y")) + run("z"))),
        (Lines { "body: x", "body: yz" }));
    // Where the end is missing, no text is lost behind the code; what is read twice then comes once.
    const std::string begin = "<w:r><w:fldChar w:fldCharType='begin'/></w:r>" + codeOf(" PAGE ");
    const auto chart = Files { relationships("w/d.xml", { { "chart", "c.xml" } }),
        { "w/c.xml", "<c:chartSpace><c:rich><a:p><a:t>title</a:t></a:p></c:rich></c:chartSpace>" } };
    EXPECT_EQ(lines(read(document(paragraph(run("a") + "<c:chart r:id='chart1'/>" + begin)
                             + paragraph(run("b") + field(codeOf(" C "), run("c"))))
                  + chart)),
        (Lines { "body: a", "textBoxes: title", "body: bc" }));
    EXPECT_EQ(linesOf(paragraph(run("a") + box(paragraph(begin + run("in"))) + run("b"))),
        (Lines { "body: ab", "textBoxes: in" }));
}

TEST(DocxReader, revisionsAreTakenAsAccepted)
{
    const std::string deletedEnd = "<w:pPr><w:rPr><w:del/></w:rPr></w:pPr>";
    const std::pair<std::string, Lines> cases[] {
        { paragraph(run("a") + "<w:del>" + run("no") + "<w:r><w:delText>no</w:delText></w:r></w:del><w:ins>"
              + run("b") + "<w:del>" + run("no") + "</w:del></w:ins><w:moveFrom>" + run("no")
              + "</w:moveFrom><w:moveTo>" + run("c") + "</w:moveTo>"),
            { "body: abc" } },
        { paragraph(run("a", "<w:rPrChange><w:rPr><w:vanish/></w:rPr></w:rPrChange>")), { "body: a" } },
        // Without its end, a paragraph goes on with the next one, but never beyond a cell.
        { paragraph(deletedEnd + run("Al")) + paragraph(deletedEnd + "<w:del>" + run("no") + "</w:del>")
                + paragraph(run("pha")) + paragraph(run("b")),
            { "body: Alpha", "body: b" } },
        { "<w:tbl><w:tc>" + paragraph(deletedEnd + run("a")) + "</w:tc><w:tc>"
                + paragraph(deletedEnd + run("b")) + "</w:tc></w:tbl>" + paragraph(run("c")),
            { "body: a", "body: b", "body: c" } },
    };
    for (const auto& [body, expected] : cases)
        EXPECT_EQ(linesOf(body), expected) << body;
}

TEST(DocxReader, boxesStandApartFromTheirAnchor)
{
    const auto anchored = [](const std::string& content) {
        return paragraph(run("Hel") + "<w:r>" + content + "</w:r>" + run("lo"));
    };
    const auto one = box(paragraph(run("box")) + paragraph(run("two")));
    const std::pair<std::string, Lines> cases[] {
        { anchored("<mc:AlternateContent><mc:Choice Requires='wps'><w:drawing>" + one
              + "</w:drawing></mc:Choice><mc:Choice>" + one + "</mc:Choice><mc:Fallback><w:pict><v:textbox>"
              + one + "</v:textbox></w:pict></mc:Fallback></mc:AlternateContent>"),
            { "body: Hello", "textBoxes: box", "textBoxes: two" } },
        { anchored("<mc:AlternateContent><mc:Fallback>"
              + box(paragraph(run("a") + box(paragraph(run("in"))) + run("b")))
              + "</mc:Fallback></mc:AlternateContent>"),
            { "body: Hello", "textBoxes: ab", "textBoxes: in" } },
        { anchored("<w:drawing><lc:lockedCanvas><a:txBody><a:p><a:r><a:rPr><a:sym "
                   "char='41'/></a:rPr><a:t>shape</a:t>"
                   "</a:r><a:br/><a:r><a:t>text</a:t></a:r></a:p></a:txBody></lc:lockedCanvas></w:drawing>"),
            { "body: Hello", "textBoxes: shape\ntext" } },
        { anchored("<w:pict><v:shape alt='no'><v:textpath string='DRAFT'/></v:shape></w:pict>"),
            { "body: Hello", "textBoxes: DRAFT" } },
    };
    for (const auto& [body, expected] : cases)
        EXPECT_EQ(linesOf(body), expected) << body;
}

TEST(DocxReader, hiddenTextStandsApart)
{
    const std::string vanish = "<w:vanish/>";
    const auto style = [](const std::string& attributes, const std::string& content) {
        return "<w:style " + attributes + ">" + content + "</w:style>";
    };
    const Files styles { relationships("w/d.xml", { { "styles", "s.xml" } }),
        { "w/s.xml",
            "<w:styles>"
                + style(
                    "w:type='paragraph' w:default='1' w:styleId='N'", "<w:rPr><w:vanish w:val='0'/></w:rPr>")
                + style("w:type='paragraph' w:styleId='P'", "<w:basedOn w:val='B'/>")
                + style("w:type='paragraph' w:styleId='B'", "<w:rPr><w:vanish/></w:rPr>")
                + style("w:type='character' w:styleId='C'", "<w:rPr><w:vanish/></w:rPr>")
                + style(
                    "w:type='table' w:styleId='T'", "<w:tblStylePr><w:rPr><w:vanish/></w:rPr></w:tblStylePr>")
                + style("w:type='paragraph' w:styleId='L'", "<w:basedOn w:val='L'/>") + "</w:styles>" } };
    const auto styled = [](const std::string& name, const std::string& runs) {
        return paragraph("<w:pPr><w:pStyle w:val='" + name + "'/><w:rPr><w:vanish/></w:rPr></w:pPr>" + runs);
    };
    const std::pair<std::string, Lines> cases[] {
        { paragraph(run("Hel") + run("h1", vanish) + run("h2", vanish)
              + run("lo", "<w:vanish w:val='false'/>") + run("h3", vanish)),
            { "body: Hello", "hidden: h1h2", "hidden: h3" } },
        { paragraph(run("a", "<w:webHidden/>") + run("h", "<w:rStyle w:val='C'/>")),
            { "body: a", "hidden: h" } },
        { styled("P", run("h") + run("a", "<w:vanish w:val='0'/>") + run("b", "<w:rStyle w:val='C'/>")),
            { "body: ab", "hidden: h" } },
        { styled("L", run("a")) + styled("T", run("b")) + styled("X", run("c")),
            { "body: a", "body: b", "body: c" } },
        { paragraph("<w:r><w:rPr><w:vanish/></w:rPr>" + box(paragraph(run("h"))) + "</w:r>" + run("a")),
            { "body: a", "hidden: h" } },
    };
    for (const auto& [body, expected] : cases)
        EXPECT_EQ(lines(read(document(body) + styles)), expected) << body;
}

TEST(DocxReader, headersNotesAndCommentsComeOnceEach)
{
    const auto note = [](const std::string& text, const std::string& attributes = "") {
        return "<w:footnote " + attributes + ">" + paragraph("<w:r><w:footnoteRef/></w:r>" + run(text))
            + "</w:footnote>";
    };
    const auto extracted = read(document(paragraph(run("main"))
                                    + "<w:sectPr><w:headerReference r:id='header2'/></w:sectPr>"
                                      "<w:sectPr><w:footerReference r:id='footer3'/>"
                                      "<w:headerReference r:id='header2'/></w:sectPr>")
        + Files { relationships("w/d.xml",
                      { { "header", "unused.xml" }, { "header", "h.xml" }, { "footer", "f.xml" },
                          { "footnotes", "n.xml" }, { "endnotes", "e.xml" }, { "comments", "c.xml" },
                          { "glossaryDocument", "g.xml" } }),
            { "w/h.xml", "<w:hdr>" + paragraph(run("head") + box(paragraph(run("logo")))) + "</w:hdr>" },
            { "w/f.xml", "<w:ftr>" + paragraph(run("foot")) + "</w:ftr>" },
            { "w/unused.xml", "<w:hdr>" + paragraph(run("no")) + "</w:hdr>" },
            { "w/g.xml", "<w:glossaryDocument>" + paragraph(run("no")) + "</w:glossaryDocument>" },
            { "w/n.xml",
                "<w:footnotes>" + note("no", "w:type='separator'") + note("no", "w:type='continuationNotice'")
                    + note("one") + note("two", "w:type='normal'") + "</w:footnotes>" },
            { "w/e.xml",
                "<w:endnotes><w:endnote>" + paragraph(run("end") + box(paragraph(run("boxed"))))
                    + "</w:endnote></w:endnotes>" },
            { "w/c.xml",
                "<w:comments><w:comment w:author='no'>" + paragraph(run("remark") + run("d", "<w:vanish/>"))
                    + "</w:comment></w:comments>" } });
    EXPECT_EQ(lines(extracted),
        (Lines { "body: main", "headersFooters: head", "textBoxes: logo", "headersFooters: foot",
            "footnotes: one", "footnotes: two", "footnotes: end", "textBoxes: boxed", "comments: remarkd" }));
}

TEST(DocxReader, chartsAndDiagramsAreShapes)
{
    const std::string chart = "<c:chart r:id='chart1'/>", diagram = "<dgm:relIds r:dm='data2'/>";
    const auto title = [](const std::string& text) {
        return "<c:chartSpace><c:title><c:rich><a:p><a:t>" + text + "</a:t></a:p></c:rich></c:title>"
            + "<c:tx><c:strRef><c:strCache><c:pt><c:v>cell</c:v></c:pt></c:strCache></c:strRef></c:tx>"
            + "</c:chartSpace>";
    };
    const Files parts { relationships("w/d.xml", { { "chart", "c.xml" }, { "data", "g.xml" } }),
        { "w/c.xml", title("Sales") },
        { "w/g.xml", "<dgm:pt><dgm:t><a:p><a:r><a:t>top</a:t></a:r></a:p></dgm:t></dgm:pt>" } };
    const auto shown = read(document(paragraph(run("Hel") + chart + diagram + run("lo") + chart)) + parts);
    EXPECT_EQ(lines(shown), (Lines { "body: Hello", "textBoxes: Sales", "textBoxes: top" }));
    EXPECT_EQ(shown.notes,
        Notes { "The names of series and categories in 1 chart belong to the data and aren’t counted." });
    const auto hidden = read(document(paragraph("<w:r><w:rPr><w:vanish/></w:rPr>" + chart + "</w:r>")
                                 + paragraph(field(diagram, run("a"))))
        + parts);
    EXPECT_EQ(lines(hidden), (Lines { "hidden: Sales", "body: a" }));
}

TEST(DocxReader, tellsWhatIsNotRead)
{
    EXPECT_EQ(read(document("<w:p><w:drawing><pic:pic/></w:drawing><w:pict><v:imagedata/></"
                            "w:pict><w:object><v:imagedata/>"
                            "</w:object><w:del><pic:pic/></w:del></w:p><w:altChunk/><w:subDoc/><w:subDoc/>"))
                  .notes,
        (Notes { "Text in 2 pictures and 1 embedded object isn’t counted.",
            "A file that was inserted as a whole isn’t counted.",
            "2 subdocuments aren’t counted; count their files too." }));

    // Of a damaged main part, what came before counts, and the headers, whose sections may be lost.
    const auto damaged = read({ root, relationships("w/d.xml", { { "header", "h.xml" } }),
        { "w/h.xml", "<w:hdr>" + paragraph(run("head")) + "</w:hdr>" },
        { "w/d.xml", "<w:document>" + paragraph(run("a")) + "<w:p>" + run("b") + "</w:q>" + run("c") } });
    EXPECT_EQ(lines(damaged), (Lines { "body: a", "body: b", "headersFooters: head" }));
    EXPECT_EQ(damaged.notes, Notes { "Part of n.docx couldn’t be read (mismatched tag)." });
}

TEST(DocxReader, refusesWhatIsNoWordDocument)
{
    const std::string noPackage = "“n” isn’t a Word (.docx) file that can be read (it isn’t a zip package).";
    const std::string noText = "“n” isn’t a Word (.docx) file that can be read (it has no main text).";
    EXPECT_EQ(refusal(readDocx, "Word wrote .doc files differently."), noPackage);
    EXPECT_EQ(refusal(readDocx, ::Test::compoundFile("WordDocument")), noPackage);
    EXPECT_EQ(refusal(readDocx, ::Test::compoundFile("EncryptedPackage")),
        noPackage + " It is protected with a password: remove the password and count it again.");
    EXPECT_EQ(refusal(readDocx, zipOf({ root })), noText);
    EXPECT_EQ(refusal(readDocx, zipOf({ root, { "w/d.xml", "<p:presentation/>" } })), noText);
    EXPECT_EQ(lines(read({ { "word/document.xml",
                  "<document><body><p><r><t>usual</t></r></p></body></document>" } })),
        Lines { "body: usual" });
}

// What another program counted in a document, and whether that must come out exactly. Word stores the length
// of the main text, with blanks and breaks (the marks of paragraphs and the like are taken off in the list).
struct OtherCount {
    std::string kind;
    bool clean = false;
    bool wordsComparable = true;
    std::optional<std::int64_t> words, charactersNoSpaces, charactersWithSpaces;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("kind", &OtherCount::kind),
            Base::field("clean", &OtherCount::clean),
            Base::field("wordsComparable", &OtherCount::wordsComparable),
            Base::field("words", &OtherCount::words),
            Base::field("charactersNoSpaces", &OtherCount::charactersNoSpaces),
            Base::field("charactersWithSpaces", &OtherCount::charactersWithSpaces),
        };
    }
};

struct OtherCounts {
    std::vector<OtherCount> more;

    static constexpr auto fields() { return std::tuple { Base::field("more", &OtherCounts::more) }; }
};

std::string contents(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator(file), {} };
}

TEST(DocxReader, realDocumentsCountAsOtherProgramsCountThem)
{
    const auto samples = std::filesystem::path(PALLISANDE_SAMPLES) / "documents";
    if (!std::filesystem::exists(samples / "oracle.json"))
        GTEST_SKIP() << "There are no samples beside the project.";
    // Where the other program is known to differ: it leaves out the text of diagrams, and takes a soft hyphen
    // for a character.
    struct Difference {
        std::int64_t words, charactersNoSpaces;
        bool operator==(const Difference&) const = default;
    };
    const std::map<std::string, Difference> known {
        { "docx/pandoc-diagram.docx", { 3, 15 } },
        { "docx/powertools-WC014-SmartArt-After.docx", { 3, 3 } },
        { "docx/pandoc-special_punctuation.docx", { 0, -1 } },
    };
    const auto json = contents(samples / "oracle.json");
    const auto first = Base::fromJson<std::map<std::string, OtherCount>>(json, {});
    const auto others = Base::fromJson<std::map<std::string, OtherCounts>>(json, {});
    int recounts = 0, lengths = 0;
    for (const auto& [path, count] : first) {
        if (!path.starts_with("docx/"))
            continue;
        SCOPED_TRACE(path);
        const auto extracted = readDocx(contents(samples / path), path, {});
        std::int64_t length = 0; // In UTF-16 units.
        for (const auto& [text, part] : extracted.segments)
            length += part == Part::body ? icu::UnicodeString::fromUTF8(text.view()).length() : 0;
        const auto ours = Counter::count(std::span(&extracted, 1), {}).front();
        TextStats everything;
        ours.byPart.forEach([&](Part part, const TextStats& stats) {
            if (part != Part::comments && part != Part::hidden)
                everything += stats;
        });
        auto counts = others.at(path).more;
        counts.push_back(count);
        for (const auto& other : counts) {
            if (other.kind == "length") {
                EXPECT_EQ(length, other.charactersWithSpaces);
                ++lengths;
            } else if (other.clean && other.wordsComparable) {
                const auto difference = [&](const TextStats& stats) {
                    return Difference { stats.words - other.words.value(),
                        stats.charactersNoSpaces - other.charactersNoSpaces.value() };
                };
                const auto place = known.find(path);
                const auto expected = place == known.end() ? Difference {} : place->second;
                // Some programs count headers and footers in, others don't.
                EXPECT_TRUE(difference(ours.total) == expected || difference(everything) == expected)
                    << ours.total.words << " words";
                ++recounts;
            }
        }
    }
    EXPECT_GT(recounts, 20);
    EXPECT_GT(lengths, 20);
}

} // namespace
