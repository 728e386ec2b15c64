#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Model/DeadlineSection.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Model/JobSection.h"

#include <algorithm>

// Changing the library, and taking changes back.
namespace Pallisande {

bool AppModel::requireEditing()
{
    if (canEdit())
        return true;
    return refuse(m_isOpening ? "The library is still being opened." : m_readOnlyText);
}

bool AppModel::perform(const Edit& edit, const LibraryEditor::Operation& operation)
{
    m_lastOutcome = {};
    if (!requireEditing())
        return false;
    auto outcome = m_editor.perform(*m_session, edit, operation);
    if (!outcome.changes.isEmpty())
        m_finalStep = edit.isFinal ? edit.name : "";
    return conclude(std::move(outcome), edit.savesAtOnce);
}

bool AppModel::change(const Edit& edit, const std::function<void(Library&)>& operation)
{
    return perform(edit, [&](LibrarySession& session) { session.change(operation); });
}

bool AppModel::conclude(LibraryEditor::Outcome outcome, bool savesAtOnce)
{
    m_lastOutcome = outcome; // Whoever hears of the changes may make others.
    if (!outcome.changes.isEmpty()) {
        if (m_session->hasUnsavedChanges())
            scheduleSave();
        announce(outcome.changes);
        emit undoChanged();
    }
    const bool isUnsaved = m_session->hasUnsavedChanges();
    if (!outcome.refusal.empty()) {
        refreshReadOnly(outcome.refusal);
        if (!savesAtOnce || !isUnsaved || outcome.changes.isEmpty())
            return refuse(outcome.refusal);
        setSaveState(SaveState::failed); // It was done and couldn't be saved.
        return refuse(outcome.refusal, Problem::Action::tryAgain);
    }
    if (isUnsaved && savesAtOnce)
        return write();
    if (!isUnsaved && !outcome.changes.isEmpty()) { // The session has saved it already.
        takeMessages();
        wasSaved();
    }
    return true;
}

void AppModel::announce(const LibraryChanges& changes)
{
    m_index.update(changes, library());
    m_badges.reset();
    m_deadlines->outdate();
    m_jobs->react(changes);
    m_clients->react(changes);
    m_invoices->react(changes);
    for (const auto& [kind, id] : changes.removed) {
        for (const auto section : { AppSection::jobs, AppSection::clients, AppSection::invoices }) {
            if (kindOf(section) == kind && selection(section) == id)
                select(section, std::nullopt);
        }
    }
    emit libraryChanged(changes);
    emit badgesChanged();
}

// --- Undo

std::optional<std::string> AppModel::undoName() const
{
    const auto* const step = m_editor.history().toUndo();
    return step && canEdit() ? std::optional(step->name) : std::nullopt;
}

std::optional<std::string> AppModel::redoName() const
{
    const auto* const step = m_editor.history().toRedo();
    return step && canEdit() ? std::optional(step->name) : std::nullopt;
}

std::string AppModel::undoText() const
{
    if (const auto name = undoName())
        return "Undo " + *name;
    return m_finalStep.empty() ? "Undo" : "Can’t Undo " + m_finalStep;
}

std::string AppModel::redoText() const
{
    const auto name = redoName();
    return name ? "Redo " + *name : "Redo";
}

void AppModel::undo() { takeBack(true); }
void AppModel::redo() { takeBack(false); }

void AppModel::takeBack(bool backwards)
{
    if (!(backwards ? undoName() : redoName()))
        return;
    auto outcome = backwards ? m_editor.undo(*m_session) : m_editor.redo(*m_session);
    if (conclude(std::move(outcome), false))
        selectChanged(m_lastOutcome.changes);
    emit undoChanged();
}

// What was changed is shown: the record that came back before one that merely looks different.
void AppModel::selectChanged(const LibraryChanges& changes)
{
    const auto* const list = !changes.added.empty() ? &changes.added : &changes.changed;
    if (list->empty())
        return;
    const auto section = [](RecordKind kind) {
        return kind == RecordKind::client ? AppSection::clients
            : kind == RecordKind::invoice ? AppSection::invoices
                                          : AppSection::jobs;
    };
    // Of several kinds, the one on show, or else an invoice before its jobs.
    const auto isOnShow = [&](const RecordID& record) { return record.kind == kindOf(m_place.section); };
    auto record = std::find_if(list->begin(), list->end(), isOnShow);
    if (record == list->end())
        record = std::max_element(list->begin(), list->end(),
            [](const RecordID& left, const RecordID& right) { return left.kind < right.kind; });
    const bool isOnBoard = m_place.section == AppSection::deadlines && record->kind == RecordKind::job;
    show(isOnBoard ? AppSection::deadlines : section(record->kind), record->id);
}

} // namespace Pallisande
