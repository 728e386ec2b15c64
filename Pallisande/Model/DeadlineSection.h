#pragma once

#include "PallisandeKit/Ledger/Deadlines.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace Pallisande {

class AppModel;

// A job on the board, worded.
struct DeadlineCard {
    Base::Uuid id;
    std::string title; // "Untitled job" when it has none.
    bool isUntitled = false;
    std::string clientAndPair; // "Nordwind GmbH · en → de"
    std::string due; // "Fri 6 Mar, 17:00", with " · Tokyo" in another zone than the user's.
    std::string dueHere; // "Fri 6 Mar, 09:00 here"; empty in the user's zone.
    std::string nearness; // "3 days late"
    bool isOverdue = false;
    JobStatus status = JobStatus::quote;
    std::string price; // "513.60 EUR" before tax, or "no price yet".
    bool hasProblems = false;
    std::string spoken; // All of it as one sentence.
};

// Delivered jobs of one client that are on no invoice.
struct DeliveredGroup {
    struct Line {
        Base::Uuid id;
        std::string text; // "Safety data sheet · en → de · delivered 2 Mar"
        std::string price;
    };

    Base::Uuid clientID;
    std::string client;
    std::string summary; // "3 jobs, oldest delivered 2 Mar"
    std::string total;
    std::vector<Line> jobs;
};

struct DeadlineBoard {
    std::array<std::vector<DeadlineCard>, 6> lanes; // In the order of DeadlineLane.
    std::vector<DeliveredGroup> delivered; // The longest delivered first.
    std::string deliveredTotal; // "2,310.00 EUR in 2 clients"
    std::string forgottenDrafts; // "2 drafts not issued", or empty.
};

std::string_view title(DeadlineLane lane); // "This week"

class DeadlineSection {
public:
    explicit DeadlineSection(AppModel& model)
        : m_model(model)
    {
    }

    const DeadlineBoard& board() const; // Worked out anew when something changed or a minute passed.
    // All of them of that client, on one draft, which is then shown.
    bool makeInvoice(const Base::Uuid& clientID);
    void outdate() { m_board.reset(); }

private:
    DeadlineCard card(const Job& job, const Base::Moment& moment) const;

    AppModel& m_model;
    mutable std::optional<DeadlineBoard> m_board;
};

} // namespace Pallisande
