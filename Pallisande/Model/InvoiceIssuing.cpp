#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"

#include "Base/DurableFile.h"
#include "Base/Sha256.h"
#include "PallisandeKit/Documents/InvoiceDocument.h"

#include <fmt/format.h>

#include <algorithm>

// Issuing, credit notes, and the stored PDFs.
namespace Pallisande {

// A document that is being drawn before it is issued.
struct InvoiceSection::Drawn {
    Base::Uuid id;
    Base::Instant issueDate;
    Tamberlin::PrintedDocument document;
    std::string pdf, failure;
};

namespace {

constexpr std::string_view noRate
    = "No exchange rate for this day yet. You can add one later from the invoice.";

std::vector<RecordID> touchedBy(const Ledger::IssuePlan& plan)
{
    std::vector<RecordID> records { { RecordKind::invoice, plan.document.id } };
    for (const auto& change : plan.jobs)
        records.push_back({ RecordKind::job, change.id });
    return records;
}

} // namespace

void InvoiceSection::openIssueSheet(const Base::Uuid& id)
{
    if (!m_model.requireEditing())
        return;
    const auto* const draft = m_model.invoice(id);
    if (!draft)
        m_model.refuse(LedgerError::notFound().what());
    else if (draft->isIssued())
        m_model.refuse(LedgerError::notDraft().what());
    else
        m_model.openSheet(IssueSheet { id });
}

IssueOutlook InvoiceSection::outlook(
    const Base::Uuid& id, Base::Instant issueDate, std::optional<Base::Instant> dueDate) const
{
    const auto& library = m_model.library();
    const auto moment = m_model.moment();
    const auto today = moment.calendar.day(moment.now), day = moment.calendar.day(issueDate);
    IssueOutlook outlook;
    const auto* const draft = m_model.invoice(id);
    if (!draft)
        return { .refusal = LedgerError::notFound().what() };
    outlook.total = m_model.formats().money(draft->total(), draft->currency);
    try {
        const auto plan = Ledger::planIssue(library, id, issueDate, moment);
        outlook.number = *plan.document.number;
        if (plan.document.currency != plan.document.homeCurrency) {
            outlook.lacksRate = !plan.document.homeRate;
            outlook.rate = plan.document.homeRate ? rateText(*plan.document.homeRate) : noRate;
        }
    } catch (const LedgerError& error) {
        outlook.refusal = error.what();
    }
    std::optional<Base::Instant> last;
    for (const auto& invoice : library.invoices) {
        if (invoice.isIssued() && invoice.kind == draft->kind)
            last = std::max(last, invoice.issueDate);
    }
    auto& warnings = outlook.warnings;
    const bool isInvoice = draft->kind == DocumentKind::invoice;
    if (last && moment.calendar.day(*last) > day)
        warnings.push_back(fmt::format("The last {} is dated {}.", isInvoice ? "invoice" : "credit note",
            Formats::day(moment.calendar.day(*last))));
    if (day > today)
        warnings.emplace_back("The issue date is in the future.");
    if (isInvoice && dueDate && moment.calendar.day(*dueDate) < day)
        warnings.emplace_back("The due date is before the issue date.");
    if (library.profile.sender.name.empty())
        warnings.emplace_back("Your name is missing: type it in Settings › Business.");
    if (isInvoice && library.profile.bankDetails.empty())
        warnings.emplace_back("There are no bank details: type them in Settings › Invoices.");
    return outlook;
}

Base::Instant InvoiceSection::dueDate(const Invoice& draft, Base::Instant issueDate) const
{
    const auto& calendar = m_model.services().calendar;
    const auto* const client = m_model.client(draft.clientID);
    const auto days = client ? client->paymentDays : 0;
    return calendar.noon(
        draft.dueDate ? calendar.day(*draft.dueDate) : calendar.day(issueDate).plusDays(days));
}

Tamberlin::PrintedDocument InvoiceSection::documentToIssue(
    const Invoice& draft, Base::Instant issueDate, std::optional<Base::Instant> dueDate) const
{
    auto shown = draft;
    try {
        shown = Ledger::planIssue(m_model.library(), draft.id, issueDate, m_model.moment()).document;
    } catch (const LedgerError&) {
        shown.issueDate = issueDate;
    }
    if (dueDate && draft.kind == DocumentKind::invoice)
        shown.dueDate = dueDate;
    return document(shown);
}

void InvoiceSection::issue(
    const Base::Uuid& id, Base::Instant issueDate, std::optional<Base::Instant> dueDate)
{
    if (m_issuing || !m_model.requireEditing())
        return;
    if (m_model.folderWasNotFound()) {
        m_model.refuse("Confirm the library folder in use first: documents are issued into it for good.",
            Problem::Action::chooseFolder);
        return;
    }
    const auto* const draft = m_model.invoice(id);
    const bool hasOwnDue
        = draft && dueDate && draft->dueDate != dueDate && draft->kind == DocumentKind::invoice;
    if (hasOwnDue && !edit(id, "Change Due Date", [&](Invoice& edited) { edited.dueDate = dueDate; }))
        return;
    const auto drawn = std::make_shared<Drawn>();
    drawn->id = id;
    drawn->issueDate = issueDate;
    m_issuing = id;
    draw(drawn);
}

void InvoiceSection::draw(std::shared_ptr<Drawn> drawn)
{
    try {
        const auto plan = Ledger::planIssue(m_model.library(), drawn->id, drawn->issueDate, m_model.moment());
        drawn->document = document(plan.document);
    } catch (const LedgerError& error) {
        m_issuing.reset();
        m_model.refuse(error.what());
        emit m_model.issuingChanged();
        return;
    }
    emit m_model.issuingChanged();
    m_model.inBackground(
        [drawn, renderer = m_model.services().renderer] {
            drawn->failure.clear();
            try {
                if (!renderer)
                    throw RenderError("there is no program to draw it");
                drawn->pdf = renderer->render(drawn->document);
            } catch (const std::exception& error) {
                drawn->failure = error.what();
            }
        },
        [this, drawn] { finishIssuing(drawn); });
}

// The PDF is issued only if it still shows what would be issued now; else it is drawn anew.
void InvoiceSection::finishIssuing(const std::shared_ptr<Drawn>& drawn)
{
    std::optional<Ledger::IssuePlan> plan;
    try {
        plan = Ledger::planIssue(m_model.library(), drawn->id, drawn->issueDate, m_model.moment());
        if (document(plan->document) != drawn->document)
            return draw(drawn);
    } catch (const LedgerError&) { // The session refuses it in the same words.
    }
    auto& renderer = m_model.m_renderer;
    if (drawn->failure.empty())
        renderer.prepare(std::move(drawn->pdf));
    else
        renderer.refuse(drawn->failure);
    std::string number;
    const bool isDone = m_model.perform({ .name = "Issuing",
                                            .touches = plan ? touchedBy(*plan) : std::vector<RecordID>(),
                                            .touchesProfile = true,
                                            .isFinal = true },
        [&](LibrarySession& session) { number = session.issue(drawn->id, drawn->issueDate); });
    renderer.forget();
    m_issuing.reset();
    emit m_model.issuingChanged();
    if (!isDone)
        return;
    m_model.closeSheet();
    m_model.show(AppSection::invoices, drawn->id);
    m_model.tell(Notice {
        .text = fmt::format("Issued {}.", number), .action = Notice::Action::show, .subject = drawn->id });
}

bool InvoiceSection::makeCreditNote(const Base::Uuid& id)
{
    const auto& labels = Tamberlin::DocumentLabels::of(m_model.settings().documentLanguage);
    const auto& invoices = m_model.library().invoices;
    const auto open = std::find_if(invoices.begin(), invoices.end(),
        [&](const Invoice& other) { return other.creditsInvoiceID == id && !other.isIssued(); });
    const auto* const invoice = m_model.invoice(id);
    if (m_model.canEdit() && open != invoices.end() && invoice && invoice->number)
        return m_model.refuse(
            LedgerError::creditDraftOpen(*invoice->number).what(), Problem::Action::openInvoice, open->id);
    const bool isDone = m_model.change({ .name = "Make Draft" },
        [&](Library& library) { Ledger::makeCreditNote(library, id, m_model.moment(), labels); });
    if (isDone)
        m_model.show(AppSection::invoices, m_model.lastOutcome().addedInvoices.front());
    return isDone;
}

std::vector<Base::Uuid> InvoiceSection::creditNotes(const Base::Uuid& invoiceID) const
{
    std::vector<Base::Uuid> ids;
    for (const auto& invoice : m_model.library().invoices) {
        if (invoice.creditsInvoiceID == invoiceID)
            ids.push_back(invoice.id);
    }
    return ids;
}

Base::Decimal InvoiceSection::leftToCredit(const Invoice& invoice) const
{
    return invoice.total() - m_model.index().credited(m_model.library(), invoice.id);
}

// --- Stored PDFs

void InvoiceSection::examineStoredPDF(const Base::Uuid& id, std::function<void(const StoredPDF&)> then)
{
    auto* const session = m_model.session();
    if (!session)
        return;
    const auto stored = std::make_shared<StoredPDF>();
    try {
        stored->path = session->storedPDF(id);
    } catch (const std::exception& error) {
        stored->failure = error.what();
        then(*stored);
        return;
    }
    m_model.inBackground(
        [stored, folder = m_model.folder(), moment = m_model.moment(), id] {
            try {
                const IssueLog log(Base::Folder::open(folder), moment);
                const auto hash = Base::sha256(Base::readFile(stored->path).bytes);
                stored->isAsIssued = std::any_of(
                    log.entries().begin(), log.entries().end(), [&](const IssueLog::Entry& entry) {
                        return entry.plan.document.id == id && entry.outcome != IssueLog::Outcome::dropped
                            && entry.pdfSHA256 == hash;
                    });
            } catch (const std::exception&) { // It can't be told to be the one.
            }
        },
        [stored, then = std::move(then)] { then(*stored); });
}

void InvoiceSection::withStoredPDF(const Base::Uuid& id, std::function<void(const StoredPDF&)> then)
{
    examineStoredPDF(id, [this, then = std::move(then)](const StoredPDF& stored) {
        if (stored.failure.empty())
            then(stored);
        else
            m_model.refuse(stored.failure, Problem::Action::showLibraryFolder);
    });
}

void InvoiceSection::openStoredPDF(const Base::Uuid& id)
{
    withStoredPDF(id, [this, id](const StoredPDF& stored) {
        m_model.services().openFile(stored.path);
        const auto* const invoice = m_model.invoice(id);
        if (!stored.isAsIssued && invoice)
            m_model.tell(Notice { .text
                = fmt::format("The stored PDF for {} isn’t the file that was stored when it was issued.",
                    invoice->number.value_or("")) });
    });
}

void InvoiceSection::showStoredPDF(const Base::Uuid& id)
{
    withStoredPDF(id, [this](const StoredPDF& stored) { m_model.services().showInFolder(stored.path); });
}

} // namespace Pallisande
