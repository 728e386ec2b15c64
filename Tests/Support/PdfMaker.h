#pragma once

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <vector>

// Small PDFs: pages of A4 with whatever operators are given.
namespace Test {

// Text with its baseline at that place, in points from the lower left.
inline std::string textAt(double x, double y, std::string_view text, double size = 12, char font = 'H')
{
    return fmt::format("BT /{} {} Tf 1 0 0 1 {} {} Tm ({}) Tj ET\n", font, size, x, y, text);
}

// Lines below each other, 14 points apart.
inline std::string linesAt(double x, double y, const std::vector<std::string>& lines)
{
    std::string content;
    for (const auto& line : lines) {
        content += textAt(x, y, line);
        y -= 14;
    }
    return content;
}

struct PdfMaker {
    std::vector<std::string> pages; // Their contents.
    // A picture that pages draw with “/I Do”: eight bits of grey for each pixel.
    std::string pixels;
    int pixelWidth = 0;

    // H is Helvetica, B its bold face. In U, small letters are Hebrew, and A to F are fi, 日, 本, 가, 나 and
    // a letter that has no meaning.
    std::string bytes() const
    {
        std::vector<std::string> objects(7);
        objects[0] = "<</Type/Catalog/Pages 2 0 R>>";
        objects[2] = "<</Type/Font/Subtype/Type1/BaseFont/Helvetica/Encoding/WinAnsiEncoding>>";
        objects[3] = "<</Type/Font/Subtype/Type1/BaseFont/Helvetica-Bold/Encoding/WinAnsiEncoding>>";
        objects[4] = "<</Type/Font/Subtype/Type1/BaseFont/ABCDEF+Courier/ToUnicode 6 0 R>>";
        objects[5] = stream("/Length1 0",
            "1 begincodespacerange <00> <FF> endcodespacerange 6 beginbfchar <20> <0020> <41> <FB01> <42> "
            "<65E5> "
            "<43> <672C> <44> <AC00> <45> <B098> endbfchar 1 beginbfrange <61> <7A> <05D0> endbfrange");
        objects[6] = "null";
        if (pixelWidth > 0)
            objects[6] = stream(
                fmt::format(
                    "/Type/XObject/Subtype/Image/ColorSpace/DeviceGray/BitsPerComponent 8/Width {}/Height {}",
                    pixelWidth, pixels.size() / static_cast<std::size_t>(pixelWidth)),
                pixels);
        std::string kids;
        for (const auto& content : pages) {
            objects.push_back(
                fmt::format("<</Type/Page/Parent 2 0 R/MediaBox[0 0 595 842]/Contents {} 0 R/Resources<<"
                            "/Font<</H 3 0 R/B 4 0 R/U 5 0 R>>{}>>>>",
                    objects.size() + 2, content.find("/I Do") != content.npos ? "/XObject<</I 7 0 R>>" : ""));
            kids += fmt::format("{} 0 R ", objects.size());
            objects.push_back(stream("", content));
        }
        objects[1] = fmt::format("<</Type/Pages/Count {}/Kids[{}]>>", pages.size(), kids);

        std::string file = "%PDF-1.4\n", table = "0000000000 65535 f \n";
        for (std::size_t number = 1; const auto& object : objects) {
            table += fmt::format("{:010} 00000 n \n", file.size());
            file += fmt::format("{} 0 obj\n{}\nendobj\n", number++, object);
        }
        const auto start = file.size();
        return file
            + fmt::format("xref\n0 {0}\n{1}trailer\n<</Size {0}/Root 1 0 R>>\nstartxref\n{2}\n%%EOF\n",
                objects.size() + 1, table, start);
    }

private:
    static std::string stream(std::string_view entries, std::string_view content)
    {
        return fmt::format("<<{}/Length {}>>\nstream\n{}\nendstream", entries, content.size(), content);
    }
};

} // namespace Test
