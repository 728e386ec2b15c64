#include "TamberlinKit/Readers/PdfReader.h"

#include "Base/ChildProcess.h"
#include "TamberlinKit/Readers/NotCounted.h"
#include "TamberlinKit/Readers/PdfPages.h"
#include "TamberlinKit/Readers/PdfText.h"

#include <fmt/format.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <exception>
#include <functional>
#include <set>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace Tamberlin {

namespace {

// A file of this size takes a tenth of a second to read; the pages of larger ones are shared among programs.
constexpr std::int64_t sharedSize = 256 * 1024;
constexpr unsigned mostShares = 8;

constexpr auto readerName = "pallisande-document-reader", recogniserName = "pallisande-page-recogniser";

std::string pages(std::size_t count, const char* verb, const char* verbs)
{
    return count == 1 ? fmt::format("1 page {}", verb) : fmt::format("{} pages {}", count, verbs);
}

class PdfReading {
public:
    PdfReading(
        const Base::Descriptor& file, std::string name, PdfOptions options, const std::stop_token& cancel)
        : m_file(file)
        , m_options(std::move(options))
        , m_cancel(cancel)
    {
        m_extracted.name = std::move(name);
        m_extracted.format = FileFormat::pdf;
        m_extracted.approximate = true;
        if (m_options.helpers.empty())
            m_options.helpers = Base::programFolder();
    }

    Extracted read()
    {
        struct stat status { };
        Base::checked([&] { return ::fstat(m_file.number(), &status); });
        const unsigned shares
            = status.st_size < sharedSize ? 1 : std::clamp(m_options.threads, 1u, mostShares);
        m_answer = together(shares, [&](unsigned share) {
            return ask(readerName, { std::to_string(share), std::to_string(shares) }, m_options.time);
        });
        m_extracted.pages = m_answer.pageCount;
        const auto scans = pagesWithoutText();
        std::string languages;
        if (m_options.recognisesScans)
            languages = recognise(scans);
        m_extracted.segments = pdfSegments(m_answer.pages);
        tell(scans, languages);
        return std::move(m_extracted);
    }

private:
    // What the parts of a task say in turn, as one answer. They run at the same time.
    static PdfAnswer together(unsigned count, const std::function<PdfAnswer(unsigned)>& part)
    {
        std::vector<PdfAnswer> answers(count);
        std::vector<std::exception_ptr> faults(count);
        const auto run = [&](unsigned number) {
            try {
                answers[number] = part(number);
            } catch (...) {
                faults[number] = std::current_exception();
            }
        };
        {
            std::vector<std::jthread> threads;
            for (unsigned number = 1; number < count; ++number)
                threads.emplace_back(run, number);
            run(0);
        }
        for (const auto& fault : faults) {
            if (fault)
                std::rethrow_exception(fault);
        }
        for (unsigned number = 1; number < count; ++number)
            std::move(answers[number].pages.begin(), answers[number].pages.end(),
                std::back_inserter(answers.front().pages));
        return std::move(answers.front());
    }

    // Throws the sentence for whatever a helper does but answer.
    PdfAnswer ask(
        const char* helper, const std::vector<std::string>& arguments, std::chrono::milliseconds time) const
    {
        const auto result = Base::runChild(m_options.helpers / helper, arguments, m_file,
            { .time = time, .outputBytes = m_options.outputBytes, .cancel = m_cancel });
        const auto& name = m_extracted.name;
        using End = Base::ChildResult::End;
        switch (result.end) {
        case End::cancelled:
            throw Cancelled();
        case End::couldNotStart:
            throw ReadError(fmt::format("“{}” couldn’t be read: the program “{}” couldn’t be started ({}).",
                name, helper, std::strerror(result.code)));
        case End::tookTooLong:
            throw ReadError(fmt::format("“{}” takes too long to read.", name));
        case End::wroteTooMuch:
            throw ReadError(fmt::format("“{}” has more than {} MB of text, which no PDF needs.", name,
                m_options.outputBytes / 1024 / 1024));
        case End::killedBySignal:
            if (result.code == SIGXCPU)
                throw ReadError(fmt::format("“{}” takes too long to read.", name));
            break;
        case End::exited:
            break;
        }
        auto answer = result.end == End::exited && result.code == 0 ? pdfAnswer(result.output) : std::nullopt;
        if (!answer)
            throw ReadError(
                fmt::format("“{}” couldn’t be read: it may be damaged (reading it was given up).", name));
        if (answer->refusal == PdfAnswer::Refusal::locked)
            throw ReadError(fmt::format(
                "“{}” is protected with a password: remove the password and count it again.", name));
        if (answer->refusal == PdfAnswer::Refusal::damaged)
            throw ReadError(fmt::format("“{}” isn’t a PDF that can be read (it may be damaged).", name));
        return std::move(*answer);
    }

