#include "DocumentReader/Input.h"
#include "DocumentReader/Sandbox.h"
#include "TamberlinKit/Readers/PdfPages.h"

#include <fmt/ranges.h>
#include <poppler-document.h>
#include <poppler-global.h>
#include <poppler-page-renderer.h>
#include <poppler-page.h>
#include <tesseract/baseapi.h>
#include <tesseract/resultiterator.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <unistd.h>

// pallisande-page-recogniser: recognises the text on scanned pages of a PDF. The file is standard input, the
// numbers of the pages are the arguments, frames (PdfPages.h) come out. It is a program of its own because
// text recognition takes long to load, and few documents need it.

namespace {

using namespace Tamberlin;

constexpr double resolution = 300; // Dots per inch, what recognition is trained for.
constexpr double mostPixels = 40'000'000; // A larger page is drawn more coarsely.
constexpr float leastConfidence = 30; // Percent; less is grain and pictures taken for letters.
constexpr std::uint64_t secondsForAPage = 60;

// Every further language takes its time on every word, so that only a few of those installed are used.
constexpr std::size_t mostLanguages = 4;
constexpr std::string_view preferred[] { "eng", "deu", "fra", "spa", "ita", "por", "nld", "pol", "rus", "ukr",
    "ces", "swe", "dan", "tur", "ell", "heb", "ara", "hin", "jpn", "chi_sim", "chi_tra", "kor", "tha" };

class Recogniser {
public:
    Recogniser()
    {
        m_engine.Init(nullptr, "none"); // Fails, but then it knows where its data are.
        std::vector<std::string> installed;
        m_engine.GetAvailableLanguagesAsVector(&installed);
        const auto take = [&](std::string_view name) { return std::erase(installed, name) > 0; };
        m_turnsPages = take("osd");
        for (const auto* const other : { "equ", "snum" })
            take(other);
        for (const auto language : preferred) {
            if (m_languages.size() < mostLanguages && take(language))
                m_languages.emplace_back(language);
        }
        std::sort(installed.begin(), installed.end());
        for (auto& language : installed) {
            if (m_languages.size() < mostLanguages && language.find('/') == language.npos)
                m_languages.push_back(std::move(language));
        }
        m_folder = m_engine.GetDatapath();
        if (m_engine.Init(m_folder.c_str(), fmt::format("{}", fmt::join(m_languages, "+")).c_str()) != 0)
            m_languages.clear();
        m_engine.SetPageSegMode(m_turnsPages ? tesseract::PSM_AUTO_OSD : tesseract::PSM_AUTO);
    }

    const std::vector<std::string>& languages() const { return m_languages; }
    const std::string& folder() const { return m_folder; }

    std::vector<PdfParagraph> read(const poppler::image& image, double dotsPerInch)
    {
        m_engine.SetImage(reinterpret_cast<const unsigned char*>(image.const_data()), image.width(),
            image.height(), 1, image.bytes_per_row());
        m_engine.SetSourceResolution(static_cast<int>(dotsPerInch));
        std::vector<PdfParagraph> paragraphs;
        if (m_engine.Recognize(nullptr) != 0)
            return paragraphs;
        const std::unique_ptr<tesseract::ResultIterator> place(m_engine.GetIterator());
        if (!place)
            return paragraphs;
        bool isNew = true;
        do {
            isNew = isNew || place->IsAtBeginningOf(tesseract::RIL_PARA);
            const std::unique_ptr<char[]> line(place->GetUTF8Text(tesseract::RIL_TEXTLINE));
            int left = 0, top = 0, right = 0, bottom = 0;
            if (!line || place->Confidence(tesseract::RIL_TEXTLINE) < leastConfidence
                || !place->BoundingBox(tesseract::RIL_TEXTLINE, &left, &top, &right, &bottom))
                continue;
            std::string_view text(line.get());
            while (text.ends_with('\n') || text.ends_with(' '))
                text.remove_suffix(1);
            if (text.empty())
                continue;
            const auto share = [&](int down) {
                return static_cast<std::uint16_t>(
                    std::clamp(1000 * down / std::max(image.height(), 1), 0, 1000));
            };
            if (isNew)
                paragraphs.push_back({ .top = share(top) });
            isNew = false;
            paragraphs.back().text += text;
            paragraphs.back().text += '\n';
            paragraphs.back().bottom = share(bottom);
        } while (place->Next(tesseract::RIL_TEXTLINE));
        return paragraphs;
    }

private:
    tesseract::TessBaseAPI m_engine;
    std::vector<std::string> m_languages;
    std::string m_folder;
    bool m_turnsPages = false;
};

PdfPage recognised(const poppler::document& document, std::uint32_t number, Recogniser& recogniser)
{
    PdfPage result { .number = number };
    const std::unique_ptr<poppler::page> page(document.create_page(static_cast<int>(number) - 1));
    if (!page)
        return result;
    constexpr double pointsPerInch = 72;
    const auto size = page->page_rect();
    const double squareInches = size.width() * size.height() / (pointsPerInch * pointsPerInch);
    const double dots = std::min(resolution, std::sqrt(mostPixels / std::max(squareInches, 1e-6)));
    poppler::page_renderer renderer;
    renderer.set_render_hint(poppler::page_renderer::antialiasing);
    renderer.set_render_hint(poppler::page_renderer::text_antialiasing);
    renderer.set_image_format(poppler::image::format_gray8);
    const auto image = renderer.render_page(page.get(), dots, dots);
    if (image.is_valid())
        result.paragraphs = recogniser.read(image, dots);
    return result;
}

void recognise(const std::vector<std::uint32_t>& pages)
{
    const auto file = mappedInput();
    Recogniser recogniser;
    enterSandbox({ .processorSeconds = secondsForAPage * (pages.size() + 1),
        .readableFolders = { recogniser.folder(), "/usr/share/poppler", "/usr/share/fonts",
            "/usr/local/share/fonts", "/usr/share/fontconfig", "/etc/fonts", "/var/cache/fontconfig" } });
    poppler::set_debug_error_function([](const std::string&, void*) {}, nullptr);
    const std::unique_ptr<poppler::document> document(
        poppler::document::load_from_raw_data(file.data(), static_cast<int>(file.size())));
    PdfAnswer answer;
    if (!document)
        answer.refusal = PdfAnswer::Refusal::damaged;
    else if (document->is_locked())
        answer.refusal = PdfAnswer::Refusal::locked;
    else
        answer.pageCount = static_cast<std::uint32_t>(std::max(document->pages(), 0));
    if (answer.pageCount > 0 && !recogniser.languages().empty()) {
        for (const auto page : pages)
            writeOutput(pdfPageFrame(recognised(*document, page, recogniser)));
    }
    answer.languages = fmt::format("{}", fmt::join(recogniser.languages(), ", "));
    writeOutput(pdfLastFrame(answer));
    ::_exit(0);
}

} // namespace

int main(int count, char** arguments)
{
    // The recogniser would start threads, which the sandbox forbids; their number is fixed when it is loaded.
    if (!std::getenv("OMP_THREAD_LIMIT")) {
        ::setenv("OMP_THREAD_LIMIT", "1", 1);
        ::execv("/proc/self/exe", arguments);
    }
    try {
        std::vector<std::uint32_t> pages;
        for (int place = 1; place < count; ++place)
            pages.push_back(static_cast<std::uint32_t>(std::stoul(arguments[place])));
        recognise(pages);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    return 1;
}
