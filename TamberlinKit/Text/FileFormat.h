#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace Tamberlin {

// The kinds of document that can be counted.
enum class FileFormat { docx, pptx, xlsx, odt, pdf, html, rtf, txt, srt };
constexpr std::array<std::string_view, 9> caseNames(FileFormat)
{
    return { "docx", "pptx", "xlsx", "odt", "pdf", "html", "rtf", "txt", "srt" };
}
std::string_view title(FileFormat format);

// The format that an extension stands for, without its dot and in any letter case.
std::optional<FileFormat> formatOfExtension(std::string_view extension);

} // namespace Tamberlin
