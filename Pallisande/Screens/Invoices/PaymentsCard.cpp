#include "Pallisande/Screens/Invoices/PaymentsCard.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/Painting.h"

#include <QContextMenuEvent>
#include <QGridLayout>
#include <QMenu>
#include <QToolButton>

namespace Pallisande {

namespace {

// Received, rate and its source, note, what the bank kept: as far as they are known.
QString detailOf(AppModel& model, const Invoice& invoice, const Payment& payment)
{
    const auto& formats = model.formats();
    const auto home
        = [&](const Base::Decimal& amount) { return formats.money(amount, invoice.homeCurrency); };
    QStringList parts;
    if (payment.receivedHome)
        parts += QStringLiteral("received %1").arg(qt(home(*payment.receivedHome)));
    if (payment.rate && invoice.currency != invoice.homeCurrency)
        parts += qt(model.invoices().rateText(*payment.rate));
    const auto kept = InvoiceSection::bankKept(invoice, payment.amount, payment.receivedHome,
        payment.rate ? std::optional(payment.rate->rate) : std::nullopt);
    if (kept && !kept->isZero())
        parts += kept->isNegative() ? QStringLiteral("%1 more than the rate says").arg(qt(home(-*kept)))
                                    : QStringLiteral("bank kept %1").arg(qt(home(*kept)));
    if (!payment.note.empty())
        parts += qt(payment.note);
    return parts.join(QStringLiteral(" · "));
}

} // namespace

class PaymentsCard::Row : public QWidget {
public:
    Row(PaymentsCard& card, QWidget* parent)
        : QWidget(parent)
        , m_card(card)
        , m_day(new Label(this))
        , m_detail(makeSentence({}, this, TextStyle::small, Ink::muted))
        , m_amount(new Label(this))
        , m_acts(new QToolButton(this))
    {
        m_detail->setTextFormat(Qt::PlainText);
        m_amount->setObjectName(QStringLiteral("paymentAmount"));
        auto* menu = new QMenu(m_acts);
        m_edit = menu->addAction(QStringLiteral("Change Payment…"), this, [this] { change(); });
        m_remove = menu->addAction(QStringLiteral("Remove Payment"), this, [this] {
            if (m_card.m_id)
                m_card.m_model.invoices().removePayment(*m_card.m_id, m_payment);
        });
        menu->setToolTipsVisible(true);
        m_acts->setText(QStringLiteral("⋯"));
        m_acts->setObjectName(QStringLiteral("paymentActs"));
        m_acts->setFocusPolicy(Qt::TabFocus);
        m_acts->setPopupMode(QToolButton::InstantPopup);
        m_acts->setMenu(menu);
        auto* grid = new QGridLayout(this);
        grid->setContentsMargins(0, Space::tiny, 0, Space::small);
        grid->setHorizontalSpacing(Space::small);
        grid->setVerticalSpacing(0);
        grid->setColumnStretch(0, 1);
        grid->addWidget(m_day, 0, 0);
        grid->addWidget(m_amount, 0, 1, Qt::AlignRight);
        grid->addWidget(m_acts, 0, 2);
        grid->addWidget(m_detail, 1, 0, 1, 2);
    }

    void show(const Invoice& invoice, const Payment& payment)
    {
        auto& model = m_card.m_model;
        m_payment = payment.id;
        const auto day = qt(Formats::day(model.services().calendar.day(payment.date)));
        m_day->setText(day);
        m_amount->setText(qt(model.formats().amount(payment.amount, invoice.currency)));
        const auto detail = detailOf(model, invoice, payment);
        m_detail->setText(detail);
        m_detail->setVisible(!detail.isEmpty());
        m_acts->setAccessibleName(QStringLiteral("Payment of %1 on %2")
                                      .arg(qt(model.formats().money(payment.amount, invoice.currency)), day));
        m_acts->setToolTip(QStringLiteral("Change or remove this payment"));
        for (auto* action : { m_edit, m_remove }) {
            action->setEnabled(model.canEdit());
            action->setToolTip(qt(model.readOnlyText()));
        }
    }

protected:
    void contextMenuEvent(QContextMenuEvent* event) override { m_acts->menu()->popup(event->globalPos()); }
    void mouseDoubleClickEvent(QMouseEvent*) override
    {
        if (m_card.m_model.canEdit())
            change();
    }
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        drawLineBelow(painter, rect(), Theme::of(this).colours.border);
    }

private:
    void change()
    {
        if (m_card.m_id)
            m_card.m_model.openSheet(PaymentSheet { *m_card.m_id, m_payment });
    }

    PaymentsCard& m_card;
    Base::Uuid m_payment;
    Label *m_day, *m_detail, *m_amount;
    QToolButton* m_acts;
    QAction *m_edit, *m_remove;
};

PaymentsCard::PaymentsCard(AppModel& model, QWidget* parent)
    : Card(QStringLiteral("Payments"), parent)
    , m_model(model)
    , m_none(new Label(QStringLiteral("Nothing received yet."), this, TextStyle::body, Ink::muted))
    , m_list(new QWidget(this))
    , m_dueName(new Label(QStringLiteral("Still due"), this, TextStyle::bodyStrong))
    , m_due(new Label(this, TextStyle::bodyStrong))
{
    auto* list = new QVBoxLayout(m_list);
    list->setContentsMargins(0, 0, 0, 0);
    list->setSpacing(0);
    m_due->setObjectName(QStringLiteral("stillDue"));
    auto* due = new QHBoxLayout;
    due->addWidget(m_dueName, 1);
    due->addWidget(m_due);
    content()->addWidget(m_none);
    content()->addWidget(m_list);
    content()->addLayout(due);
}

void PaymentsCard::show(const Base::Uuid& id)
{
    m_id = id;
    refresh();
}

void PaymentsCard::refresh()
{
    const auto* const invoice = m_id ? m_model.invoice(*m_id) : nullptr;
    const bool isShown = invoice && invoice->isIssued() && invoice->kind == DocumentKind::invoice;
    setVisible(isShown);
    if (!isShown)
        return;
    const auto count = invoice->payments.size();
    while (m_rows.size() < count) {
        auto* row = new Row(*this, m_list);
        setTabOrder(m_rows.empty() ? static_cast<QWidget*>(m_none) : m_rows.back(), row);
        m_list->layout()->addWidget(row);
        m_rows.push_back(row);
    }
    for (std::size_t place = 0; place < m_rows.size(); ++place) {
        m_rows[place]->setVisible(place < count);
        if (place < count)
            m_rows[place]->show(*invoice, invoice->payments[place]);
    }
    m_none->setVisible(count == 0);
    m_list->setVisible(count > 0);
    const auto due = m_model.invoices().stillDue(*invoice);
    m_due->setText(qt(m_model.formats().money(due, invoice->currency)));
    for (QWidget* widget : { static_cast<QWidget*>(m_dueName), static_cast<QWidget*>(m_due) })
        widget->setVisible(!due.isZero() || count == 0);
}

} // namespace Pallisande
