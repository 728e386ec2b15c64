#include "Pallisande/Screens/Commands.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Model/DocumentCounts.h"
#include "Pallisande/Model/Imports.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Screens/CommandRules.h"
#include "Pallisande/Screens/CommandTexts.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/LineField.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>

#include <algorithm>

namespace Pallisande {

namespace {

bool isStatus(Command command) { return command >= Command::statusQuote && command <= Command::statusPaid; }

std::optional<JobStatus> statusOf(Command command)
{
    switch (command) {
    case Command::statusQuote:
        return JobStatus::quote;
    case Command::statusInProgress:
        return JobStatus::inProgress;
    case Command::statusDelivered:
    case Command::markDelivered:
        return JobStatus::delivered;
    case Command::statusCancelled:
        return JobStatus::cancelled;
    case Command::statusInvoiced:
        return JobStatus::invoiced;
    case Command::statusPaid:
        return JobStatus::paid;
    default:
        return std::nullopt;
    }
}

// Those that read what a field holds: one that makes no sense is put right first.
bool needsFields(Command command)
{
    return (command >= Command::statusQuote && command <= Command::deleteDraft) || command == Command::savePDF
        || command == Command::importAnalysis || command == Command::typeCounts;
}

bool isOfText(Command command)
{
    switch (command) {
    case Command::undo:
    case Command::redo:
    case Command::cut:
    case Command::copy:
    case Command::paste:
    case Command::remove:
    case Command::selectAll:
        return true;
    default:
        return false;
    }
}

} // namespace

Commands::Commands(AppModel& model, QWidget* window)
    : QObject(window)
    , m_model(model)
    , m_window(window)
{
    for (const auto& [command, text, keys, icon, role] : commandTexts()) {
        auto* action = new QAction(QString::fromUtf8(text), this);
        QList<QKeySequence> sequences;
        for (const auto* key : keys)
            sequences += QKeySequence(QLatin1String(key), QKeySequence::PortableText);
        action->setShortcuts(sequences);
        if (icon)
            action->setIcon(themedIcon(*icon));
        action->setMenuRole(role);
        connect(action, &QAction::triggered, this, [this, command = command] { carryOut(command); });
        window->addAction(action);
        m_actions[command] = action;
    }
    for (const auto command : { Command::statusQuote, Command::statusInProgress, Command::statusDelivered,
             Command::statusCancelled, Command::statusInvoiced, Command::statusPaid, Command::showDeadlines,
             Command::showJobs, Command::showClients, Command::showInvoices, Command::showArchived,
             Command::sidebar, Command::inspector, Command::systemAppearance, Command::lightAppearance,
             Command::darkAppearance, Command::fullScreen })
        m_actions[command]->setCheckable(true);

    connect(&model, &AppModel::stateChanged, this, &Commands::refresh);
    connect(&model, &AppModel::libraryChanged, this, &Commands::refresh);
    connect(&model, &AppModel::listChanged, this, &Commands::refresh);
    connect(&model, &AppModel::sectionChanged, this, &Commands::refresh);
    connect(&model, &AppModel::selectionChanged, this, &Commands::refresh);
    connect(&model, &AppModel::historyChanged, this, &Commands::refresh);
    connect(&model, &AppModel::undoChanged, this, &Commands::refresh);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { focusMoved(now); });
    connect(qApp->clipboard(), &QClipboard::dataChanged, this, &Commands::refreshEditing);
    refresh();
}

void Commands::fill(QMenu& menu, const std::vector<std::optional<Command>>& commands) const
{
    menu.setToolTipsVisible(true); // Why something can't be done.
    QMenu* statuses = nullptr;
    for (const auto& command : commands) {
        if (!command) {
            menu.addSeparator();
        } else if (isStatus(*command)) {
            if (!statuses) {
                statuses = menu.addMenu(QStringLiteral("Set &Status"));
                statuses->setToolTipsVisible(true);
            }
            statuses->addAction(action(*command));
        } else {
            menu.addAction(action(*command));
        }
    }
}