    std::vector<PdfPage*> pagesWithoutText()
    {
        std::vector<PdfPage*> without;
        for (auto& page : m_answer.pages) {
            if (page.paragraphs.empty())
                without.push_back(&page);
        }
        return without;
    }

    // Fills in the pages that text can be recognised on; gives the languages.
    std::string recognise(const std::vector<PdfPage*>& scans)
    {
        std::vector<PdfPage*> drawn;
        std::copy_if(scans.begin(), scans.end(), std::back_inserter(drawn), isDrawnOn);
        if (drawn.empty())
            return {};
        const auto shares = static_cast<unsigned>(
            std::clamp<std::size_t>(drawn.size(), 1, std::clamp(m_options.threads, 1u, mostShares)));
        const auto answer = together(shares, [&](unsigned share) {
            std::vector<std::string> numbers;
            for (auto place = drawn.size() * share / shares; place < drawn.size() * (share + 1) / shares;
                 ++place)
                numbers.push_back(std::to_string(drawn[place]->number));
            return ask(recogniserName, numbers,
                m_options.time + m_options.time / 3 * static_cast<std::int64_t>(numbers.size()));
        });
        for (std::size_t place = 0; place < std::min(drawn.size(), answer.pages.size()); ++place)
            drawn[place]->paragraphs = answer.pages[place].paragraphs;
        return answer.languages;
    }

    void tell(const std::vector<PdfPage*>& scans, const std::string& languages)
    {
        auto& notes = m_extracted.notes;
        NotCounted notCounted;
        std::set<std::uint32_t> pictures;
        for (const auto& page : m_answer.pages) {
            if (!page.paragraphs.empty() && !isIn(scans, page))
                pictures.insert(page.pictures.begin(), page.pictures.end());
            if (page.isCutOff)
                notes.push_back(
                    fmt::format("Part of {} couldn’t be read (page {} has more text than a page can hold).",
                        m_extracted.name, page.number));
        }
        const auto left = static_cast<std::size_t>(std::count_if(
            scans.begin(), scans.end(), [](const PdfPage* page) { return page->paragraphs.empty(); }));
        if (scans.size() > left)
            notes.push_back(fmt::format("{} read with text recognition ({}), which makes mistakes.",
                pages(scans.size() - left, "was", "were"), languages));
        if (left > 0) {
            const bool hasNoData = languages.empty() && std::any_of(scans.begin(), scans.end(), isDrawnOn);
            notes.push_back(pages(left, "has no text", "have no text")
                + (!m_options.recognisesScans ? "; scanned text can be read with text recognition."
                        : hasNoData           ? "; text recognition has no data for any language."
                                              : " that could be recognised."));
        }
        notCounted.pictures = static_cast<std::int64_t>(pictures.size());
        notCounted.tell(notes);
    }

    static bool isDrawnOn(const PdfPage* page) { return page->isDrawnOn; }

    static bool isIn(const std::vector<PdfPage*>& scans, const PdfPage& page)
    {
        return std::binary_search(scans.begin(), scans.end(), &page);
    }

    const Base::Descriptor& m_file;
    PdfOptions m_options;
    const std::stop_token& m_cancel;
    PdfAnswer m_answer;
    Extracted m_extracted;
};

} // namespace

Extracted readPdf(
    const Base::Descriptor& file, std::string name, const PdfOptions& options, const std::stop_token& cancel)
{
    return PdfReading(file, std::move(name), options, cancel).read();
}

} // namespace Tamberlin
