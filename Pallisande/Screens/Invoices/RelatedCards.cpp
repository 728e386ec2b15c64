#include "Pallisande/Screens/Invoices/RelatedCards.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Label.h"

#include <QBoxLayout>

namespace Pallisande {

RateCard::RateCard(AppModel& model, QWidget* parent)
    : Card(QStringLiteral("Exchange rate"), parent)
    , m_model(model)
    , m_rate(makeSentence({}, this))
    , m_add(makeButton(QStringLiteral("Add Exchange Rate…"), ButtonKind::plain, this))
{
    m_rate->setObjectName(QStringLiteral("rateText"));
    m_add->setObjectName(QStringLiteral("addRate"));
    content()->addWidget(m_rate);
    content()->addWidget(m_add, 0, Qt::AlignLeft);
    connect(m_add, &QPushButton::clicked, this, [this] {
        if (m_id)
            m_model.invoices().addExchangeRate(*m_id);
    });
}

void RateCard::show(const Base::Uuid& id)
{
    m_id = id;
    refresh();
}

void RateCard::refresh()
{
    const auto* const invoice = m_id ? m_model.invoice(*m_id) : nullptr;
    const bool isShown = invoice && invoice->isIssued() && invoice->currency != invoice->homeCurrency;
    setVisible(isShown);
    if (!isShown)
        return;
    const bool isMissing = m_model.invoices().lacksRate(*invoice);
    m_rate->setText(isMissing
            ? QStringLiteral("No exchange rate for this day yet. You can add one later from the invoice.")
            : qt(m_model.invoices().rateText(*invoice->homeRate)));
    m_add->setVisible(isMissing);
    m_add->setEnabled(m_model.canEdit());
    m_add->setToolTip(qt(m_model.readOnlyText()));
}

CreditsCard::CreditsCard(AppModel& model, QWidget* parent)
    : Card(QStringLiteral("Credit notes"), parent)
    , m_model(model)
    , m_list(new QWidget(this))
    , m_left(makeSentence({}, this, TextStyle::body, Ink::muted))
{
    auto* list = new QVBoxLayout(m_list);
    list->setContentsMargins(0, 0, 0, 0);
    list->setSpacing(Space::tiny);
    m_left->setObjectName(QStringLiteral("leftToCredit"));
    content()->addWidget(m_list);
    content()->addWidget(m_left);
}

void CreditsCard::show(const Base::Uuid& id)
{
    m_id = id;
    refresh();
}

void CreditsCard::refresh()
{
    const auto* const invoice = m_id ? m_model.invoice(*m_id) : nullptr;
    m_documents.clear();
    if (!invoice)
        return hide();
    auto& invoices = m_model.invoices();
    const bool isNote = invoice->kind == DocumentKind::creditNote;
    if (!isNote)
        m_documents = invoices.creditNotes(invoice->id);
    else if (invoice->creditsInvoiceID && m_model.invoice(*invoice->creditsInvoiceID))
        m_documents = { *invoice->creditsInvoiceID };
    setVisible(!m_documents.empty());
    setHeading(isNote ? QStringLiteral("Corrects") : QStringLiteral("Credit notes"));

    while (m_links.size() < m_documents.size()) {
        const auto place = m_links.size();
        auto* whole = new QWidget(m_list);
        const Link link { whole, makeButton({}, ButtonKind::quiet, whole),
            makeSentence({}, whole, TextStyle::small, Ink::muted), new Label(whole) };
        link.number->setObjectName(QStringLiteral("documentLink"));
        link.state->setContentsMargins(Space::small, 0, 0, Space::tiny); // Below the text of the button.
        auto* line = new QHBoxLayout;
        line->addWidget(link.number);
        line->addStretch();
        line->addWidget(link.total);
        auto* box = new QVBoxLayout(whole);
        box->setContentsMargins(0, 0, 0, 0);
        box->setSpacing(0);
        box->addLayout(line);
        box->addWidget(link.state);
        m_list->layout()->addWidget(whole);
        setTabOrder(m_links.empty() ? static_cast<QWidget*>(m_left) : m_links.back().number, link.number);
        m_links.push_back(link);
        connect(link.number, &QPushButton::clicked, this, [this, place] {
            if (place < m_documents.size())
                m_model.show(AppSection::invoices, m_documents[place]);
        });
    }
    for (std::size_t place = 0; place < m_links.size(); ++place) {
        const auto& link = m_links[place];
        const bool isShown = place < m_documents.size();
        link.whole->setVisible(isShown);
        if (!isShown)
            continue;
        const auto& document = *m_model.invoice(m_documents[place]);
        link.number->setText(qt(document.number.value_or("Draft")) + QStringLiteral(" ›"));
        link.state->setText(qt(invoices.stateText(document)));
        link.total->setText(qt(m_model.formats().money(document.total(), document.currency)));
    }
    const bool isDraftNote = isNote && !invoice->isIssued() && !m_documents.empty();
    m_left->setVisible(isDraftNote);
    if (isDraftNote) {
        const auto& corrected = *m_model.invoice(m_documents.front());
        m_left->setText(
            QStringLiteral("%1 is left to credit.")
                .arg(qt(m_model.formats().money(invoices.leftToCredit(corrected), corrected.currency))));
    }
}

} // namespace Pallisande