void Commands::setSelected(AppSection section, IDs ids)
{
    auto& selected = m_selected[section];
    if (selected == ids)
        return;
    selected = std::move(ids);
    refresh();
}

Commands::IDs Commands::selected(AppSection section) const
{
    const auto found = m_selected.find(section);
    const bool isBoard = section == AppSection::deadlines; // Shows but some of the jobs.
    if (found != m_selected.end() && (isBoard || !found->second.empty()))
        return found->second;
    const auto current = m_model.selection(section);
    return current ? IDs { *current } : IDs();
}

// --- Whether they can be done

void Commands::focusMoved(QWidget* now)
{
    const bool isMenu = qobject_cast<QMenuBar*>(now) || qobject_cast<QMenu*>(now);
    if (isMenu || (now && now->window() != m_window))
        return;
    if (m_focus)
        disconnect(m_focus, nullptr, this, nullptr);
    m_focus = now;
    if (auto* line = qobject_cast<QLineEdit*>(now)) {
        connect(line, &QLineEdit::selectionChanged, this, &Commands::refreshEditing);
        connect(line, &QLineEdit::textChanged, this, &Commands::refreshEditing);
    } else if (auto* text = qobject_cast<QPlainTextEdit*>(now)) {
        connect(text, &QPlainTextEdit::selectionChanged, this, &Commands::refreshEditing);
        connect(text, &QPlainTextEdit::textChanged, this, &Commands::refreshEditing);
    }
    refreshEditing();
}

// Text fields come before the library.
std::optional<std::string> Commands::whyNotHere(Command command) const
{
    const auto* const line = qobject_cast<QLineEdit*>(m_focus);
    const auto* const text = qobject_cast<QPlainTextEdit*>(m_focus);
    const bool isList = qobject_cast<QAbstractItemView*>(m_focus);
    const bool canType = (line && !line->isReadOnly()) || (text && !text->isReadOnly());
    const bool hasSelection
        = (line && line->hasSelectedText()) || (text && text->textCursor().hasSelection());
    switch (command) {
    case Command::undo:
        if ((line && line->isUndoAvailable()) || (text && text->document()->isUndoAvailable()))
            return std::nullopt;
        break;
    case Command::redo:
        if ((line && line->isRedoAvailable()) || (text && text->document()->isRedoAvailable()))
            return std::nullopt;
        break;
    case Command::cut:
        return canType && hasSelection ? std::nullopt : std::optional<std::string>("Select some text first.");
    case Command::copy:
        if (hasSelection || (isList && !selected(m_model.section()).empty()))
            return std::nullopt;
        return "Select some text first.";
    case Command::paste:
        return canType ? std::nullopt : std::optional<std::string>("Put the caret into a field first.");
    case Command::selectAll:
        return line || text || isList ? std::nullopt
                                      : std::optional<std::string>("There is nothing to select here.");
    case Command::remove:
        if (line || text)
            return canType && hasSelection ? std::nullopt
                                           : std::optional<std::string>("Select some text first.");
        if (isList && m_focus->objectName() != QLatin1String("records"))
            return std::nullopt; // A table, which knows itself.
        if (!isList)
            return "Select a row in a list first.";
        break;
    default:
        break;
    }
    return whyNot(m_model, command, selected(m_model.section()));
}

void Commands::refresh()
{
    const auto ids = selected(m_model.section());
    refreshTexts();
    for (const auto& [command, action] : m_actions) {
        const auto why = isOfText(command) ? whyNotHere(command) : whyNot(m_model, command, ids);
        auto name = action->text();
        name.remove(QLatin1Char('&'));
        const auto keys = action->shortcut().toString(QKeySequence::NativeText);
        const auto tip = why ? qt(*why) : keys.isEmpty() ? name : QStringLiteral("%1 (%2)").arg(name, keys);
        action->setEnabled(!why);
        action->setToolTip(tip);
        action->setStatusTip(tip);
    }
}

