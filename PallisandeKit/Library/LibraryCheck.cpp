#include "PallisandeKit/Library/LibraryCheck.h"

#include "Base/DurableFile.h"
#include "Base/Sha256.h"
#include "PallisandeKit/Ledger/Ledger.h"

#include <fmt/format.h>

#include <map>
#include <set>
#include <system_error>
#include <unordered_map>
#include <unordered_set>

namespace Pallisande {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view sound = "Numbering checked: no gaps, no repeats.";

std::vector<std::string> filesIn(const fs::path& folder)
{
    std::error_code none;
    if (!fs::is_directory(folder, none))
        return {};
    return Base::Folder::open(folder).files();
}

// A document without what may still change after it was issued.
Invoice lockedPart(Invoice document)
{
    document.payments.clear();
    document.homeRate.reset();
    return document;
}

class Check {
public:
    explicit Check(const LibrarySession& session)
        : m_library(session.library())
        , m_store(session.store())
        , m_log(Base::Folder::open(m_store.folder()), session.moment())
    {
    }

    LibraryCheck run()
    {
        m_result.clients = static_cast<std::int64_t>(m_library.clients.size());
        m_result.jobs = static_cast<std::int64_t>(m_library.jobs.size());
        m_result.numbering = Ledger::checkNumbering(m_library);
        index();
        references();
        documents();
        issueLog();
        strayFiles();
        return std::move(m_result);
    }

private:
    template <typename... Values> void find(fmt::format_string<Values...> sentence, Values&&... values)
    {
        m_result.findings.push_back(fmt::format(sentence, std::forward<Values>(values)...));
    }

    static std::string name(const Job& job) { return job.title.empty() ? "Untitled job" : job.title; }
    static std::string name(const Invoice& invoice) { return invoice.number.value_or("a draft"); }

    template <typename Records> void indexRecords(const Records& records, std::string_view kind)
    {
        for (const auto& record : records) {
            if (!m_ids.insert(record.id).second)
                find("The id {} stands on more than one record, the last of them a {}.", record.id.toString(),
                    kind);
        }
    }

    void index()
    {
        indexRecords(m_library.clients, "client");
        indexRecords(m_library.jobs, "job");
        indexRecords(m_library.invoices, "document");
        for (const auto& client : m_library.clients)
            m_clients.insert(client.id);
        for (const auto& job : m_library.jobs)
            m_jobs.emplace(job.id, &job);
        for (const auto& invoice : m_library.invoices)
            m_invoices.emplace(invoice.id, &invoice);
    }

    void references()
    {
        for (const auto& job : m_library.jobs) {
            if (!m_clients.contains(job.clientID))
                find("The job “{}” belongs to a client that isn’t there.", name(job));
            jobAndInvoice(job);
            for (const auto& analysis : job.analyses) {
                if (analysis.storedCopy && !fs::exists(m_store.resolve(*analysis.storedCopy)))
                    find("The report copy “{}” of the job “{}” is missing.", *analysis.storedCopy, name(job));
            }
        }
    }

    void jobAndInvoice(const Job& job)
    {
        const bool isBilled = job.status == JobStatus::invoiced || job.status == JobStatus::paid;
        if (!job.invoiceID) {
            if (isBilled)
                find("The job “{}” is {} but on no invoice.", name(job), title(job.status));
            return;
        }
        const auto found = m_invoices.find(*job.invoiceID);
        if (found == m_invoices.end())
            return find("The job “{}” is on an invoice that isn’t there.", name(job));
        const auto& invoice = *found->second;
        if (invoice.clientID != job.clientID)
            find("The job “{}” is on {}, which is for another client.", name(job), name(invoice));
        if (invoice.isIssued() != isBilled)
            find("The job “{}” is {} but its invoice {} is {}.", name(job), title(job.status), name(invoice),
                invoice.isIssued() ? "issued" : "a draft");
    }

    void documents()
    {
        const Ledger::CreditedAmounts credited(m_library);
        for (const auto& document : m_library.invoices) {
            if (!m_clients.contains(document.clientID))
                find("{} is for a client that isn’t there.", name(document));
            jobsOnLines(document, credited.of(document.id));
            if (document.kind == DocumentKind::invoice && document.isIssued()
                && credited.of(document.id) > std::max(document.total(), Base::Decimal()))
                find("More is credited on {} than its total.", name(document));
            if (document.kind == DocumentKind::creditNote
                && !m_invoices.contains(document.creditsInvoiceID.value_or(Base::Uuid {})))
                find("{} corrects an invoice that isn’t there.", name(document));
            if (document.isIssued())
                ++m_result.documents;
        }
    }

