#pragma once

#include "Pallisande/Model/UndoHistory.h"
#include "PallisandeKit/Library/LibrarySession.h"

#include <functional>
#include <string>
#include <vector>

namespace Pallisande {

// A change of the library before it is made: its name in the menu and everything that it may touch.
struct Edit {
    std::string name; // "Change Rate"
    std::string field; // Edits of one field that follow each other become one step; empty: never.
    std::vector<RecordID> touches; // Records that it adds needn't be named.
    bool touchesProfile = false, touchesRates = false, touchesCounting = false;
    bool isOfPayments = false;
    bool isFinal = false; // Can't be undone, nor can what went before with the same records.
    bool savesAtOnce = false; // The user is told that it happened.
};

// Carries out changes of a library and remembers how to take them back.
class LibraryEditor {
public:
    using Operation = std::function<void(LibrarySession&)>;

    struct Outcome {
        LibraryChanges changes;
        std::string refusal; // Empty: it was done.
        std::vector<Base::Uuid> addedJobs, addedInvoices;
    };
    // An operation that throws may still have changed something, such as one that couldn't be saved.
    Outcome perform(LibrarySession& session, const Edit& edit, const Operation& operation);
    Outcome undo(LibrarySession& session);
    Outcome redo(LibrarySession& session);

    UndoHistory& history() { return m_history; }
    const UndoHistory& history() const { return m_history; }

private:
    Outcome apply(LibrarySession& session, bool backwards);

    UndoHistory m_history;
};

} // namespace Pallisande
