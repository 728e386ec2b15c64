#include "Pallisande/Settings/InvoiceSettings.h"

#include "Pallisande/Settings/SeriesForm.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/NumberEdit.h"

namespace Pallisande {

namespace {

constexpr std::int64_t mostValidDays = 3650;

} // namespace

InvoiceSettings::InvoiceSettings(AppModel& model, QWidget* parent)
    : SettingsPage(model, parent)
    , m_validDays(new CountEdit(QLocale::system()))
{
    auto* defaults = addCard(QStringLiteral("Defaults printed on invoices"));
    auto* form = new FormLayout(defaults);
    defaults->content()->addWidget(form);
    addArea(
        *form, QStringLiteral("Payment terms"),
        [](Profile & profile) -> auto& { return profile.defaultPaymentTerms; })
        ->setObjectName(QStringLiteral("paymentTerms"));
    addArea(
        *form, QStringLiteral("Bank details"),
        [](Profile & profile) -> auto& { return profile.bankDetails; });
    auto* valid = new QWidget(form);
    auto* box = new QHBoxLayout(valid);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(Space::small);
    m_validDays->setWidthInCharacters(5);
    m_validDays->setRange(0, mostValidDays);
    m_validDays->setObjectName(QStringLiteral("quoteValidDays"));
    m_validDays->setAccessibleDescription(QStringLiteral("Days"));
    box->addWidget(m_validDays);
    box->addWidget(new Label(QStringLiteral("days"), valid, TextStyle::body, Ink::muted));
    form->addRow(QStringLiteral("Quotes valid for"), valid);
    connect(m_validDays, &LineField::committed, this, [this] {
        edit(m_validDays, [&](Profile& profile) { profile.quoteValidDays = *m_validDays->count(); });
    });

    auto* numbers = addCard(QStringLiteral("Numbers"),
        QStringLiteral(
            "Moving from another tool? Set the first number before you issue in Pallisande. After that the "
            "series only counts up, so there are no gaps."));
    for (const auto which :
        { Ledger::Series::invoices, Ledger::Series::creditNotes, Ledger::Series::quotes }) {
        numbers->content()->addSpacing(Space::small);
        auto* series = new SeriesForm(
            model, which, [this](const QWidget* field, const auto& change) { return edit(field, change); },
            numbers);
        numbers->content()->addWidget(series);
        m_series.push_back(series);
    }
    numbers->content()->addSpacing(Space::small);
    numbers->content()->addWidget(makeSentence(
        QStringLiteral(
            "Pallisande makes PDF invoices, not structured e-invoices (XRechnung, ZUGFeRD, Factur-X), and "
            "applies only the tax percentage you type."),
        numbers, TextStyle::small, Ink::muted));
    refresh();
}

void InvoiceSettings::show(const Profile& profile)
{
    m_validDays->setCount(profile.quoteValidDays);
    for (auto* series : m_series)
        series->show(profile);
}

} // namespace Pallisande
