#include "DocumentReader/PdfDocument.h"

#include "DocumentReader/GlyphDevice.h"

#include <Error.h>
#include <ErrorCodes.h>
#include <GlobalParams.h>
#include <PDFDoc.h>
#include <Page.h>
#include <Stream.h>

#include <map>

namespace Tamberlin {

namespace {

// Smaller ones are bullets and lines; nobody writes in them.
constexpr std::int64_t smallestPicture = 32; // Pixels.
constexpr int mostResources = 10'000; // Looked at on a page.

bool isPicture(const Object& object)
{
    if (!object.isStream())
        return false;
    const auto* const dictionary = object.streamGetDict();
    const auto side = [&](const char* key) {
        const auto value = dictionary->lookup(key);
        return value.isInt() ? value.getInt() : 0;
    };
    return dictionary->lookup("Subtype").isName("Image") && side("Width") >= smallestPicture
        && side("Height") >= smallestPicture;
}

} // namespace

struct PdfDocument::Poppler {
    explicit Poppler(std::string_view file)
        : document(new MemStream(file.data(), 0, static_cast<Goffset>(file.size()), Object(objNull)))
    {
    }

    PDFDoc document;
    GlyphDevice device;
    std::map<int, bool> pictures; // Of the objects that were looked at, by number.
};

PdfDocument::PdfDocument(std::string_view file)
{
    globalParams = std::make_unique<GlobalParams>();
    setErrorCallback([](ErrorCategory, Goffset, const char*) {});
    m_poppler = std::make_unique<Poppler>(file);
    auto& document = m_poppler->document;
    if (!document.isOk())
        m_refusal = document.getErrorCode() == errEncrypted ? PdfAnswer::Refusal::locked
                                                            : PdfAnswer::Refusal::damaged;
    else if (document.getNumPages() <= 0)
        m_refusal = PdfAnswer::Refusal::damaged;
    else
        m_pageCount = static_cast<std::uint32_t>(document.getNumPages());
}

PdfDocument::~PdfDocument() = default;

PageGlyphs PdfDocument::read(std::uint32_t number, PdfPage& page)
{
    page.number = number;
    auto& [document, device, pictures] = *m_poppler;
    device.begin(page);
    auto* const entry = document.getPage(static_cast<int>(number));
    if (!entry)
        return {};
    if (const auto* const resources = entry->getResourceDict()) {
        const auto objects = resources->lookup("XObject");
        for (int place = 0; objects.isDict() && place < std::min(objects.dictGetLength(), mostResources);
             ++place) {
            const auto& reference = objects.dictGetValNF(place);
            if (!reference.isRef())
                continue;
            const auto [known, isNew] = pictures.try_emplace(reference.getRef().num);
            if (isNew && (known->second = isPicture(objects.dictGetVal(place))))
                page.pictures.push_back(static_cast<std::uint32_t>(known->first));
            page.isDrawnOn = page.isDrawnOn || known->second;
        }
    }
    constexpr double pointsPerInch = 72;
    document.displayPage(
        &device, static_cast<int>(number), pointsPerInch, pointsPerInch, 0, false, true, false);
    return device.take();
}

} // namespace Tamberlin
