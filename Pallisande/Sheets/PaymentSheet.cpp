#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Sheets/SheetMemory.h"
#include "Pallisande/Sheets/Sheets.h"
#include "Pallisande/Widgets/DateEdit.h"
#include "Pallisande/Widgets/FormLayout.h"
#include "Pallisande/Widgets/NumberEdit.h"

#include <algorithm>

namespace Pallisande {

namespace {

struct KeptPayment {
    std::optional<Base::Day> day;
    std::optional<Base::Decimal> amount, received, rate;
    QString note;

    bool operator==(const KeptPayment&) const = default;
};

class PaymentDialog : public SheetDialog {
public:
    PaymentDialog(AppModel& model, const PaymentSheet& sheet, QWidget* window)
        : SheetDialog(
            sheet.paymentID ? QStringLiteral("Change a Payment") : QStringLiteral("Record a Payment"), {},
            Width::small, window)
        , m_model(model)
        , m_sheet(sheet)
    {
        setObjectName(QStringLiteral("paymentSheet"));
        makeFields();
        fill();
        setDefault(sheet.paymentID ? QStringLiteral("Change Payment") : QStringLiteral("Record Payment"),
            [this] { return record(); });
        setFirstField(m_amount);
        for (auto* field : { static_cast<LineField*>(m_day), static_cast<LineField*>(m_amount),
                 static_cast<LineField*>(m_received), static_cast<LineField*>(m_rate) })
            connect(field, &LineField::committed, this, &PaymentDialog::refresh);
        connect(&m_model, &AppModel::sheetChanged, this, [this] {
            if (m_model.sheet() != Sheet(m_sheet) && isVisible())
                accept();
        });
        connect(this, &QDialog::rejected, this, [this] {
            if (entries() != m_proposed)
                SheetMemory::of(m_model).keep(keptFor(), entries());
            if (m_model.sheet() == Sheet(m_sheet))
                m_model.closeSheet();
        });
        refresh();
    }

private:
    // Whose entries are kept.
    const Base::Uuid& keptFor() const { return m_sheet.paymentID ? *m_sheet.paymentID : m_sheet.invoiceID; }

    const Invoice* invoice() const { return m_model.invoice(m_sheet.invoiceID); }

    void makeFields()
    {
        const auto today = [this] { return m_model.moment().calendar.day(m_model.moment().now); };
        const auto* const document = invoice();
        const auto currency = document ? qt(document->currency) : QString();
        const auto home = document ? qt(document->homeCurrency) : QString();
        m_form = new FormLayout(this);
        m_day = new DateEdit(QLocale::system(), today, m_form);
        m_amount = new DecimalEdit(QLocale::system(), m_form);
        m_amount->setCurrency(currency);
        m_amount->setCheck([](const Base::Decimal& amount) {
            return amount <= Base::Decimal() ? QStringLiteral("A payment must be more than zero.")
                                             : QString();
        });
        m_received = new DecimalEdit(QLocale::system(), m_form);
        m_received->setCurrency(home);
        m_received->setOptional(true);
        m_received->setCheck([](const Base::Decimal& amount) {
            return amount.isNegative() ? QStringLiteral("What arrived can’t be below zero.") : QString();
        });
        m_rate = new DecimalEdit(QLocale::system(), m_form);
        m_rate->setOptional(true);
        m_rate->setCheck([](const Base::Decimal& rate) {
            return rate <= Base::Decimal() ? QStringLiteral("A rate must be more than zero.") : QString();
        });
        m_note = new TextField(m_form);
        m_day->setObjectName(QStringLiteral("paymentDay"));
        m_amount->setObjectName(QStringLiteral("paymentSum"));
        m_received->setObjectName(QStringLiteral("paymentReceived"));
        m_rate->setObjectName(QStringLiteral("paymentRate"));
        m_note->setObjectName(QStringLiteral("paymentNote"));
        m_hint = makeSentence({}, m_form, TextStyle::small, Ink::amber);
        m_hint->setObjectName(QStringLiteral("paymentHint"));
        m_kept = makeSentence({}, m_form, TextStyle::small, Ink::muted);
        m_kept->setObjectName(QStringLiteral("bankKept"));
        m_rateText = makeSentence({}, m_form, TextStyle::small, Ink::muted);
        m_rateText->setObjectName(QStringLiteral("paymentRateText"));
        m_form->addRow(QStringLiteral("Date"), m_day);
        m_form->addRow(QStringLiteral("Amount in %1").arg(currency), m_amount);
        m_form->addBelow(m_hint);
        m_form->addRow(QStringLiteral("Arrived in %1").arg(home), m_received);
        m_form->addBelow(m_kept);
        m_form->addRow(QStringLiteral("Exchange rate"), m_rate);
        m_form->addBelow(m_rateText);
        m_form->addRow(QStringLiteral("Note"), m_note, FormLayout::Width::stretching);
        const bool isForeign = currency != home;
        m_form->setRowVisible(m_rate, isForeign);
        m_rateText->setVisible(isForeign);
        m_received->setPlaceholderText(QStringLiteral("If known"));
        m_rate->setPlaceholderText(QStringLiteral("1 %1 in %2").arg(currency, home));
        content()->addWidget(m_form);
    }

