#include "Pallisande/Screens/Invoices/NewInvoiceMenu.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Model/SearchKey.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/LineField.h"

#include <QMenu>

#include <algorithm>

namespace Pallisande {

namespace {

// Names are shown as they are: an ampersand in one is no mnemonic.
QString itemText(std::string_view text) { return qt(text).replace(QLatin1Char('&'), QStringLiteral("&&")); }

} // namespace

void fillNewInvoiceMenu(QMenu* menu, AppModel& model)
{
    menu->clear();
    qDeleteAll(menu->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly));
    const auto offers = model.invoices().offers();
    for (const auto& offer : offers) {
        auto* item = menu->addAction(itemText(offer.text));
        item->setEnabled(model.canEdit());
        QObject::connect(item, &QAction::triggered, menu, [&model, jobs = offer.jobs] {
            commitFocusedField();
            model.invoices().makeDraft(jobs);
        });
    }
    if (offers.empty())
        menu->addAction(QStringLiteral("No delivered jobs are waiting"))->setEnabled(false);
    menu->addSeparator();
    auto* blank = new QMenu(QStringLiteral("Blank Draft"), menu);
    menu->addMenu(blank);
    std::vector<std::pair<std::string, const Client*>> clients;
    for (const auto& client : model.library().clients) {
        if (!client.archived)
            clients.emplace_back(sortKey(client.name), &client);
    }
    std::sort(clients.begin(), clients.end());
    for (const auto& [key, client] : clients) {
        auto* item = blank->addAction(itemText(client->name));
        QObject::connect(item, &QAction::triggered, menu, [&model, id = client->id] {
            commitFocusedField();
            model.invoices().makeBlankDraft(id);
        });
    }
    blank->setEnabled(!clients.empty() && model.canEdit());
}

void prepareNewInvoiceMenu(QMenu* menu, AppModel& model)
{
    menu->setToolTipsVisible(true);
    QObject::connect(menu, &QMenu::aboutToShow, menu, [menu, &model] { fillNewInvoiceMenu(menu, model); });
    fillNewInvoiceMenu(menu, model); // A menu bar hides menus that are empty.
}

} // namespace Pallisande
