#pragma once

#include "Base/Instant.h"
#include "Base/Uuid.h"

#include <deque>
#include <optional>
#include <string>

namespace Pallisande {

// What the user is told, as a value: which button goes with it is part of it.
struct Problem {
    enum class Action {
        none,
        chooseFolder,
        checkForUpdates,
        showBackups,
        tryAgain, // To save.
        showLibraryFolder,
        newClient,
        archiveClient, // `subject`
        openInvoice, // `subject`
    };

    std::string text;
    Action action = Action::none;
    std::optional<Base::Uuid> subject;
    bool isInSheet = false; // A sheet was open when it arose: it is shown there, and goes with the sheet.

    bool operator==(const Problem&) const = default;
};

struct Notice {
    enum class Action { none, undo, show, showBackups };

    std::string text;
    Action action = Action::none;
    std::optional<Base::Uuid> subject; // What `show` shows: an issued document; absent: the library folder.

    bool operator==(const Notice&) const = default;
};

// One entry of Help › Recent Messages.
struct PastMessage {
    Base::Instant when;
    std::string text;
    bool isProblem = false;
};

// The problem and the notice on show, and what went before.
class Messages {
public:
    static constexpr std::size_t mostKept = 50;

    void tell(Problem problem, Base::Instant now);
    void tell(Notice notice, Base::Instant now);
    // Told together, shown one after the other.
    void tellLater(Problem problem, Base::Instant now);

    const std::optional<Problem>& problem() const { return m_problem; }
    const std::optional<Notice>& notice() const { return m_notice; }
    const std::deque<PastMessage>& past() const { return m_past; } // Newest last.

    void dismissProblem();
    void dismissNotice() { m_notice.reset(); }

private:
    void remember(const std::string& text, bool isProblem, Base::Instant now);

    std::optional<Problem> m_problem;
    std::deque<Problem> m_waiting;
    std::optional<Notice> m_notice;
    std::deque<PastMessage> m_past;
};

} // namespace Pallisande
