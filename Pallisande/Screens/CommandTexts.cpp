#include "Pallisande/Screens/CommandTexts.h"

namespace Pallisande {

namespace {

using enum Command;

} // namespace

const std::vector<CommandText>& commandTexts()
{
    static const std::vector<CommandText> texts {
        { newJob, "&New Job…", { "Ctrl+N" }, Icon::plus },
        { newClient, "New &Client", { "Ctrl+Shift+N" }, Icon::plus },
        { importAnalysis, "&Import CAT Analysis…", { "Ctrl+I" }, Icon::download },
        { typeCounts, "&Type Counts In…", { "Ctrl+Shift+I" }, Icon::pencil },
        { countDocuments, "Count &Documents…", { "Ctrl+O" }, Icon::sigma },
        { savePDF, "&Save PDF…", { "Ctrl+Shift+S" }, Icon::pdf },
        { openStoredPDF, "&Open Stored PDF", { "Ctrl+Shift+O" }, Icon::pdf },
        { backUpNow, "&Back Up Now", {}, Icon::archive },
        { showLibraryFolder, "Show &Library Folder", {}, Icon::folder },
        { closeWindow, "Close &Window", { "Ctrl+W" } },
        { quit, "&Quit", { "Ctrl+Q" }, {}, QAction::QuitRole },

        { undo, "&Undo", { "Ctrl+Z" }, Icon::undo },
        { redo, "&Redo", { "Ctrl+Shift+Z", "Ctrl+Y" }, Icon::redo },
        { cut, "Cu&t", { "Ctrl+X" } },
        { copy, "&Copy", { "Ctrl+C" }, Icon::copy },
        { paste, "&Paste", { "Ctrl+V" } },
        { remove, "&Delete", { "Del" }, Icon::trash },
        { selectAll, "Select &All", { "Ctrl+A" } },
        { find, "&Find", { "Ctrl+F" }, Icon::magnifier },
        { copyRows, "Copy Ro&ws as Text", { "Ctrl+Shift+C" } },
        { settings, "&Settings…", { "Ctrl+," }, Icon::gear, QAction::PreferencesRole },

        { statusQuote, "&Quote" },
        { statusInProgress, "&In progress" },
        { statusDelivered, "&Delivered" },
        { statusCancelled, "&Cancelled" },
        { statusInvoiced, "In&voiced" },
        { statusPaid, "&Paid" },
        { markDelivered, "&Mark Delivered", { "Ctrl+Shift+D" }, Icon::check },
        { addExtraLine, "Add &Extra Line", { "Ctrl+Shift+E" }, Icon::plus },
        { countTranslation, "Co&unt the Translation…", {}, Icon::sigma },
        { giveQuoteNumber, "Give &Quote Number" },
        { makeInvoice, "Make In&voice", { "Ctrl+Shift+M" }, Icon::invoice },
        { duplicateJob, "Du&plicate", { "Ctrl+D" }, Icon::copy },
        { openClient, "Open &Client", { "Ctrl+Shift+L" }, Icon::person },
        { deleteJob, "&Delete Job", {}, Icon::trash },

        { archiveClient, "&Archive Client", {}, Icon::archive },
        { deleteClient, "&Delete Client", {}, Icon::trash },

        { addInvoiceLine, "Add &Line", { "Ctrl+L" }, Icon::plus },
        { issue, "&Issue…", { "Ctrl+Return" }, Icon::check },
        { recordPayment, "&Record Payment…", { "Ctrl+R" }, Icon::coins },
        { payInFull, "Paid in &Full…", {}, Icon::coins },
        { makeCreditNote, "Make &Credit Note", { "Ctrl+Shift+K" }, Icon::returning },
        { addExchangeRate, "Add E&xchange Rate…", {}, Icon::twoArrows },
        { showStoredPDF, "S&how PDF in Folder", {}, Icon::folder },
        { saveDraftPDF, "Save Draft as &PDF…", {}, Icon::pdf },
        { emailClient, "&Email Client…", {}, Icon::mail },
        { copyNumber, "Copy &Number", {}, Icon::copy },
        { copyTotal, "Copy &Total", {}, Icon::copy },
        { copyReminder, "Copy Payment Re&minder", {}, Icon::copy },
        { deleteDraft, "&Delete Draft", {}, Icon::trash },
        { checkNumbering, "Check Num&bering" },

        { showDeadlines, "&Deadlines", { "Ctrl+1" }, Icon::clock },
        { showJobs, "&Jobs", { "Ctrl+2" }, Icon::list },
        { showClients, "&Clients", { "Ctrl+3" }, Icon::person },
        { showInvoices, "&Invoices", { "Ctrl+4" }, Icon::invoice },
        { previousSection, "&Previous Section", { "Ctrl+PgUp" } },
        { nextSection, "&Next Section", { "Ctrl+PgDown" } },
        { goBack, "&Back", { "Alt+Left", "Ctrl+[" }, Icon::chevronLeft },
        { goForward, "&Forward", { "Alt+Right", "Ctrl+]" }, Icon::chevronRight },
        { showArchived, "Show &Archived Clients" },
        { sidebar, "&Sidebar", { "F9" }, Icon::sidebar },
        { inspector, "Inspector or Pre&view", { "F8" }, Icon::inspector },
        { systemAppearance, "&System" },
        { lightAppearance, "&Light" },
        { darkAppearance, "&Dark" },
        { largerText, "Lar&ger Text", { "Ctrl++", "Ctrl+=" } },
        { smallerText, "S&maller Text", { "Ctrl+-" } },
        { actualSize, "Actual Si&ze", { "Ctrl+0" } },
        { fullScreen, "F&ull Screen", { "F11" } },

        { minimise, "&Minimise", {} },
        { keyboardShortcuts, "&Keyboard Shortcuts", { "Ctrl+/", "Ctrl+F1" } },
        { recentMessages, "&Recent Messages", {}, Icon::bell },
        { checkForUpdates, "Check for &Updates…", {}, {}, QAction::ApplicationSpecificRole },
        { about, "&About Pallisande", {}, {}, QAction::AboutRole },
    };
    return texts;
}

} // namespace Pallisande
