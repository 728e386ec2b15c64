#include "Pallisande/Screens/Clients/RatesCard.h"

#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Screens/Clients/PairRates.h"
#include "Pallisande/Screens/Clients/PriceStrip.h"
#include "Pallisande/Screens/CurrencyChoices.h"
#include "Pallisande/Widgets/NumberEdit.h"

namespace Pallisande {

namespace {

void restoreRates(Client& client, const Client& before)
{
    client.currency = before.currency;
    client.unit = before.unit;
    client.basis = before.basis;
    client.defaultRate = before.defaultRate;
    client.minimumFee = before.minimumFee;
    client.rates = before.rates;
}

} // namespace

RatesCard::RatesCard(AppModel& model, QWidget* parent)
    : ClientCard(model, QStringLiteral("Rates"), parent)
    , m_currency(new CodeBox(currencyChoices()))
    , m_unit(new ComboBox)
    , m_basis(new ComboBox)
    , m_rate(new DecimalEdit(QLocale::system()))
    , m_minimum(new DecimalEdit(QLocale::system()))
    , m_drafts(makeSentence({}, this, TextStyle::small, Ink::muted))
    , m_per(new Label(this, TextStyle::body, Ink::muted))
{
    m_strip = new PriceStrip(model, restoreRates, this);
    auto* form = new FormLayout(this);
    content()->addWidget(m_strip);
    content()->addWidget(form);
    m_currency->setObjectName(QStringLiteral("clientCurrency"));
    form->addRow(QStringLiteral("Currency"), m_currency);
    m_unit->addItems({ QStringLiteral("Word"), QStringLiteral("Character") });
    m_unit->setObjectName(QStringLiteral("clientUnit"));
    form->addRow(QStringLiteral("Rate per"), m_unit);
    m_basis->addItems({ {}, {} });
    m_basis->setObjectName(QStringLiteral("clientBasis"));
    form->addRow(QStringLiteral("Count"), m_basis);
    auto* rate = new QWidget(form);
    auto* line = new QHBoxLayout(rate);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(Space::small);
    line->addWidget(m_rate);
    line->addWidget(m_per);
    m_rate->setObjectName(QStringLiteral("clientRate"));
    m_rate->setPlaces(2);
    m_rate->setCheck([](const Base::Decimal& value) {
        return value.isNegative() ? QStringLiteral("A rate can’t be below zero.") : QString();
    });
    form->addRow(QStringLiteral("Rate"), rate);
    m_minimum->setObjectName(QStringLiteral("clientMinimum"));
    m_minimum->setCheck([](const Base::Decimal& value) {
        return value.isNegative() ? QStringLiteral("A minimum fee can’t be below zero.") : QString();
    });
    form->addRow(QStringLiteral("Minimum fee"), m_minimum);
    m_pairs = new PairRates(
        model,
        [this](const QWidget* field, const std::string& step, const auto& change) {
            return edit(field, step, change);
        },
        this);
    content()->addWidget(m_drafts);
    content()->addSpacing(Space::small);
    content()->addWidget(m_pairs);

    connect(m_currency, &CodeBox::chosen, this, [this](const QString& code) {
        edit(nullptr, "Change Currency", [&](Client& client) { client.currency = plain(code); });
    });
    connect(m_unit, &QComboBox::activated, this, [this](int row) {
        edit(nullptr, "Change Unit",
            [&](Client& client) { client.unit = row == 0 ? RateUnit::word : RateUnit::character; });
    });
    connect(m_basis, &QComboBox::activated, this, [this](int row) {
        edit(nullptr, "Change Count",
            [&](Client& client) { client.basis = row == 0 ? WordBasis::source : WordBasis::target; });
    });
    connect(m_rate, &LineField::committed, this, [this] {
        edit(m_rate, "Change Rate", [&](Client& client) { client.defaultRate = *m_rate->value(); });
    });
    connect(m_minimum, &LineField::committed, this, [this] {
        edit(m_minimum, "Change Minimum Fee",
            [&](Client& client) { client.minimumFee = *m_minimum->value(); });
    });
}

void RatesCard::refresh(const Client& client)
{
    const bool isByWord = client.unit == RateUnit::word;
    const auto currency = qt(client.currency);
    m_currency->setCode(currency);
    m_unit->setCurrentIndex(isByWord ? 0 : 1);
    m_basis->setItemText(0, isByWord ? QStringLiteral("Source words") : QStringLiteral("Source characters"));
    m_basis->setItemText(1, isByWord ? QStringLiteral("Target words") : QStringLiteral("Target characters"));
    m_basis->setCurrentIndex(client.basis == WordBasis::source ? 0 : 1);
    m_rate->setUnit(currency);
    m_rate->setValue(client.defaultRate);
    m_per->setText(isByWord ? QStringLiteral("%1 per word").arg(currency)
                            : QStringLiteral("%1 per character").arg(currency));
    m_rate->setAccessibleDescription(m_per->text());
    m_minimum->setCurrency(currency);
    m_minimum->setValue(client.minimumFee);
    QStringList drafts;
    for (const auto& [code, count] : model().clients().otherDraftCurrencies(client.id))
        drafts += count == 1 ? QStringLiteral("1 draft stays in %1.").arg(qt(code))
                             : QStringLiteral("%1 drafts stay in %2.").arg(count).arg(qt(code));
    m_drafts->setText(drafts.join(QLatin1Char(' ')));
    m_drafts->setVisible(!drafts.isEmpty());
    m_pairs->show(client);
    m_strip->show(client);
}

} // namespace Pallisande
