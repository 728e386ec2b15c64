#include "TamberlinKit/Readers/ReadDocument.h"

#include "Base/DurableFile.h"
#include "Base/Text.h"
#include "TamberlinKit/Readers/Readers.h"

#include <fmt/format.h>

#include <cerrno>
#include <memory>
#include <system_error>

namespace Tamberlin {

namespace {

namespace fs = std::filesystem;

constexpr std::int64_t largestFile = 1'073'741'824; // 1 GiB.

// What `open` gives; where it can't, the sentence for that.
template <typename Open> auto opened(const std::string& name, Open open)
{
    try {
        return open();
    } catch (const Base::NotARegularFile&) {
        throw ReadError(fmt::format("“{}” couldn’t be opened: not a regular file", name));
    } catch (const std::system_error& error) {
        if (error.code().value() == EFBIG)
            throw ReadError(fmt::format("“{}” is larger than 1 GB.", name));
        throw ReadError(fmt::format("“{}” couldn’t be opened: {}", name, error.code().message()));
    }
}

using Reader = Extracted (*)(std::string_view file, std::string name, const std::stop_token& cancel);

// Nothing for PDFs, which are read elsewhere.
Reader reader(FileFormat format)
{
    switch (format) {
    case FileFormat::docx:
        return readDocx;
    case FileFormat::pptx:
        return readPptx;
    case FileFormat::xlsx:
        return readXlsx;
    case FileFormat::odt:
        return readOdt;
    case FileFormat::html:
        return readHtml;
    case FileFormat::rtf:
        return readRtf;
    case FileFormat::txt:
        return readText;
    case FileFormat::srt:
        return readSubtitles;
    case FileFormat::pdf:
        break;
    }
    return nullptr;
}

} // namespace

Extracted readDocument(const fs::path& path, const std::stop_token& cancel, const PdfOptions& pdf)
{
    auto name = Base::validUtf8(path.filename().string());
    auto extension = path.extension().string();
    extension.erase(0, 1);
    const auto format = formatOfExtension(extension);
    if (!format)
        throw ReadError(fmt::format("“{}” isn’t a kind of document that can be counted.", name));
    const auto read = reader(*format);
    if (!read) {
        const auto file = opened(name, [&] { return Base::openFile(path, largestFile); });
        return readPdf(file, std::move(name), pdf, cancel);
    }
    const auto file = std::make_shared<const Base::LargeVector<char>>(
        opened(name, [&] { return Base::readBytes(path, largestFile); }));
    auto extracted = read({ file->data(), file->size() }, std::move(name), cancel);
    if (!extracted.source.kept)
        extracted.source.kept = file;
    return extracted;
}

} // namespace Tamberlin
