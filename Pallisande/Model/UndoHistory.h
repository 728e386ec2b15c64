#pragma once

#include "Pallisande/Model/LibraryChanges.h"
#include "PallisandeKit/Records/Library.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace Pallisande {

using Record = std::variant<Client, Job, Invoice>;

// One record before and after a change; absent where it wasn't there.
struct RecordChange {
    RecordID record;
    std::optional<Record> before, after;
    std::size_t place = 0; // In its list, so that one brought back stands where it stood.
};

template <typename Value> struct ValueChange {
    Value before, after;
};

// A change that the user made, as what it changed: never whole libraries.
struct UndoStep {
    std::string name; // "Change Rate"
    std::string field; // Consecutive edits of the same field are one step; empty: always a step of its own.
    std::vector<RecordChange> records;
    std::optional<ValueChange<Profile>> profile;
    std::optional<ValueChange<std::vector<ExchangeRate>>> typedRates;
    std::optional<ValueChange<CountingSetup>> counting;
    bool isOfPayments = false; // Undone by its payments alone: the rest of the invoice may have moved on.

    bool isEmpty() const { return records.empty() && !profile && !typedRates && !counting; }
    LibraryChanges changes(bool backwards) const;
};

// What was changed in this run, so that it can be taken back and done again.
class UndoHistory {
public:
    static constexpr std::size_t mostSteps = 200;

    // What is done anew, nobody can redo. Merges with the last step while `endMerging` wasn't called.
    void push(UndoStep step);
    void endMerging() { m_mayMerge = false; }
    void clear();

    const UndoStep* toUndo() const { return m_done.empty() ? nullptr : &m_done.back(); }
    const UndoStep* toRedo() const { return m_undone.empty() ? nullptr : &m_undone.back(); }
    void wasUndone();
    void wasRedone();
    void dropUndo() { m_done.pop_back(); }
    void dropRedo() { m_undone.pop_back(); }

    // Drops every step that touches what a final step touched, and with it the older ones of the same
    // records, whose state before can't be reached any more.
    void dropTouching(const UndoStep& final);

private:
    std::deque<UndoStep> m_done, m_undone;
    bool m_mayMerge = false;
};

// Puts back what was there before (or after) the step. Throws LedgerError, and changes nothing, when that
// would take away a record that others have come to need.
void apply(Library& library, const UndoStep& step, bool backwards, const Base::Moment& moment);

} // namespace Pallisande
