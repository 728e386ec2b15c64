#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Model/JobSection.h"

#include "Base/DurableFile.h"
#include "Base/SafeFileName.h"
#include "PallisandeKit/Documents/InvoiceDocument.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

// Drafts of invoices and credit notes.
namespace Pallisande {

namespace {

std::vector<Base::Uuid> jobsOf(const Invoice& invoice)
{
    std::vector<Base::Uuid> ids;
    for (const auto& line : invoice.lines) {
        if (line.jobID && std::find(ids.begin(), ids.end(), *line.jobID) == ids.end())
            ids.push_back(*line.jobID);
    }
    return ids;
}

std::vector<RecordID> touched(const Base::Uuid& invoice, std::span<const Base::Uuid> jobs)
{
    std::vector<RecordID> records { { RecordKind::invoice, invoice } };
    for (const auto& id : jobs)
        records.push_back({ RecordKind::job, id });
    return records;
}

bool sameText(const InvoiceLine& left, const InvoiceLine& right)
{
    auto copy = left;
    copy.id = right.id;
    return copy == right;
}

} // namespace

std::vector<InvoiceOffer> InvoiceSection::offers() const
{
    std::vector<InvoiceOffer> offers;
    std::vector<Base::Decimal> sums;
    for (const auto* job : Deadlines::board(m_model.library(), m_model.moment()).deliveredNotInvoiced) {
        auto offer = std::find_if(offers.begin(), offers.end(),
            [&](const InvoiceOffer& other) { return other.clientID == job->clientID; });
        if (offer == offers.end()) {
            offer = offers.insert(offers.end(), { .clientID = job->clientID });
            sums.emplace_back();
        }
        offer->jobs.push_back(job->id);
        sums[static_cast<std::size_t>(offer - offers.begin())] += m_model.jobs().figures(*job).net;
    }
    for (std::size_t place = 0; place < offers.size(); ++place) {
        const auto* const client = m_model.client(offers[place].clientID);
        offers[place].text = fmt::format("{}: {}, {}", client ? client->name : "",
            counted(std::ssize(offers[place].jobs), "job", "jobs"),
            m_model.formats().money(sums[place], client ? client->currency : ""));
    }
    return offers;
}

bool InvoiceSection::makeDraft(std::span<const Base::Uuid> jobs)
{
    const auto& labels = Tamberlin::DocumentLabels::of(m_model.settings().documentLanguage);
    Edit edit { .name = "Make Draft" };
    for (const auto& id : jobs)
        edit.touches.push_back({ RecordKind::job, id });
    const bool isDone = m_model.change(
        edit, [&](Library& library) { Ledger::draftInvoice(library, jobs, m_model.moment(), labels); });
    if (isDone)
        m_model.show(AppSection::invoices, m_model.lastOutcome().addedInvoices.front());
    return isDone;
}

std::vector<Base::Uuid> InvoiceSection::otherDelivered(const Invoice& draft) const
{
    std::vector<Base::Uuid> ids;
    const bool takesJobs = draft.kind == DocumentKind::invoice && !draft.isIssued();
    for (const auto& job : m_model.library().jobs) {
        if (takesJobs && job.clientID == draft.clientID && job.status == JobStatus::delivered
            && !job.invoiceID)
            ids.push_back(job.id);
    }
    return ids;
}

// The lines that its jobs would have on a draft made now. Asked of a library that holds nothing else.
std::vector<InvoiceLine> InvoiceSection::freshLines(const Invoice& draft) const
{
    const auto* const client = m_model.client(draft.clientID);
    const auto ids = jobsOf(draft);
    Library scratch;
    if (!client || ids.empty())
        return {};
    scratch.clients = { *client };
    for (const auto& id : ids) {
        if (const auto* const job = m_model.job(id))
            scratch.jobs.emplace_back(*job).invoiceID.reset();
    }
    if (scratch.jobs.size() != ids.size())
        return {};
    const auto& labels = Tamberlin::DocumentLabels::of(m_model.settings().documentLanguage);
    return Ledger::draftInvoice(scratch, ids, m_model.moment(), labels).lines;
}

bool InvoiceSection::edit(
    const Base::Uuid& id, const std::string& name, const std::function<void(Invoice&)>& change)
{
    const auto* const draft = m_model.invoice(id);
    if (!draft)
        return m_model.requireEditing() && m_model.refuse(LedgerError::notFound().what());
    auto edited = *draft;
    try {
        change(edited);
    } catch (const LedgerError& error) {
        return m_model.refuse(error.what());
    }
    if (edited == *draft && !draft->isIssued())
        return m_model.requireEditing();
    auto jobs = jobsOf(*draft);
    const auto after = jobsOf(edited);
    jobs.insert(jobs.end(), after.begin(), after.end());
    std::sort(jobs.begin(), jobs.end());
    jobs.erase(std::unique(jobs.begin(), jobs.end()), jobs.end());
    return m_model.change({ .name = name, .field = name, .touches = touched(id, jobs) },
        [&](Library& library) { Ledger::editDraft(library, edited, m_model.moment().now); });
}

// As a step of its own.
bool InvoiceSection::editAlone(
    const Base::Uuid& id, const std::string& name, const std::function<void(Invoice&)>& change)
{
    m_model.endMerging();
    const bool isDone = edit(id, name, change);
    m_model.endMerging();
    return isDone;
}

bool InvoiceSection::addJobs(const Base::Uuid& id, std::span<const Base::Uuid> jobs)
{
    return editAlone(id, "Change Draft", [&](Invoice& draft) {
        auto wanted = draft;
        for (const auto& job : jobs)
            wanted.lines.push_back({ .jobID = job });
        for (auto& line : freshLines(wanted)) {
            if (std::find(jobs.begin(), jobs.end(), line.jobID) != jobs.end())
                draft.lines.push_back(std::move(line));
        }
    });
}

bool InvoiceSection::linesAreOutdated(const Invoice& draft) const
{
    if (draft.isIssued() || draft.kind != DocumentKind::invoice || jobsOf(draft).empty())
        return false;
    const auto fresh = freshLines(draft);
    std::vector<InvoiceLine> made;
    std::copy_if(draft.lines.begin(), draft.lines.end(), std::back_inserter(made),
        [](const InvoiceLine& line) { return line.jobID.has_value(); });
    // In whichever order the user has put them.
    return !std::is_permutation(made.begin(), made.end(), fresh.begin(), fresh.end(), sameText);
}

bool InvoiceSection::updateLines(const Base::Uuid& id)
{
    return editAlone(id, "Update Lines", [&](Invoice& draft) {
        const auto fresh = freshLines(draft);
        std::vector<InvoiceLine> lines;
        std::set<Base::Uuid> placed;
        for (auto& line : draft.lines) { // Each job's lines stand where its first one stood.
            if (!line.jobID) {
                lines.push_back(std::move(line));
            } else if (placed.insert(*line.jobID).second) {
                std::copy_if(fresh.begin(), fresh.end(), std::back_inserter(lines),
                    [&](const InvoiceLine& other) { return other.jobID == line.jobID; });
            }
        }
        draft.lines = std::move(lines);
    });
}

namespace {

// A draft with everything that it takes from its client as it is now.
Invoice withClient(Invoice draft, const Client& client, const Profile& profile)
{
    draft.client = { client.name, client.contact, client.address, client.email, client.taxID };
    draft.taxPercent = client.taxPercent;
    draft.taxLabel = client.taxLabel;
    draft.taxNote = client.taxNote;
    if (draft.kind == DocumentKind::invoice)
        draft.paymentTerms = client.paymentTerms.empty() ? profile.defaultPaymentTerms : client.paymentTerms;
    return draft;
}

} // namespace

bool InvoiceSection::makeBlankDraft(const Base::Uuid& clientID)
{
    const auto moment = m_model.moment();
    const bool isDone = m_model.change({ .name = "Make Draft" }, [&](Library& library) {
        const auto* const client = library.client(clientID);
        if (!client)
            throw LedgerError::notFound();
        const Invoice blank { .id = Base::Uuid::random(),
            .clientID = clientID,
            .currency = client->currency,
            .created = moment.now };
        library.invoices.push_back(withClient(blank, *client, library.profile));
    });
    if (isDone)
        m_model.show(AppSection::invoices, m_model.lastOutcome().addedInvoices.front());
    return isDone;
}

bool InvoiceSection::clientIsOutdated(const Invoice& draft) const
{
    const auto* const client = m_model.client(draft.clientID);
    return client && !draft.isIssued() && withClient(draft, *client, m_model.library().profile) != draft;
}

bool InvoiceSection::updateFromClient(const Base::Uuid& id)
{
    return editAlone(id, "Update from Client", [&](Invoice& draft) {
        if (const auto* const client = m_model.client(draft.clientID))
            draft = withClient(std::move(draft), *client, m_model.library().profile);
    });
}

bool InvoiceSection::removeDraft(const Base::Uuid& id)
{
    const auto* const draft = m_model.invoice(id);
    const auto client = draft ? draft->client.name : "";
    const auto what = draft && draft->kind == DocumentKind::creditNote ? "draft credit note" : "draft";
    const auto at = m_list.place(id);
    std::vector<Base::Uuid> jobs;
    for (const auto& job : m_model.library().jobs) {
        if (job.invoiceID == id)
            jobs.push_back(job.id);
    }
    const bool isDone = m_model.change({ .name = "Delete Draft", .touches = touched(id, jobs) },
        [&](Library& library) { Ledger::deleteDraft(library, id, m_model.moment().now); });
    if (!isDone)
        return false;
    if (const auto& left = ids(); !left.empty())
        m_model.select(AppSection::invoices, left[std::min(at, left.size() - 1)]);
    m_model.tell(Notice {
        .text = fmt::format("The {} for {} was deleted.", what, client), .action = Notice::Action::undo });
    return true;
}

Tamberlin::PrintedDocument InvoiceSection::document(const Invoice& invoice) const
{
    return invoiceDocument(
        m_model.library(), invoice, m_model.settings().documentLanguage, m_model.services().calendar);
}

void InvoiceSection::saveDraftPDF(const Base::Uuid& id)
{
    const auto* const invoice = m_model.invoice(id);
    if (!invoice) {
        m_model.refuse(LedgerError::notFound().what());
        return;
    }
    struct Saving {
        Tamberlin::PrintedDocument document;
        std::filesystem::path file;
        std::string failure;
    };
    const auto saving = std::make_shared<Saving>();
    saving->document = document(*invoice);
    const auto name = Base::safeFileName("Draft " + invoice->client.name, {}, ".pdf") + ".pdf";
    m_model.choose(
        { .kind = ChooserRequest::Kind::saveFile, .message = "Save Draft as PDF", .fileName = name },
        [this, saving](const AppServices::Paths& paths) {
            saving->file = paths.front();
            m_model.inBackground(
                [saving, renderer = m_model.services().renderer] {
                    try {
                        if (!renderer)
                            throw RenderError("there is no program to draw it");
                        const auto pdf = renderer->render(saving->document);
                        Base::writeDurably(Base::Folder::open(saving->file.parent_path()),
                            saving->file.filename().string(), pdf);
                    } catch (const std::exception& error) {
                        saving->failure = fmt::format("The PDF couldn’t be saved: {}", error.what());
                    }
                },
                [this, saving] {
                    if (!saving->failure.empty())
                        m_model.refuse(saving->failure);
                });
        });
}

} // namespace Pallisande
