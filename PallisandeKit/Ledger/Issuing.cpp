#include "Base/Checked.h"
#include "Base/SafeFileName.h"
#include "PallisandeKit/Ledger/Find.h"
#include "PallisandeKit/Ledger/Ledger.h"

#include <algorithm>

namespace Pallisande::Ledger {

namespace {

using Base::Decimal;

Series seriesOf(const Invoice& document)
{
    return document.kind == DocumentKind::invoice ? Series::invoices : Series::creditNotes;
}

void checkTotals(const Library& library, const Invoice& draft)
{
    if (draft.lines.empty())
        throw LedgerError::noLines();
    const auto total = draft.total();
    if (draft.kind == DocumentKind::invoice) {
        if (total.isNegative())
            throw LedgerError::totalBelowZero();
        return;
    }
    if (!total.isNegative())
        throw LedgerError::creditNotBelowZero();
    const auto& corrected = required(library.invoice(draft.creditsInvoiceID.value_or(Base::Uuid {})));
    if (-total > corrected.total() - credited(library, corrected.id))
        throw LedgerError::creditAboveRest(corrected.number.value_or(""));
}

void checkNumberIsFree(const Library& library, const std::string& number)
{
    const bool isTaken = std::any_of(library.invoices.begin(), library.invoices.end(),
        [&](const Invoice& invoice) { return invoice.isIssued() && invoice.number == number; });
    if (isTaken)
        throw LedgerError::numberTaken(number);
}

Base::Instant dueDate(const Library& library, const Invoice& draft, const Base::Calendar& calendar)
{
    if (draft.dueDate)
        return calendar.noon(*draft.dueDate);
    const auto* const client = library.client(draft.clientID);
    return calendar.noon(calendar.day(*draft.issueDate).plusDays(client ? client->paymentDays : 0));
}

// What the document does to jobs: an invoice takes its own, a credit note settles those of the invoice that
// it corrects.
std::vector<JobChange> jobChanges(const Library& library, const Invoice& document, const Base::Moment& moment)
{
    if (document.kind == DocumentKind::invoice)
        return settledJobs(library, document, Decimal(), moment);
    const auto& corrected = required(library.invoice(*document.creditsInvoiceID));
    return settledJobs(library, corrected, credited(library, corrected.id) - document.total(), moment);
}

} // namespace

std::string pdfPath(const std::string& number)
{
    return "Invoices/" + Base::safeFileName(number, {}, ".pdf") + ".pdf";
}

IssuePlan planIssue(const Library& library, const Base::Uuid& draftID, std::optional<Base::Instant> issueDate,
    const Base::Moment& moment)
{
    const auto& draft = required(library.invoice(draftID));
    if (draft.isIssued())
        throw LedgerError::notDraft();
    checkTotals(library, draft);

    IssuePlan plan { .document = draft };
    auto& document = plan.document;
    document.issueDate = moment.calendar.noon(issueDate ? *issueDate : draft.issueDate.value_or(moment.now));
    const auto year = moment.calendar.day(*document.issueDate).year;
    const auto& numbers = series(library.profile, seriesOf(draft));
    const auto [sequence, number] = numbers.upcoming(year);
    checkNumberIsFree(library, number);
    plan.seriesKey = numbers.key(year);
    plan.seriesNext = Base::Checked::add(sequence, 1);

    document.number = number;
    document.sequence = sequence;
    if (document.kind == DocumentKind::invoice)
        document.dueDate = dueDate(library, document, moment.calendar);
    document.homeCurrency = library.profile.homeCurrency;
    document.homeRate
        = library.rates.rate(document.currency, document.homeCurrency, *document.issueDate, moment);
    document.pdfFile = pdfPath(number);
    document.issuedAt = moment.now;
    plan.jobs = jobChanges(library, document, moment);
    return plan;
}

void carryOut(Library& library, const IssuePlan& plan)
{
    if (auto* const draft = library.invoice(plan.document.id))
        *draft = plan.document;
    else
        library.invoices.push_back(plan.document);
    auto& next = series(library.profile, seriesOf(plan.document)).next[plan.seriesKey];
    next = std::max(next, plan.seriesNext);
    changeJobs(library, plan.jobs);
}

} // namespace Pallisande::Ledger
