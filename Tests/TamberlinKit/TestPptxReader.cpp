#include "TamberlinKit/Readers/Readers.h"
#include "Tests/TamberlinKit/OfficeFiles.h"

#include <gtest/gtest.h>

using namespace Tamberlin;
using ::Test::Files, ::Test::lines, ::Test::refusal, ::Test::relationships, ::Test::zipOf;
using Lines = std::vector<std::string>;
using ::Test::operator+;

namespace {

std::string paragraph(const std::string& text) { return "<a:p><a:r><a:t>" + text + "</a:t></a:r></a:p>"; }

std::string shape(const std::string& content, const std::string& properties = "")
{
    return "<p:sp><p:nvSpPr><p:cNvPr id='1'/><p:nvPr>" + properties
        + "</p:nvPr></p:nvSpPr><p:txBody><a:bodyPr/>" + content + "</p:txBody></p:sp>";
}

std::string slide(const std::string& shapes, const std::string& attributes = "")
{
    return "<p:sld xmlns:p='p' xmlns:a='a' " + attributes + "><p:cSld><p:spTree>" + shapes
        + "</p:spTree></p:cSld></p:sld>";
}

// A presentation with slides s1, s2… of these contents, shown in the order of the list of numbers.
Files presentation(const std::vector<int>& order, const std::vector<std::string>& slides)
{
    std::string list;
    std::vector<std::pair<std::string, std::string>> targets;
    Files files;
    for (const int number : order)
        list += "<p:sldId id='256' r:id='slide" + std::to_string(number) + "'/>";
    for (const auto& xml : slides) {
        const auto name = "slides/s" + std::to_string(targets.size() + 1) + ".xml";
        targets.emplace_back("slide", name);
        files.emplace_back("ppt/" + name, xml);
    }
    return files
        + Files { relationships("", { { "officeDocument", "/ppt/p.xml" } }),
              relationships("ppt/p.xml", targets),
              { "ppt/p.xml", "<p:presentation><p:sldIdLst>" + list + "</p:sldIdLst></p:presentation>" } };
}

Extracted read(const Files& files) { return readPptx(zipOf(files), "n.pptx", {}); }

Lines linesOf(const std::string& shapes) { return lines(read(presentation({ 1 }, { slide(shapes) }))); }

TEST(PptxReader, slidesComeAsTheyAreShownEachWithItsNotesAndComments)
{
    const std::string notes = slide(shape(paragraph("Say this."), "<p:ph type='body'/>")
        + shape(paragraph("12"), "<p:ph type='sldNum'/>") + shape(paragraph("Firm"), "<p:ph type='ftr'/>"));
    const auto extracted = read(
        presentation({ 3, 1, 2, 3 },
            { slide(shape(paragraph("One"))), slide(shape(paragraph("Two")), "show='0'"),
                slide(shape(paragraph("Three"))) })
        + Files { relationships("ppt/slides/s3.xml",
                      { { "notesSlide", "../n/n1.xml" }, { "comments", "../c/old.xml" },
                          { "comments", "../c/new.xml" }, { "slideLayout", "../l.xml" } }),
            relationships("ppt/slides/s2.xml", { { "notesSlide", "../n/n2.xml" } }),
            { "ppt/n/n1.xml", notes }, { "ppt/n/n2.xml", notes },
            { "ppt/l.xml", slide(shape(paragraph("Click to edit"))) },
            { "ppt/c/old.xml", "<p:cmLst><p:cm><p:pos x='1'/><p:text>Too long?</p:text></p:cm></p:cmLst>" },
            { "ppt/c/new.xml",
                "<q:cmLst><q:cm><q:replyLst><q:reply><q:txBody>" + paragraph("No.")
                    + "</q:txBody></q:reply></q:replyLst><q:txBody>" + paragraph("Really?")
                    + "</q:txBody></q:cm></q:cmLst>" } });
    EXPECT_EQ(lines(extracted),
        Lines({ "body: Three", "slideNotes: Say this.", "headersFooters: Firm", "comments: Too long?",
            "comments: No.", "comments: Really?", "body: One", "hidden: Two", "hidden: Say this.",
            "hidden: Firm" }));
    EXPECT_EQ(extracted.pages, 3);
    EXPECT_EQ(extracted.notes, Lines());
    EXPECT_EQ(extracted.format, FileFormat::pptx);
}

TEST(PptxReader, textOfASlide)
{
    const auto field = [](const std::string& type, const std::string& text) {
        return "<a:p><a:r><a:t>No. </a:t></a:r><a:fld type='" + type + "'><a:t>" + text
            + "</a:t></a:fld></a:p>";
    };
    const std::string choices = "<mc:AlternateContent><mc:Choice>"
        + shape(paragraph("new")
            + "<a:p><mc:AlternateContent><mc:Choice><a:r><a:t>in</a:t></a:r></"
              "mc:Choice><mc:Fallback><a:r><a:t>out</a:t>"
              "</a:r></mc:Fallback></mc:AlternateContent></a:p>")
        + "</mc:Choice><mc:Choice>" + shape(paragraph("newer")) + "</mc:Choice><mc:Fallback><p:pic/>"
        + shape(paragraph("old")) + "</mc:Fallback></mc:AlternateContent>" + shape(paragraph("after"));
    struct {
        std::string shapes;
        Lines expected;
    } const cases[] {
        { shape("<a:p><a:r><a:t>Wor</a:t></a:r><a:r><a:t>d</a:t></a:r><a:br/><a:r><a:t>line\ttab</a:t></"
                "a:r></a:p>"
                "<a:p><a:endParaRPr/></a:p>"
              + paragraph("  ") + paragraph("a_x000B_b")),
            { "body: Word\nline\ttab", "body: a\vb" } },
        { "<p:graphicFrame><a:tbl><a:tr><a:tc><a:txBody>" + paragraph("A1")
                + "</a:txBody></a:tc><a:tc><a:txBody>" + paragraph("B1")
                + "</a:txBody></a:tc></a:tr></a:tbl></p:graphicFrame>",
            { "body: A1", "body: B1" } },
        { "<p:grpSp><p:nvGrpSpPr><p:cNvPr hidden='1'/></p:nvGrpSpPr><p:grpSp>" + shape(paragraph("unseen"))
                + "</p:grpSp></p:grpSp>" + shape(paragraph("seen")),
            { "hidden: unseen", "body: seen" } },
        { choices, { "body: new", "body: in", "body: after" } },
        { shape("<a:p><a:r><a:t>Let "
                "</a:t></a:r><a14:m><m:oMath><m:r><m:t>x=1</m:t></m:r></m:oMath></a14:m></a:p>"),
            { "body: Let x=1" } },
        { shape(field("slidenum", "3"), "<p:ph type='body'/>")
                + shape(field("slidenum", "3"), "<p:ph type='sldNum'/>")
                + shape(paragraph("Firm"), "<p:ph type='ftr'/>") + shape(paragraph("body")),
            { "body: No. 3", "headersFooters: No. ", "headersFooters: Firm", "body: body" } },
        { shape("<a:p><a:r><a:t>cut &lt;&#233;]]&gt;<![CDATA[<x>]]></a:t></a:r>text between elements</a:p>"),
            { "body: cut <é]]><x>" } },
    };
    for (const auto& [shapes, expected] : cases)
        EXPECT_EQ(linesOf(shapes), expected) << shapes;
}

TEST(PptxReader, diagramsAndChartsAreReadWhereTheyStandAndOnce)
{
    const auto frame
        = [](const std::string& content) { return "<p:graphicFrame>" + content + "</p:graphicFrame>"; };
    const std::string title = "<c:title><c:tx><c:rich>" + paragraph("Sales") + "</c:rich></c:tx></c:title>";
    const std::string series
        = "<c:ser><c:tx><c:strRef><c:f>A</c:f><c:strCache><c:pt><c:v>cached</c:v></c:pt></c:strCache>"
          "</c:strRef></c:tx><c:val><c:numRef><c:f>B</c:f></c:numRef></c:val><c:cat><c:strLit><c:pt>"
          "<c:v>typed</c:v></c:pt></c:strLit></c:cat><c:trendline><c:name>trend</c:name></c:trendline>"
          "<c:dLbl><c:tx><c:rich><a:p><a:fld><a:t>[VALUE]</a:t></a:fld></a:p></c:rich></c:tx></c:dLbl>"
          "</c:ser><c:ser><c:tx><c:v>typed too</c:v></c:tx></c:ser>";
    const auto extracted = read(
        presentation({ 1 },
            { slide(shape(paragraph("before")) + frame("<c:chart r:id='chart1'/>")
                + frame("<c:chart r:id='chart1'/>") + frame("<dgm:relIds r:dm='diagramData2' r:lo='x'/>")
                + frame("<cx:chart r:id='chartEx3'/>")
                + "<p:pic/><p:graphicFrame><p:oleObj><p:pic/></p:oleObj></p:graphicFrame>"
                + shape(paragraph("behind"))) })
        + Files { relationships("ppt/slides/s1.xml",
                      { { "chart", "../c.xml" }, { "diagramData", "../d.xml" }, { "chartEx", "../x.xml" } }),
            relationships("ppt/c.xml", { { "chartUserShapes", "u.xml" } }),
            { "ppt/c.xml",
                "<c:chartSpace>" + title + series + "<c15:filteredSeriesTitle>" + title
                    + "</c15:filteredSeriesTitle></c:chartSpace>" },
            { "ppt/u.xml", "<c:userShapes><cdr:sp>" + paragraph("note") + "</cdr:sp></c:userShapes>" },
            { "ppt/d.xml",
                "<dgm:dataModel><dgm:pt><dgm:t>" + paragraph("node") + "</dgm:t></dgm:pt></dgm:dataModel>" },
            { "ppt/x.xml",
                "<cx:chartSpace><cx:strDim><cx:f>A</cx:f><cx:lvl><cx:pt>cached</cx:pt></cx:lvl></"
                "cx:strDim><cx:title>"
                "<cx:tx><cx:txData><cx:v>Waterfall</cx:v></cx:txData></cx:tx><cx:txPr>"
                    + paragraph("Waterfall")
                    + "</cx:txPr></cx:title><cx:tx><cx:txData><cx:f>B</cx:f><cx:v>cached</cx:v></cx:txData></"
                      "cx:tx>"
                      "</cx:chartSpace>" } });
    EXPECT_EQ(lines(extracted),
        Lines({ "body: before", "textBoxes: Sales", "textBoxes: typed", "textBoxes: trend",
            "textBoxes: typed too", "textBoxes: note", "textBoxes: node", "textBoxes: Waterfall",
            "body: behind" }));
    EXPECT_EQ(extracted.notes,
        Lines({ "The names of series and categories in 2 charts belong to the data and aren’t counted.",
            "Text in 1 picture and 1 embedded object isn’t counted." }));
}

TEST(PptxReader, damageLeavesWhatCameBeforeItAndANote)
{
    auto files = presentation({ 1, 2, 3, 4 },
        { slide(shape(paragraph("whole") + "<a:p><a:r><a:t>cut</a:r></a:p>")),
            slide(shape(paragraph("next"))), "", "x" });
    files.erase(files.begin() + 3);
    const auto extracted = read(files);
    EXPECT_EQ(lines(extracted), Lines({ "body: whole", "body: next" }));
    EXPECT_EQ(extracted.notes,
        Lines({ "Part of n.pptx couldn’t be read (mismatched tag).",
            "Part of n.pptx couldn’t be read (no element found).",
            "Part of n.pptx couldn’t be read (ppt/slides/s4.xml is missing)." }));

    // Without the list of slides, those that belong to the presentation are read all the same.
    EXPECT_EQ(
        lines(read(presentation({ 7 }, { slide(shape(paragraph("found"))) }))), Lines { "body: found" });
}

TEST(PptxReader, refusesWhatIsNoPresentation)
{
    const std::string noArchive
        = "“n” isn’t a PowerPoint (.pptx) file that can be read (it isn’t a zip package).";
    const auto word
        = zipOf({ relationships("", { { "officeDocument", "w.xml" } }), { "w.xml", "<w:document/>" } });
    EXPECT_EQ(refusal(readPptx, "text"), noArchive);
    EXPECT_EQ(refusal(readPptx, ::Test::compoundFile("EncryptedPackage")),
        noArchive + " It is protected with a password: remove the password and count it again.");
    EXPECT_EQ(refusal(readPptx, ::Test::compoundFile("PowerPoint Document")), noArchive);
    EXPECT_EQ(refusal(readPptx, word),
        "“n” isn’t a PowerPoint (.pptx) file that can be read (it has no presentation).");
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(readPptx(zipOf(presentation({ 1 }, { slide("") })), "n", stop.get_token()), Cancelled);
}

} // namespace
