#include "PallisandeKit/Documents/InvoiceDocument.h"

#include "Base/Text.h"
#include "TamberlinKit/Quotes/DocumentLabels.h"
#include "TamberlinKit/Quotes/Money.h"

#include <fmt/format.h>

#include <algorithm>

namespace Pallisande {

namespace {

using Tamberlin::DocumentLabels;
using Tamberlin::PrintedDocument;

constexpr int leastRatePlaces = 2; // A rate of 0.1 is printed as 0.10.

// The filled lines of a text, trimmed.
std::vector<std::string> lines(std::string_view text)
{
    std::vector<std::string> lines;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        if (const auto line = Base::trimmed(text.substr(0, end)); !line.empty())
            lines.emplace_back(line);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

std::string joined(const std::vector<std::string>& parts, std::string_view separator)
{
    std::string text;
    for (const auto& part : parts) {
        if (!part.empty())
            text += (text.empty() ? "" : std::string(separator)) + part;
    }
    return text;
}

class Composer {
public:
    Composer(const Library& library, const Invoice& invoice, std::string_view language,
        const Base::Calendar& calendar)
        : m_library(library)
        , m_invoice(invoice)
        , m_sender(library.profile.sender)
        , m_labels(DocumentLabels::of(language))
        , m_calendar(calendar)
    {
        m_document.language = language;
        m_document.paper = library.profile.paper;
    }

    PrintedDocument compose()
    {
        sender();
        recipient();
        facts();
        heading();
        table();
        totals();
        remarks();
        return std::move(m_document);
    }

private:
    bool isCredit() const { return m_invoice.kind == DocumentKind::creditNote; }
    std::string kindName() const { return std::string(isCredit() ? m_labels.creditNote : m_labels.invoice); }
    std::string money(const Base::Decimal& amount) const
    {
        return m_labels.figure(amount, Tamberlin::Money::minorDigits(m_invoice.currency));
    }
    std::string day(Base::Instant instant) const { return m_labels.day(m_calendar.day(instant)); }

    void sender()
    {
        m_document.logo = m_sender.logo;
        m_document.senderName = m_sender.name;
        m_document.senderDetails = lines(m_sender.address);
        for (const auto& detail : { m_sender.email, m_sender.phone, m_sender.website }) {
            if (!detail.empty())
                m_document.senderDetails.push_back(detail);
        }
        const auto taxNumber = m_sender.taxID.empty()
            ? std::string()
            : fmt::format("{} {}", m_labels.taxNumber, m_sender.taxID);
        if (!taxNumber.empty())
            m_document.senderDetails.push_back(taxNumber);
        m_document.senderLine = joined({ m_sender.name, joined(lines(m_sender.address), ", ") }, " · ");
        m_document.footerLeft = joined({ m_sender.name, taxNumber, m_sender.email }, " · ");
    }

    void recipient()
    {
        const auto& client = m_invoice.client;
        for (const auto& text : { client.name, client.contact, client.address }) {
            for (auto& line : lines(text))
                m_document.recipient.push_back(std::move(line));
        }
    }

    void addFact(std::string_view label, const std::string& value)
    {
        if (!value.empty())
            m_document.facts.push_back({ std::string(label), value });
    }

    void facts()
    {
        if (m_invoice.number)
            addFact(isCredit() ? m_labels.creditNote : m_labels.invoice, *m_invoice.number);
        if (m_invoice.issueDate)
            addFact(m_labels.date, day(*m_invoice.issueDate));
        if (m_invoice.dueDate && !isCredit())
            addFact(m_labels.due, day(*m_invoice.dueDate));
        addFact(m_labels.yourTaxNumber, m_invoice.client.taxID);
    }

    void heading()
    {
        m_document.title = kindName();
        m_document.metadataTitle
            = m_invoice.number ? fmt::format("{} {}", kindName(), *m_invoice.number) : kindName();
        std::vector<std::string> subtitle;
        if (isCredit() && m_invoice.creditsNumber)
            subtitle.push_back(correction());
        if (!m_invoice.isIssued())
            subtitle.emplace_back(m_labels.draftMark);
        m_document.subtitle = joined(subtitle, " · ");
        m_document.footerRight
            = m_invoice.isIssued() ? m_invoice.number.value_or("") : std::string(m_labels.draftMark);
    }

    std::string correction() const
    {
        const auto* const corrected = m_library.invoice(m_invoice.creditsInvoiceID.value_or(Base::Uuid {}));
        const auto date = corrected && corrected->issueDate ? day(*corrected->issueDate) : std::string("–");
        return Tamberlin::filled(
            m_labels.correctsInvoice, { { "number", *m_invoice.creditsNumber }, { "date", date } });
    }

    void table()
    {
        m_document.heads
            = { std::string(m_labels.description), std::string(m_labels.quantity), std::string(m_labels.unit),
                  std::string(m_labels.price), fmt::format("{} {}", m_labels.amount, m_invoice.currency) };
        m_document.carriedForward = m_labels.carriedForward;
        m_document.broughtForward = m_labels.broughtForward;
        Base::Decimal sum;
        for (const auto& line : m_invoice.lines) {
            sum += line.amount;
            // A line that is only an amount (a surcharge, a minimum fee) shows neither quantity nor price.
            const bool isOnlyAmount = line.unit.empty() && line.quantity.magnitude() == Base::Decimal(1);
            m_document.rows.push_back({
                .title = line.title,
                .detail = line.detail,
                .quantity = isOnlyAmount ? std::string() : m_labels.figure(line.quantity),
                .unit = line.unit,
                .price = isOnlyAmount ? std::string() : m_labels.figure(line.unitPrice, leastRatePlaces),
                .amount = money(line.amount),
                .sumSoFar = money(sum),
            });
        }
    }

    void totals()
    {
        const auto tax = m_invoice.tax();
        const bool hasTax = !m_invoice.taxPercent.isZero();
        if (hasTax) {
            const auto label
                = m_invoice.taxLabel.empty() ? m_labels.tax : std::string_view(m_invoice.taxLabel);
            m_document.totals.push_back({ std::string(m_labels.subtotal), money(m_invoice.subtotal()) });
            m_document.totals.push_back(
                { fmt::format("{} {}%", label, m_labels.figure(m_invoice.taxPercent)), money(tax) });
        }
        m_document.totals.push_back(
            { fmt::format("{} {}", m_labels.total, m_invoice.currency), money(m_invoice.subtotal() + tax) });
    }

    void remarks()
    {
        std::vector<std::string> texts { m_invoice.taxNote, m_invoice.notes };
        if (!isCredit()) {
            texts.push_back(m_invoice.paymentTerms);
            texts.push_back(m_library.profile.bankDetails);
        }
        for (const auto& text : texts) {
            if (const auto remark = Base::trimmed(text); !remark.empty())
                m_document.remarks.emplace_back(remark);
        }
    }

    const Library& m_library;
    const Invoice& m_invoice;
    const Tamberlin::SenderProfile& m_sender;
    const DocumentLabels& m_labels;
    const Base::Calendar& m_calendar;
    PrintedDocument m_document;
};

} // namespace

PrintedDocument invoiceDocument(
    const Library& library, const Invoice& invoice, std::string_view language, const Base::Calendar& calendar)
{
    return Composer(library, invoice, language, calendar).compose();
}

} // namespace Pallisande
