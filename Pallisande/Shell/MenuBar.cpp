#include "Pallisande/Shell/MenuBar.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Screens/Invoices/NewInvoiceMenu.h"

#include "Pallisande/Widgets/LineField.h"

#include <QActionGroup>
#include <QMenuBar>

namespace Pallisande {

namespace {

using enum Command;
using Items = std::vector<std::optional<Command>>;
constexpr auto line = std::nullopt;

// The orders of the list on show, in the order of their enumerations.
QStringList sortsOf(AppSection section)
{
    switch (section) {
    case AppSection::deadlines:
        return {};
    case AppSection::jobs:
        return { QStringLiteral("&Deadline"), QStringLiteral("&Title"), QStringLiteral("&Client"),
            QStringLiteral("&Received"), QStringLiteral("&Price") };
    case AppSection::clients:
        return { QStringLiteral("&Name"), QStringLiteral("&Open jobs"), QStringLiteral("&Last job"),
            QStringLiteral("O&utstanding") };
    case AppSection::invoices:
        return { QStringLiteral("&Newest"), QStringLiteral("&Client"), QStringLiteral("&Due"),
            QStringLiteral("&Amount"), QStringLiteral("&Status") };
    }
    return {};
}

int sortOf(AppModel& model)
{
    switch (model.section()) {
    case AppSection::clients:
        return static_cast<int>(model.clients().sort());
    case AppSection::invoices:
        return static_cast<int>(model.invoices().sort());
    default:
        return static_cast<int>(model.jobs().sort());
    }
}

void setSort(AppModel& model, int sort)
{
    switch (model.section()) {
    case AppSection::clients:
        return model.clients().setSort(ClientSort(sort));
    case AppSection::invoices:
        return model.invoices().setSort(InvoiceSort(sort));
    default:
        return model.jobs().setSort(JobSort(sort));
    }
}

void fillSorts(QMenu& menu, AppModel& model)
{
    menu.clear();
    int place = 0;
    for (const auto& name : sortsOf(model.section())) {
        auto* action = menu.addAction(name, &menu, [&model, place] {
            commitFocusedField();
            setSort(model, place);
        });
        action->setCheckable(true);
        action->setChecked(place++ == sortOf(model));
    }
    if (menu.isEmpty())
        menu.addAction(QStringLiteral("By deadline, in lanes"))->setEnabled(false);
}

QMenu* addMenu(QMenuBar& bar, const Commands& commands, const QString& title, const Items& items)
{
    auto* menu = bar.addMenu(title);
    commands.fill(*menu, items);
    return menu;
}

void addAbove(QMenu& menu, const Commands& commands, Command command, QMenu* submenu)
{
    menu.insertMenu(commands.action(command), submenu);
}

} // namespace

QMenu* makeNewInvoiceMenu(AppModel& model, QWidget* parent)
{
    auto* menu = new QMenu(QStringLiteral("New In&voice"), parent);
    menu->setObjectName(QStringLiteral("newInvoiceMenu"));
    menu->setToolTipsVisible(true);
    QObject::connect(menu, &QMenu::aboutToShow, menu, [menu, &model] { fillNewInvoiceMenu(menu, model); });
    return menu;
}

void fillMenuBar(QMenuBar& bar, AppModel& model, Commands& commands)
{
    auto* file = addMenu(bar, commands, QStringLiteral("&File"),
        { newJob, newClient, line, importAnalysis, typeCounts, countDocuments, line, savePDF, openStoredPDF,
            line, backUpNow, showLibraryFolder, line, closeWindow, quit });
    file->insertMenu(file->actions().at(2), makeNewInvoiceMenu(model, file));

    addMenu(bar, commands, QStringLiteral("&Edit"),
        { undo, redo, line, cut, copy, paste, remove, selectAll, line, find, copyRows, line, settings });

    addMenu(bar, commands, QStringLiteral("&Job"),
        { statusQuote, statusInProgress, statusDelivered, statusInvoiced, statusPaid, statusCancelled,
            markDelivered, line, importAnalysis, typeCounts, countTranslation, addExtraLine, line,
            giveQuoteNumber, makeInvoice, line, duplicateJob, openClient, deleteJob });

    addMenu(bar, commands, QStringLiteral("&Client"), { newClient, line, archiveClient, deleteClient });

    auto* invoice = addMenu(bar, commands, QStringLiteral("&Invoice"),
        { addInvoiceLine, issue, recordPayment, payInFull, makeCreditNote, addExchangeRate, line,
            openStoredPDF, showStoredPDF, saveDraftPDF, line, emailClient, copyNumber, copyTotal,
            copyReminder, line, deleteDraft, line, checkNumbering });
    addAbove(*invoice, commands, addInvoiceLine, makeNewInvoiceMenu(model, invoice));

    auto* view = addMenu(bar, commands, QStringLiteral("&View"),
        { showDeadlines, showJobs, showClients, showInvoices, previousSection, nextSection, goBack, goForward,
            line, showArchived, line, sidebar, inspector, line, largerText, smallerText, actualSize, line,
            fullScreen });
    auto* sorts = new QMenu(QStringLiteral("S&ort By"), view);
    QObject::connect(sorts, &QMenu::aboutToShow, sorts, [sorts, &model] { fillSorts(*sorts, model); });
    addAbove(*view, commands, showArchived, sorts);
    auto* appearance = new QMenu(QStringLiteral("Appea&rance"), view);
    commands.fill(*appearance, { systemAppearance, lightAppearance, darkAppearance });
    addAbove(*view, commands, largerText, appearance);

    addMenu(bar, commands, QStringLiteral("&Window"), { minimise });
    addMenu(bar, commands, QStringLiteral("&Help"),
        { keyboardShortcuts, recentMessages, line, checkForUpdates, about });
}

} // namespace Pallisande
