#include "Base/DurableFile.h"
#include "Base/Sha256.h"
#include "PallisandeKit/Documents/InvoiceDocument.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "PallisandeKit/Library/LibrarySession.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

// A document is issued in steps of which each leaves a folder that the next start can finish or take back:
// pending edits are saved, the PDF is made in memory, the plan goes into the issue log, the PDF is stored,
// the record is applied and saved, and the log is closed.
namespace Pallisande {

namespace {

namespace fs = std::filesystem;

SessionError notIssued(std::string_view reason)
{
    return SessionError(
        fmt::format("The invoice wasn’t issued, because its PDF couldn’t be stored: {}", reason));
}

// What applying a plan changes in a library, so that it can be taken back when the library can't be saved.
class Undo {
public:
    Undo(Library& library, const Ledger::IssuePlan& plan)
        : m_library(library)
        , m_document(*library.invoice(plan.document.id))
        , m_invoiceSeries(library.profile.invoiceSeries)
        , m_creditSeries(library.profile.creditSeries)
    {
        for (const auto& change : plan.jobs) {
            if (const auto* const job = library.job(change.id))
                m_jobs.push_back({ job->id, job->status, job->invoiceID, job->modified });
        }
    }

    void takeBack()
    {
        *m_library.invoice(m_document.id) = m_document;
        m_library.profile.invoiceSeries = m_invoiceSeries;
        m_library.profile.creditSeries = m_creditSeries;
        Ledger::changeJobs(m_library, m_jobs);
    }

private:
    Library& m_library;
    Invoice m_document;
    NumberSeries m_invoiceSeries, m_creditSeries;
    std::vector<Ledger::JobChange> m_jobs;
};

// The hash of the PDF that a plan would store; empty when there is none.
std::string storedHash(const LibraryStore& store, const Ledger::IssuePlan& plan)
{
    try {
        return Base::sha256(Base::readFile(store.resolve(plan.document.pdfFile.value_or(""))).bytes);
    } catch (const std::exception&) {
        return {};
    }
}

// Takes back the PDF of a document that couldn't be issued after all. False: it is still there.
bool removePDF(const LibraryStore& store, const Ledger::IssuePlan& plan)
{
    const auto path = store.resolve(*plan.document.pdfFile);
    try {
        const auto folder = Base::Folder::open(path.parent_path());
        folder.remove(path.filename().string());
        folder.sync();
        return true;
    } catch (const std::system_error&) {
        std::error_code unknown;
        return !fs::exists(path, unknown) && !unknown;
    }
}

bool isRecorded(const Library& library, const Ledger::IssuePlan& plan)
{
    return std::any_of(library.invoices.begin(), library.invoices.end(),
        [&](const Invoice& invoice) { return invoice.isIssued() && invoice.number == plan.document.number; });
}

} // namespace

std::string LibrarySession::issuedPDF(const Ledger::IssuePlan& plan)
{
    if (!m_services.renderer)
        throw notIssued("there is no program to draw it");
    try {
        return m_services.renderer->render(
            invoiceDocument(m_library, plan.document, m_services.documentLanguage, m_services.calendar));
    } catch (const RenderError& error) {
        throw notIssued(error.what());
    }
}

std::string LibrarySession::issue(const Base::Uuid& draftID, std::optional<Base::Instant> issueDate)
{
    requireWritable();
    const auto plan = Ledger::planIssue(m_library, draftID, issueDate, moment());
    save();
    const auto pdf = issuedPDF(plan);

    const auto number = *plan.document.number;
    Undo undo(m_library, plan);
    std::optional<IssueLog> log;
    bool isLogged = false, isStored = false;
    try {
        requireFolder();
        log.emplace(m_folder, moment());
        log->begin(m_folder, plan, Base::sha256(pdf));
        isLogged = true;
        m_store.storeIssuedPDF(pdf, number);
        isStored = true;
        Ledger::carryOut(m_library, plan);
        m_isDirty = true;
        write();
    } catch (const std::exception& error) {
        const bool isBeyondRecall = isStored && (mayHaveBeenWritten() || !removePDF(m_store, plan));
        if (isBeyondRecall) // The document stays issued; the next save or the next start completes it.
            throw SessionError(fmt::format("Pallisande couldn’t save your library: {}", error.what()));
        undo.takeBack();
        m_isDirty = false; // As it was saved above.
        try {
            if (isLogged)
                log->finish(m_folder, plan.document.id, IssueLog::Outcome::dropped);
        } catch (
            const std::system_error&) { // Without the line, the next start finds no PDF and drops it then.
        }
        if (isReadOnly())
            throw;
        throw notIssued(error.what());
    }
    try {
        log->finish(m_folder, plan.document.id, IssueLog::Outcome::done);
    } catch (const std::system_error&) { // The document is issued and saved; the next start closes the log.
    }
    return number;
}

// Run at the opening of a library that may be written: a document whose PDF was stored is issued, one without
// is not.
void LibrarySession::finishInterruptedIssuing()
{
    IssueLog log(m_folder, moment());
    std::vector<IssueLog::Entry> pending;
    std::copy_if(log.entries().begin(), log.entries().end(), std::back_inserter(pending),
        [](const IssueLog::Entry& entry) { return entry.outcome == IssueLog::Outcome::pending; });
    for (const auto& [plan, pdfHash, outcome] : pending) {
        const auto& number = plan.document.number.value_or("");
        const auto stored = storedHash(m_store, plan);
        if (stored.empty()) {
            log.finish(m_folder, plan.document.id, IssueLog::Outcome::dropped);
            continue;
        }
        if (stored != pdfHash) {
            m_messages.push_back(fmt::format(
                "The stored PDF for {} isn’t the one that was being issued; it was left alone.", number));
            continue;
        }
        if (!isRecorded(m_library, plan)) {
            Ledger::carryOut(m_library, plan);
            write();
        }
        log.finish(m_folder, plan.document.id, IssueLog::Outcome::done);
    }
}

std::set<std::string> issuedNumbers(const Library& library)
{
    std::set<std::string> numbers;
    for (const auto& invoice : library.invoices) {
        if (invoice.isIssued())
            numbers.insert(*invoice.number);
    }
    return numbers;
}

std::vector<Ledger::IssuePlan> unrecordedDocuments(
    const LibraryStore& store, std::set<std::string> recorded, const Base::Moment& moment)
{
    const IssueLog log(Base::Folder::open(store.folder()), moment);
    std::vector<Ledger::IssuePlan> found;
    for (const auto& [plan, pdfHash, outcome] : log.entries()) {
        const auto number = plan.document.number.value_or("");
        if (outcome == IssueLog::Outcome::dropped || recorded.contains(number)
            || storedHash(store, plan) != pdfHash)
            continue;
        recorded.insert(number);
        found.push_back(plan);
    }
    return found;
}

std::vector<std::string> LibrarySession::recoverFromIssueLog()
{
    requireWritable();
    requireFolder();
    return takeOver(unrecordedDocuments(m_store, issuedNumbers(m_library), moment()));
}

std::vector<std::string> LibrarySession::takeOver(const std::vector<Ledger::IssuePlan>& documents)
{
    requireWritable();
    requireFolder();
    std::vector<std::string> numbers;
    for (const auto& plan : documents) {
        if (isRecorded(m_library, plan))
            continue;
        Ledger::carryOut(m_library, plan);
        numbers.push_back(plan.document.number.value_or(""));
    }
    if (!numbers.empty()) {
        m_isDirty = true;
        save();
    }
    return numbers;
}

std::string LibrarySession::renderDraft(const Base::Uuid& invoiceID) const
{
    const auto* const invoice = m_library.invoice(invoiceID);
    if (!invoice)
        throw LedgerError::notFound();
    if (!m_services.renderer)
        throw SessionError("The PDF couldn’t be saved: there is no program to draw it");
    try {
        return m_services.renderer->render(
            invoiceDocument(m_library, *invoice, m_services.documentLanguage, m_services.calendar));
    } catch (const RenderError& error) {
        throw SessionError(fmt::format("The PDF couldn’t be saved: {}", error.what()));
    }
}

fs::path LibrarySession::storedPDF(const Base::Uuid& invoiceID) const
{
    const auto* const invoice = m_library.invoice(invoiceID);
    if (!invoice)
        throw LedgerError::notFound();
    const auto path = m_store.resolve(invoice->pdfFile.value_or(""));
    std::error_code none;
    if (!invoice->pdfFile || !fs::is_regular_file(path, none))
        throw SessionError(
            fmt::format("The stored PDF for {} is missing from the library folder. Restore it from a "
                        "backup of the folder; Pallisande doesn’t make a new one, so the issued "
                        "document stays as issued.",
                invoice->number.value_or("this draft")));
    return path;
}

} // namespace Pallisande
