#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"

#include <fmt/format.h>

#include <QByteArray>
#include <QUrl>

#include <algorithm>

// What is said about invoices: on their page, and to the client.
namespace Pallisande {

namespace {

// "5 days ago", "in 3 days", "today".
std::string distance(std::int64_t days)
{
    if (days == 0)
        return "today";
    const auto count = counted(days < 0 ? -days : days, "day", "days");
    return days < 0 ? count + " ago" : "in " + count;
}

// Percent-encoded for a mail URL, whose line breaks are CR LF.
std::string encoded(const std::string& text, const QByteArray& asItIs = {})
{
    auto bytes = QByteArray::fromStdString(text);
    bytes.replace("\n", "\r\n");
    return QUrl::toPercentEncoding(QString::fromUtf8(bytes), asItIs).toStdString();
}

std::string_view kindName(const Invoice& invoice)
{
    return invoice.kind == DocumentKind::invoice ? "invoice" : "credit note";
}

std::string greeting(const Invoice& invoice)
{
    return fmt::format(
        "Dear {},\n\n", invoice.client.contact.empty() ? invoice.client.name : invoice.client.contact);
}

std::string closing(const Library& library)
{
    const auto& name = library.profile.sender.name;
    return "\n\nKind regards" + (name.empty() ? name : "\n" + name);
}

} // namespace

std::string InvoiceSection::stateText(const Invoice& invoice) const
{
    const auto moment = m_model.moment();
    const auto& calendar = moment.calendar;
    const auto day = [&](Base::Instant instant) { return Formats::day(calendar.day(instant)); };
    if (!invoice.isIssued()) {
        if (invoice.kind == DocumentKind::creditNote)
            return fmt::format("draft credit note for {}", invoice.creditsNumber.value_or("–"));
        return "made " + day(invoice.created);
    }
    auto text = "issued " + day(invoice.issueDate.value_or(invoice.created));
    switch (status(invoice)) {
    case InvoiceStatus::open:
    case InvoiceStatus::overdue:
    case InvoiceStatus::partlyPaid:
        if (invoice.dueDate)
            text += fmt::format(" · due {} ({})", day(*invoice.dueDate),
                distance(calendar.daysBetween(moment.now, *invoice.dueDate)));
        break;
    case InvoiceStatus::paid:
        if (!invoice.payments.empty())
            text += " · paid on "
                + day(std::max_element(invoice.payments.begin(), invoice.payments.end(),
                    [](const auto& left, const auto& right) {
                        return left.date < right.date;
                    })->date);
        break;
    case InvoiceStatus::credited: {
        std::string numbers;
        for (const auto& id : creditNotes(invoice.id)) {
            if (const auto* const note = m_model.invoice(id); note && note->number)
                numbers += (numbers.empty() ? "" : ", ") + *note->number;
        }
        text += " · credited by " + numbers;
        break;
    }
    case InvoiceStatus::draft:
    case InvoiceStatus::creditNote:
        break;
    }
    return text;
}

std::string InvoiceSection::reminderText(const Invoice& invoice) const
{
    const auto moment = m_model.moment();
    const auto day = [&](Base::Instant instant) { return Formats::day(moment.calendar.day(instant)); };
    const auto& formats = m_model.formats();
    auto text = greeting(invoice)
        + fmt::format("our invoice {} of {} over {}", invoice.number.value_or(""),
            day(invoice.issueDate.value_or(invoice.created)),
            formats.money(invoice.total(), invoice.currency));
    if (invoice.dueDate)
        text += fmt::format(" {} due on {}",
            moment.calendar.day(*invoice.dueDate) < moment.calendar.day(moment.now) ? "was" : "is",
            day(*invoice.dueDate));
    text += invoice.dueDate ? ". " : " is open. ";
    text += fmt::format("{} still open: could you let me know when to expect the payment?",
        formats.money(stillDue(invoice), invoice.currency) + " is");
    text += "\n\nIf it is already on its way, please take no notice of this letter.";
    return text + closing(m_model.library());
}

void InvoiceSection::email(const Base::Uuid& id)
{
    const auto* const invoice = m_model.invoice(id);
    const auto& open = m_model.services().openAddress;
    if (!invoice || !invoice->isIssued() || !open)
        return;
    auto name = std::string(kindName(*invoice)) + " " + *invoice->number;
    auto subject = name;
    subject[0] = subject[0] == 'i' ? 'I' : 'C';
    auto body = greeting(*invoice)
        + fmt::format("please find attached {} over {}", name,
            m_model.formats().money(invoice->total(), invoice->currency));
    if (invoice->dueDate && invoice->kind == DocumentKind::invoice)
        body += ", due on " + Formats::day(m_model.services().calendar.day(*invoice->dueDate));
    body += "." + closing(m_model.library());
    open(fmt::format("mailto:{}?subject={}&body={}", encoded(invoice->client.email, "@"), encoded(subject),
        encoded(body)));
}

} // namespace Pallisande