    // What was typed last time, or the payment that is changed, or what is still due today.
    void fill()
    {
        const auto* const document = invoice();
        if (!document)
            return;
        const auto& calendar = m_model.services().calendar;
        KeptPayment entries { .day = calendar.day(m_model.moment().now),
            .amount = m_model.invoices().stillDue(*document) };
        if (m_sheet.paymentID) {
            for (const auto& payment : document->payments) {
                if (payment.id == *m_sheet.paymentID)
                    entries = { calendar.day(payment.date), payment.amount, payment.receivedHome,
                        ownRate(payment), qt(payment.note) };
            }
        }
        m_proposed = entries;
        if (const auto* const kept = SheetMemory::of(m_model).find<KeptPayment>(keptFor()))
            entries = *kept;
        m_day->setValue(entries.day);
        m_amount->setValue(entries.amount);
        m_received->setValue(entries.received);
        m_rate->setValue(entries.rate);
        m_note->setValue(entries.note);
    }

    // One from the rate book is looked up again for the day that is chosen.
    static std::optional<Base::Decimal> ownRate(const Payment& payment)
    {
        return payment.rate && std::holds_alternative<TypedByUser>(payment.rate->source)
            ? std::optional(payment.rate->rate)
            : std::nullopt;
    }

    KeptPayment entries() const
    {
        return { m_day->value(), m_amount->value(), m_received->value(), m_rate->value(), m_note->value() };
    }

    // What is due without the payment that is being changed.
    Base::Decimal stillDue(const Invoice& document) const
    {
        auto due = m_model.invoices().stillDue(document);
        for (const auto& payment : document.payments) {
            if (payment.id == m_sheet.paymentID)
                due += payment.amount;
        }
        return due;
    }

    void refresh()
    {
        const auto* const document = invoice();
        if (!document || !m_day->value())
            return;
        const auto& formats = m_model.formats();
        const auto day = m_model.services().calendar.noon(*m_day->value());
        const auto found = m_model.invoices().rateFor(*document, day);
        const bool isForeign = document->currency != document->homeCurrency;
        m_rateText->setText(m_rate->value() ? QStringLiteral("Typed in for this payment.")
                : found                     ? qt(m_model.invoices().rateText(*found))
                                            : QStringLiteral(
                                                "No exchange rate for this day yet. You can add one later from the invoice."));
        m_rateText->setVisible(isForeign);
        const auto rate = m_rate->value() ? m_rate->value()
            : found                       ? std::optional(found->rate)
                                          : std::nullopt;
        const auto amount = m_amount->value().value_or(Base::Decimal());
        const auto kept = InvoiceSection::bankKept(*document, amount, m_received->value(), rate);
        const auto home
            = [&](const Base::Decimal& sum) { return qt(formats.money(sum, document->homeCurrency)); };
        m_kept->setText(!kept || kept->isZero() ? QString()
                : kept->isNegative() ? QStringLiteral("%1 more arrived than the rate says.").arg(home(-*kept))
                                     : QStringLiteral("The bank kept %1.").arg(home(*kept)));
        m_kept->setVisible(!m_kept->text().isEmpty());
        const auto due = stillDue(*document);
        m_hint->setText(amount > due ? QStringLiteral("This is more than is still due (%1).")
                                           .arg(qt(formats.money(due, document->currency)))
                                     : QString());
        m_hint->setVisible(!m_hint->text().isEmpty());
        setSentence(QStringLiteral("%1, %2: %3 still due.")
                        .arg(qt(document->number.value_or("")), qt(document->client.name),
                            qt(formats.money(due, document->currency))));
    }

    QString record()
    {
        for (auto* field : { static_cast<LineField*>(m_day), static_cast<LineField*>(m_amount),
                 static_cast<LineField*>(m_received), static_cast<LineField*>(m_rate) }) {
            if (!field->problem().isEmpty())
                return field->problem();
        }
        if (!m_day->value())
            return QStringLiteral("Type the day that the money arrived.");
        const PaymentEntry entry { .date = m_model.services().calendar.noon(*m_day->value()),
            .amount = m_amount->value().value_or(Base::Decimal()),
            .receivedHome = m_received->value(),
            .rate = m_rate->value(),
            .note = plain(m_note->value()) };
        auto& invoices = m_model.invoices();
        const bool isDone = m_sheet.paymentID
            ? invoices.editPayment(m_sheet.invoiceID, *m_sheet.paymentID, entry)
            : invoices.recordPayment(m_sheet.invoiceID, entry);
        if (!isDone)
            return m_model.problem() ? qt(m_model.problem()->text)
                                     : QStringLiteral("The payment couldn’t be recorded.");
        SheetMemory::of(m_model).forget<KeptPayment>(keptFor());
        return {};
    }

    AppModel& m_model;
    PaymentSheet m_sheet;
    KeptPayment m_proposed; // Before anything was typed.
    FormLayout* m_form = nullptr;
    DateEdit* m_day = nullptr;
    DecimalEdit *m_amount = nullptr, *m_received = nullptr, *m_rate = nullptr;
    TextField* m_note = nullptr;
    Label *m_hint = nullptr, *m_kept = nullptr, *m_rateText = nullptr;
};

} // namespace

SheetDialog* makeSheet(AppModel& model, const PaymentSheet& sheet, QWidget* window)
{
    return new PaymentDialog(model, sheet, window);
}

} // namespace Pallisande