void Commands::refreshEditing()
{
    for (const auto& [command, action] : m_actions) {
        if (isOfText(command))
            action->setEnabled(!whyNotHere(command));
    }
}

void Commands::refreshTexts()
{
    const auto ids = selected(m_model.section());
    action(Command::undo)->setText(QStringLiteral("&") + qt(m_model.undoText()));
    action(Command::redo)->setText(QStringLiteral("&") + qt(m_model.redoText()));
    const auto* const client
        = m_model.section() == AppSection::clients && !ids.empty() ? m_model.client(ids.front()) : nullptr;
    action(Command::archiveClient)
        ->setText(client && client->archived ? QStringLiteral("Un&archive Client")
                                             : QStringLiteral("&Archive Client"));
    const bool showsJobs
        = m_model.section() == AppSection::jobs || m_model.section() == AppSection::deadlines;
    const auto* const job = showsJobs && ids.size() == 1 ? m_model.job(ids.front()) : nullptr;
    const std::pair<Command, AppSection> sections[] {
        { Command::showDeadlines, AppSection::deadlines },
        { Command::showJobs, AppSection::jobs },
        { Command::showClients, AppSection::clients },
        { Command::showInvoices, AppSection::invoices },
    };
    for (const auto& [command, section] : sections)
        action(command)->setChecked(m_model.section() == section);
    for (const auto& [command, shown] : m_actions) {
        if (isStatus(command))
            shown->setChecked(job && job->status == statusOf(command));
    }
    action(Command::showArchived)->setChecked(m_model.clients().showsArchived());
}

// --- Carrying them out

bool Commands::editText(Command command)
{
    auto* line = qobject_cast<QLineEdit*>(m_focus);
    auto* text = qobject_cast<QPlainTextEdit*>(m_focus);
    if (!line && !text)
        return false;
    switch (command) {
    case Command::undo:
        if (line ? !line->isUndoAvailable() : !text->document()->isUndoAvailable())
            return false;
        line ? line->undo() : text->undo();
        return true;
    case Command::redo:
        if (line ? !line->isRedoAvailable() : !text->document()->isRedoAvailable())
            return false;
        line ? line->redo() : text->redo();
        return true;
    case Command::cut:
        line ? line->cut() : text->cut();
        return true;
    case Command::copy:
        line ? line->copy() : text->copy();
        return true;
    case Command::paste:
        line ? line->paste() : text->paste();
        return true;
    case Command::remove:
        line ? line->del() : text->textCursor().removeSelectedText();
        return true;
    case Command::selectAll:
        line ? line->selectAll() : text->selectAll();
        return true;
    default:
        return false;
    }
}

void Commands::carryOut(Command command)
{
    if (isOfText(command) && editText(command))
        return;
    auto* table = qobject_cast<QAbstractItemView*>(m_focus);
    if (command == Command::remove && table && table->objectName() != QLatin1String("records")) {
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
        QApplication::sendEvent(table, &key);
        return;
    }
    if (!commitFocusedField(m_window) && needsFields(command))
        return; // What is wrong stands under the field.
    refresh(); // The commit may have changed what can be done.
    if (whyNotHere(command))
        return;
    editRecords(command);
    refresh(); // A checkable action has turned itself.
}

