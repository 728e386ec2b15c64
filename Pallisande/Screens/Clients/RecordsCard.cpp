#include "Pallisande/Screens/Clients/RecordsCard.h"

#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Screens/Text.h"

namespace Pallisande {

RecordsCard::RecordsCard(AppModel& model, QWidget* parent)
    : ClientCard(model, QStringLiteral("Jobs and invoices"), parent)
    , m_outstanding(makeSentence({}, this, TextStyle::bodyStrong))
{
    m_outstanding->setObjectName(QStringLiteral("outstanding"));
    content()->addWidget(m_outstanding);
    add(m_jobs, QStringLiteral("Last jobs"), QStringLiteral("No jobs yet."));
    content()->addSpacing(Space::tiny);
    add(m_invoices, QStringLiteral("Last invoices"), QStringLiteral("No invoices yet."));
}

void RecordsCard::add(Links& links, const QString& heading, const QString& empty)
{
    links.heading = new Label(heading, this, TextStyle::tableHead, Ink::muted);
    links.empty = new Label(empty, this, TextStyle::body, Ink::muted);
    links.column = new QVBoxLayout;
    links.column->setContentsMargins(0, 0, 0, 0);
    links.column->setSpacing(0);
    content()->addWidget(links.heading);
    content()->addWidget(links.empty);
    content()->addLayout(links.column);
}

void RecordsCard::refresh(const Client& client)
{
    const auto& formats = model().formats();
    QStringList sums;
    for (const auto& [currency, sum] : model().clients().figures(client.id).outstanding)
        sums += qt(formats.money(sum, currency));
    m_outstanding->setText(QStringLiteral("Outstanding: %1").arg(sums.join(QStringLiteral(", "))));
    m_outstanding->setVisible(!sums.isEmpty());

    auto jobs = model().clients().recentJobs(client.id);
    std::vector<LinkRow::Content> contents;
    for (const auto& id : jobs) {
        const auto row = model().jobs().row(id);
        const auto* const job = model().job(id);
        const auto day = Formats::day(model().moment().calendar.day(job->received));
        const auto pair = job->pair.text();
        contents.push_back({ .title = qt(row.title),
            .detail = qt(pair.empty() ? day : pair + " · " + day),
            .figure = qt(row.price.empty() ? "–" : row.price),
            .chip = Chip::of(row.status),
            .spoken = qt(row.spoken) });
    }
    show(m_jobs, std::move(jobs), std::move(contents));

    auto invoices = model().clients().recentInvoices(client.id);
    contents.clear();
    for (const auto& id : invoices) {
        const auto row = model().invoices().row(id);
        const auto* const invoice = model().invoice(id);
        const auto day
            = Formats::day(model().moment().calendar.day(invoice->issueDate.value_or(invoice->created)));
        contents.push_back({ .title = qt(row.title),
            .detail = qt(day),
            .figure = qt(row.total),
            .chip = Chip::of(row.status),
            .spoken = qt(row.spoken) });
    }
    show(m_invoices, std::move(invoices), std::move(contents));
}

void RecordsCard::show(Links& links, std::vector<Base::Uuid> ids, std::vector<LinkRow::Content> contents)
{
    links.ids = std::move(ids);
    links.empty->setVisible(links.ids.empty());
    while (links.rows.size() < links.ids.size()) {
        auto* row = new LinkRow(this);
        connect(row, &LinkRow::clicked, this,
            [this, &links, at = links.rows.size()] { model().show(links.section, links.ids[at]); });
        links.rows.push_back(row);
        links.column->addWidget(row);
    }
    for (std::size_t at = 0; at < links.rows.size(); ++at) {
        links.rows[at]->setVisible(at < links.ids.size());
        if (at < links.ids.size())
            links.rows[at]->setContent(contents[at]);
    }
}

} // namespace Pallisande
