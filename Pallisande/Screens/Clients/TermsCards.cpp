#include "Pallisande/Screens/Clients/TermsCards.h"

#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/NumberEdit.h"

namespace Pallisande {

namespace {

constexpr std::int64_t mostDaysToPay = 3650;

} // namespace

TaxCard::TaxCard(AppModel& model, QWidget* parent)
    : ClientCard(model, QStringLiteral("Tax and payment"), parent)
    , m_percent(new DecimalEdit(QLocale::system()))
    , m_days(new CountEdit(QLocale::system()))
{
    auto* form = new FormLayout(this);
    content()->addWidget(form);
    m_percent->setUnit(QStringLiteral("%"));
    m_percent->setObjectName(QStringLiteral("taxPercent"));
    m_percent->setCheck([](const Base::Decimal& percent) {
        return percent.isNegative() ? QStringLiteral("A tax can’t be below zero.") : QString();
    });
    form->addRow(QStringLiteral("Tax %"), m_percent);
    addText(*form, QStringLiteral("Tax name"), "Change Tax Name", &Client::taxLabel)
        ->setPlaceholderText(QStringLiteral("For example: VAT"));
    addArea(*form, QStringLiteral("Tax note"), "Change Tax Note", &Client::taxNote)
        ->setPlaceholderText(
            QStringLiteral("For example: Reverse charge, VAT to be accounted for by the recipient."));
    m_days->setRange(0, mostDaysToPay);
    m_days->setObjectName(QStringLiteral("paymentDays"));
    form->addRow(QStringLiteral("Days to pay"), m_days);
    m_terms = addArea(*form, QStringLiteral("Payment terms"), "Change Payment Terms", &Client::paymentTerms);
    content()->addSpacing(Space::tiny);
    content()->addWidget(makeSentence(
        QStringLiteral(
            "Pallisande makes PDF invoices, not structured e-invoices (XRechnung, ZUGFeRD, Factur-X), and "
            "applies only the tax percentage you type."),
        this, TextStyle::small, Ink::muted));

    connect(m_percent, &LineField::committed, this, [this] {
        edit(m_percent, "Change Tax", [&](Client& client) { client.taxPercent = *m_percent->value(); });
    });
    connect(m_days, &LineField::committed, this, [this] {
        edit(m_days, "Change Days to Pay", [&](Client& client) { client.paymentDays = *m_days->count(); });
    });
}

void TaxCard::refresh(const Client& client)
{
    m_percent->setValue(client.taxPercent);
    m_days->setCount(client.paymentDays);
    m_terms->setPlaceholderText(qt(model().library().profile.defaultPaymentTerms));
}

NotesCard::NotesCard(AppModel& model, QWidget* parent)
    : ClientCard(model, QStringLiteral("Notes"), parent)
{
    auto* notes = new TextArea(this);
    notes->setAccessibleName(QStringLiteral("Notes"));
    notes->setPlaceholderText(QStringLiteral("For you alone: nothing here is printed."));
    content()->addWidget(notes);
    bind(notes, "Change Notes", &Client::notes);
}

} // namespace Pallisande