void Commands::editRecords(Command command)
{
    const auto ids = selected(m_model.section());
    switch (command) {
    case Command::newJob:
        return m_model.jobs().openNewJob();
    case Command::newClient:
        if (m_model.clients().add())
            emit asked(command);
        return;
    case Command::countDocuments:
        return m_model.counts().choose(DocumentCounts::Purpose::newJob);
    case Command::backUpNow:
        return m_model.backUpNow();
    case Command::showLibraryFolder:
        return m_model.showLibraryFolder();
    case Command::undo:
        return m_model.undo();
    case Command::redo:
        return m_model.redo();
    case Command::copy:
        emit asked(Command::copyRows);
        return;
    case Command::remove:
        return editRecords(deletionIn(m_model.section()));
    case Command::archiveClient:
        m_model.clients().setArchived(ids.front(), !m_model.client(ids.front())->archived);
        return;
    case Command::deleteClient:
        m_model.clients().remove(ids.front());
        return;
    case Command::showDeadlines:
        return m_model.setSection(AppSection::deadlines);
    case Command::showJobs:
        return m_model.setSection(AppSection::jobs);
    case Command::showClients:
        return m_model.setSection(AppSection::clients);
    case Command::showInvoices:
        return m_model.setSection(AppSection::invoices);
    case Command::previousSection:
    case Command::nextSection: {
        const int step = command == Command::nextSection ? 1 : 3;
        return m_model.setSection(AppSection((static_cast<int>(m_model.section()) + step) % 4));
    }
    case Command::goBack:
        return m_model.goBack();
    case Command::goForward:
        return m_model.goForward();
    case Command::showArchived:
        return m_model.clients().setShowsArchived(!m_model.clients().showsArchived());
    case Command::openClient: {
        const bool isInvoice = m_model.section() == AppSection::invoices;
        return m_model.show(AppSection::clients,
            isInvoice ? m_model.invoice(ids.front())->clientID : m_model.job(ids.front())->clientID);
    }
    case Command::checkNumbering:
        m_model.setSection(AppSection::invoices);
        emit asked(command);
        return;
    default:
        if (command >= Command::addInvoiceLine && command <= Command::deleteDraft)
            return editInvoices(command, ids);
        if (command == Command::savePDF || command == Command::openStoredPDF)
            return editInvoices(command, ids);
        return editJobs(command, ids);
    }
}

void Commands::editJobs(Command command, const IDs& ids)
{
    auto& jobs = m_model.jobs();
    if (const auto status = statusOf(command)) {
        jobs.setStatus(ids, *status);
        return;
    }
    switch (command) {
    case Command::importAnalysis:
        return m_model.imports().choose(ids.front());
    case Command::typeCounts:
        m_model.openSheet(ManualSheet { ids.front(), std::nullopt });
        return;
    case Command::countTranslation:
        return m_model.counts().choose(DocumentCounts::Purpose::target, ids.front());
    case Command::giveQuoteNumber:
        jobs.giveQuoteNumber(ids.front());
        return;
    case Command::makeInvoice:
        jobs.makeInvoice(ids);
        return;
    case Command::duplicateJob:
        jobs.duplicate(ids.front());
        return;
    case Command::deleteJob:
        jobs.remove(ids);
        return;
    case Command::addExtraLine:
        m_model.show(AppSection::jobs, ids.front()); // Where lines are written.
        emit asked(command);
        return;
    default:
        emit asked(command);
    }
}

void Commands::editInvoices(Command command, const IDs& ids)
{
    auto& invoices = m_model.invoices();
    const auto& id = ids.front();
    switch (command) {
    case Command::issue:
        return invoices.openIssueSheet(id);
    case Command::recordPayment:
        m_model.openSheet(PaymentSheet { id, std::nullopt });
        return;
    case Command::makeCreditNote:
        invoices.makeCreditNote(id);
        return;
    case Command::addExchangeRate:
        invoices.addExchangeRate(id);
        return;
    case Command::openStoredPDF:
        return invoices.openStoredPDF(id);
    case Command::showStoredPDF:
        return invoices.showStoredPDF(id);
    case Command::savePDF:
    case Command::saveDraftPDF:
        return invoices.saveDraftPDF(id);
    case Command::copyNumber:
        return qApp->clipboard()->setText(qt(m_model.invoice(id)->number.value_or("")));
    case Command::copyTotal: {
        const auto* const invoice = m_model.invoice(id);
        return qApp->clipboard()->setText(qt(m_model.formats().money(invoice->total(), invoice->currency)));
    }
    case Command::deleteDraft:
        invoices.removeDraft(id);
        return;
    default:
        emit asked(command);
    }
}

} // namespace Pallisande
