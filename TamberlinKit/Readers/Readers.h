#pragma once

#include "TamberlinKit/Text/Extracted.h"
#include "TamberlinKit/Text/ReadError.h"

#include <stop_token>
#include <string>
#include <string_view>

// One function a format: the bytes of a file and its name as it is shown, to its text. Each throws ReadError
// with the sentence for the user, and Cancelled soon after a stop was asked for. Segments of text and
// subtitles may stand in the bytes of the file, which must stay as long as they are used.
namespace Tamberlin {

Extracted readDocx(std::string_view file, std::string name, const std::stop_token& cancel);
Extracted readPptx(std::string_view file, std::string name, const std::stop_token& cancel);
Extracted readXlsx(std::string_view file, std::string name, const std::stop_token& cancel);
Extracted readOdt(std::string_view file, std::string name, const std::stop_token& cancel);
Extracted readHtml(std::string_view file, std::string name, const std::stop_token& cancel);
Extracted readRtf(std::string_view file, std::string name, const std::stop_token& cancel);
Extracted readText(std::string_view file, std::string name, const std::stop_token& cancel);
Extracted readSubtitles(std::string_view file, std::string name, const std::stop_token& cancel);

} // namespace Tamberlin
