#pragma once

#include "Base/Uuid.h"
#include "Pallisande/Model/Sheet.h"

#include <QObject>
#include <QPointer>

#include <map>
#include <optional>
#include <vector>

class QAction;
class QMenu;

namespace Pallisande {

class AppModel;

// Everything that can be done from a menu. What acts on records acts on the selected ones of the section.
enum class Command {
    // File
    newJob,
    newClient,
    importAnalysis,
    typeCounts,
    countDocuments,
    savePDF,
    openStoredPDF,
    backUpNow,
    showLibraryFolder,
    closeWindow,
    quit,
    // Edit
    undo,
    redo,
    cut,
    copy,
    paste,
    remove,
    selectAll,
    find,
    copyRows,
    settings,
    // Job
    statusQuote,
    statusInProgress,
    statusDelivered,
    statusCancelled,
    statusInvoiced, // Never enabled: reached through invoices.
    statusPaid,
    markDelivered,
    addExtraLine,
    countTranslation,
    giveQuoteNumber,
    makeInvoice,
    duplicateJob,
    openClient,
    deleteJob,
    // Client
    archiveClient, // Or unarchives it; the text says which.
    deleteClient,
    // Invoice
    addInvoiceLine,
    issue,
    recordPayment,
    payInFull,
    makeCreditNote,
    addExchangeRate,
    showStoredPDF,
    saveDraftPDF,
    emailClient,
    copyNumber,
    copyTotal,
    copyReminder, // The text of a payment reminder.
    deleteDraft,
    checkNumbering,
    // View
    showDeadlines,
    showJobs,
    showClients,
    showInvoices,
    previousSection,
    nextSection,
    goBack,
    goForward,
    showArchived,
    sidebar,
    inspector, // Or preview.
    lightAppearance,
    darkAppearance,
    systemAppearance,
    largerText,
    smallerText,
    actualSize,
    fullScreen,
    // Window and help
    minimise,
    keyboardShortcuts,
    recentMessages,
    checkForUpdates,
    about,
};

// One action for each command, which menu bar, toolbar, buttons and context menus share: text, shortcut, what
// it does, and whether it can be done now. One that can't says why in its tooltip. Before anything is done,
// the field that has the focus is committed. Most are carried out here, by the model; the others are asked of
// the window and of the page in front: all of the menu View but the sections, find, selectAll and copyRows,
// addExtraLine and addInvoiceLine (the page gives the new row the focus), payInFull (it asks for the day),
// emailClient, copyReminder and checkNumbering; newClient when the client is there.
class Commands : public QObject {
    Q_OBJECT

public:
    using IDs = std::vector<Base::Uuid>;

    Commands(AppModel& model, QWidget* window);

    QAction* action(Command command) const { return m_actions.at(command); }
    const std::map<Command, QAction*>& actions() const { return m_actions; }
    // A menu of these; nothing between two groups stands for a line, statuses go into a menu of their own.
    void fill(QMenu& menu, const std::vector<std::optional<Command>>& commands) const;

    // What is selected in a list, in its order. The model knows the current record alone.
    void setSelected(AppSection section, IDs ids);
    IDs selected(AppSection section) const; // Without any, the model's current record.
    void refresh(); // Texts and whether they can be done.

signals:
    // For those that concern the widgets of the window or of the page in front.
    void asked(Pallisande::Command command);

private:
    void refreshEditing(); // What goes by the focus.
    void refreshTexts();
    void focusMoved(QWidget* now);
    std::optional<std::string> whyNotHere(Command command) const;
    void carryOut(Command command);
    bool editText(Command command); // In the field that has the focus.
    void editRecords(Command command);
    void editJobs(Command command, const IDs& ids);
    void editInvoices(Command command, const IDs& ids);

    AppModel& m_model;
    QWidget* m_window;
    QPointer<QWidget> m_focus; // Menus that open don't count.
    std::map<Command, QAction*> m_actions;
    std::map<AppSection, IDs> m_selected;
};

} // namespace Pallisande
