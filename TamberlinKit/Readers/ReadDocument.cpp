#include "TamberlinKit/Readers/ReadDocument.h"

#include "Base/DurableFile.h"
#include "Base/Text.h"
#include "TamberlinKit/Readers/Readers.h"

#include <fmt/format.h>

#include <cerrno>
#include <system_error>

namespace Tamberlin {

namespace {

namespace fs = std::filesystem;

constexpr std::int64_t largestFile = 1'073'741'824; // 1 GiB.

std::string contents(const fs::path& path, const std::string& name)
{
    try {
        return Base::readFile(path, largestFile).bytes;
    } catch (const Base::NotARegularFile&) {
        throw ReadError(fmt::format("“{}” couldn’t be opened: not a regular file", name));
    } catch (const std::system_error& error) {
        if (error.code().value() == EFBIG)
            throw ReadError(fmt::format("“{}” is larger than 1 GB.", name));
        throw ReadError(fmt::format("“{}” couldn’t be opened: {}", name, error.code().message()));
    }
}

} // namespace

Extracted readDocument(
    std::string_view file, std::string name, FileFormat format, const std::stop_token& cancel)
{
    switch (format) {
    case FileFormat::docx:
        return readDocx(file, std::move(name), cancel);
    case FileFormat::pptx:
        return readPptx(file, std::move(name), cancel);
    case FileFormat::xlsx:
        return readXlsx(file, std::move(name), cancel);
    case FileFormat::odt:
        return readOdt(file, std::move(name), cancel);
    case FileFormat::html:
        return readHtml(file, std::move(name), cancel);
    case FileFormat::rtf:
        return readRtf(file, std::move(name), cancel);
    case FileFormat::txt:
        return readText(file, std::move(name), cancel);
    case FileFormat::srt:
        return readSubtitles(file, std::move(name), cancel);
    case FileFormat::pdf:
        break;
    }
    throw ReadError(fmt::format("“{}” is a PDF, which this version can’t read.", name));
}

Extracted readDocument(const fs::path& path, const std::stop_token& cancel)
{
    auto name = Base::validUtf8(path.filename().string());
    auto extension = path.extension().string();
    extension.erase(0, 1);
    const auto format = formatOfExtension(extension);
    if (!format)
        throw ReadError(fmt::format("“{}” isn’t a kind of document that can be counted.", name));
    const auto file = contents(path, name);
    return readDocument(file, std::move(name), *format, cancel);
}

} // namespace Tamberlin