    // A job that stands on the lines of two invoices that count would be billed twice.
    void jobsOnLines(const Invoice& invoice, const Base::Decimal& credited)
    {
        const bool isUndone = invoice.isIssued() && credited > Base::Decimal() && credited >= invoice.total();
        if (invoice.kind != DocumentKind::invoice || isUndone)
            return;
        std::set<Base::Uuid> ids;
        for (const auto& line : invoice.lines) {
            if (line.jobID)
                ids.insert(*line.jobID);
        }
        for (const auto& id : ids) {
            const auto job = m_jobs.find(id);
            if (job == m_jobs.end())
                find("{} bills a job that isn’t there.", name(invoice));
            else if (job->second->invoiceID != invoice.id)
                find("{} bills the job “{}”, which doesn’t know of it.", name(invoice), name(*job->second));
        }
    }

    void issueLog()
    {
        if (!m_log.isIntact())
            find("The issue log was changed or damaged.");
        std::map<std::string, const IssueLog::Entry*> byNumber;
        for (const auto& entry : m_log.entries()) {
            if (entry.outcome != IssueLog::Outcome::dropped)
                byNumber[entry.plan.document.number.value_or("")] = &entry;
        }
        std::unordered_set<std::string> recorded;
        for (const auto& document : m_library.invoices) {
            if (!document.isIssued())
                continue;
            recorded.insert(*document.number);
            const auto entry = byNumber.find(*document.number);
            storedPDF(document, entry == byNumber.end() ? nullptr : entry->second);
        }
        for (const auto& [number, entry] : byNumber) {
            const auto file = entry->plan.document.pdfFile.value_or("");
            if (!recorded.contains(number) && fs::exists(m_store.resolve(file))) {
                m_knownFiles.insert(file);
                find("The PDF of {} has no record in the library, but the issue log knows it; it can be "
                     "taken over.",
                    number);
            }
        }
    }

    void storedPDF(const Invoice& document, const IssueLog::Entry* entry)
    {
        const auto number = *document.number;
        m_knownFiles.insert(document.pdfFile.value_or(""));
        try {
            const auto hash
                = Base::sha256(Base::readFile(m_store.resolve(document.pdfFile.value_or(""))).bytes);
            if (!entry)
                find("{} isn’t in the issue log, so its PDF can’t be compared with the one that was issued.",
                    number);
            else if (hash != entry->pdfSHA256)
                find("The stored PDF for {} isn’t the file that was stored when it was issued.", number);
        } catch (const std::exception&) {
            find("The stored PDF for {} is missing from the library folder. Restore it from a backup of the "
                 "folder; "
                 "Pallisande doesn’t make a new one, so the issued document stays as issued.",
                number);
        }
        if (entry && lockedPart(document) != lockedPart(entry->plan.document))
            find("The record of {} isn’t the one that was issued.", number);
    }

    void strayFiles()
    {
        for (const auto& job : m_library.jobs) {
            for (const auto& analysis : job.analyses)
                m_knownFiles.insert(analysis.storedCopy.value_or(""));
        }
        for (const auto folder : { LibraryStore::invoicesFolder, LibraryStore::reportsFolder }) {
            for (const auto& file : filesIn(m_store.folder() / folder)) {
                const auto path = fmt::format("{}/{}", folder, file);
                if (!m_knownFiles.contains(path))
                    find("“{}” belongs to no record.", path);
            }
        }
        for (const auto& file : filesIn(m_store.folder())) {
            const bool isOurs = file == LibraryStore::documentName || file == IssueLog::fileName
                || file.starts_with("Pallisande Library (damaged ");
            if (!isOurs)
                find("“{}” isn’t a file of the library.", file);
        }
    }

    const Library& m_library;
    const LibraryStore& m_store;
    IssueLog m_log;
    LibraryCheck m_result;
    std::unordered_set<Base::Uuid> m_ids;
    std::unordered_set<Base::Uuid> m_clients;
    std::unordered_map<Base::Uuid, const Job*> m_jobs;
    std::unordered_map<Base::Uuid, const Invoice*> m_invoices;
    std::unordered_set<std::string> m_knownFiles;
};

} // namespace

bool LibraryCheck::isClean() const
{
    return findings.empty() && numbering.size() == 1 && numbering.front() == sound;
}

LibraryCheck checkLibrary(const LibrarySession& session) { return Check(session).run(); }

} // namespace Pallisande
