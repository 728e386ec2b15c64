#include "TamberlinKit/Text/FileFormat.h"

#include "Base/Text.h"

#include <utility>

namespace Tamberlin {

std::string_view title(FileFormat format)
{
    constexpr std::array<std::string_view, 9> titles { "Word", "PowerPoint", "Excel", "OpenDocument", "PDF",
        "HTML", "RTF", "Text", "Subtitles" };
    return titles[static_cast<std::size_t>(format)];
}

std::optional<FileFormat> formatOfExtension(std::string_view extension)
{
    constexpr std::pair<std::string_view, FileFormat> extensions[] { { "docx", FileFormat::docx },
        { "docm", FileFormat::docx }, { "dotx", FileFormat::docx }, { "pptx", FileFormat::pptx },
        { "pptm", FileFormat::pptx }, { "ppsx", FileFormat::pptx }, { "xlsx", FileFormat::xlsx },
        { "xlsm", FileFormat::xlsx }, { "odt", FileFormat::odt }, { "pdf", FileFormat::pdf },
        { "html", FileFormat::html }, { "htm", FileFormat::html }, { "xhtml", FileFormat::html },
        { "rtf", FileFormat::rtf }, { "txt", FileFormat::txt }, { "text", FileFormat::txt },
        { "md", FileFormat::txt }, { "markdown", FileFormat::txt }, { "srt", FileFormat::srt },
        { "vtt", FileFormat::srt } };
    const auto lowered = Base::asciiLowered(extension);
    for (const auto& [known, format] : extensions) {
        if (known == lowered)
            return format;
    }
    return std::nullopt;
}

} // namespace Tamberlin
