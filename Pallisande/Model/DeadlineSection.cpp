#include "Pallisande/Model/DeadlineSection.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Model/JobSection.h"

#include "Base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace Pallisande {

namespace {

using Sums = std::map<std::string, Base::Decimal>; // By currency.

std::string sumText(const Formats& formats, const Sums& sums)
{
    std::string text;
    for (const auto& [currency, sum] : sums)
        text += (text.empty() ? "" : ", ") + formats.money(sum, currency);
    return text;
}

} // namespace

std::string_view title(DeadlineLane lane)
{
    constexpr std::array<std::string_view, 6> titles { "Overdue", "Today", "Tomorrow", "This week", "Later",
        "No deadline" };
    return titles[static_cast<std::size_t>(lane)];
}

DeadlineCard DeadlineSection::card(const Job& job, const Base::Moment& moment) const
{
    const auto& formats = m_model.formats();
    const auto* const client = m_model.client(job.clientID);
    const auto& figures = m_model.jobs().figures(job);
    DeadlineCard card { .id = job.id,
        .title = jobTitle(job),
        .isUntitled = job.title.empty(),
        .clientAndPair = client ? client->name : "",
        .status = job.status,
        .price = figures.hasPrice ? formats.money(figures.net, figures.currency) : "no price yet",
        .hasProblems = figures.hasProblems };
    if (const auto pair = job.pair.text(); !pair.empty())
        card.clientAndPair += (card.clientAndPair.empty() ? "" : " · ") + pair;
    std::string spokenDue = "no deadline";
    if (job.deadline) {
        const auto today = moment.calendar.day(moment.now);
        const auto text = [&](const Base::Calendar& calendar) {
            const auto at = calendar.components(*job.deadline);
            return fmt::format("{}, {}", Formats::weekDay(at.day, today), formats.time(at));
        };
        const auto zone = client ? Base::Calendar::named(client->timeZone) : std::nullopt;
        card.due = text(zone.value_or(moment.calendar));
        spokenDue = "due " + card.due;
        if (zone && zone->zone() != moment.calendar.zone()) {
            card.due += " · " + cityOf(zone->zone());
            card.dueHere = text(moment.calendar) + " here";
            spokenDue += " in " + cityOf(zone->zone()) + ", which is " + card.dueHere;
        }
        card.nearness = Formats::nearness(*job.deadline, moment);
        card.isOverdue = *job.deadline < moment.now;
    }
    card.spoken = card.title;
    for (const auto& part :
        { client ? client->name : "", spokenPair(job.pair), Base::asciiLowered(title(job.status)), spokenDue,
            card.nearness, figures.hasPrice ? card.price + " before tax" : card.price }) {
        if (!part.empty())
            card.spoken += ", " + part;
    }
    return card;
}

const DeadlineBoard& DeadlineSection::board() const
{
    if (m_board)
        return *m_board;
    const auto moment = m_model.moment();
    const auto today = moment.calendar.day(moment.now);
    const auto jobs = Deadlines::board(m_model.library(), moment);
    auto& board = m_board.emplace();
    for (std::size_t lane = 0; lane < board.lanes.size(); ++lane) {
        for (const auto* job : jobs.lanes[lane])
            board.lanes[lane].push_back(card(*job, moment));
    }

    std::vector<Sums> groupSums;
    Sums all;
    for (const auto* job : jobs.deliveredNotInvoiced) {
        const auto* const client = m_model.client(job->clientID);
        auto group = std::find_if(board.delivered.begin(), board.delivered.end(),
            [&](const DeliveredGroup& other) { return other.clientID == job->clientID; });
        const auto delivered = job->deliveredAt
            ? "delivered " + Formats::shortDay(moment.calendar.day(*job->deliveredAt), today)
            : "delivered";
        if (group == board.delivered.end()) {
            group = board.delivered.insert(board.delivered.end(),
                { .clientID = job->clientID, .client = client ? client->name : "", .summary = delivered });
            groupSums.emplace_back();
        }
        const auto net = m_model.jobs().figures(*job).net;
        const auto currency = client ? client->currency : "";
        groupSums[static_cast<std::size_t>(group - board.delivered.begin())][currency] += net;
        all[currency] += net;
        auto text = jobTitle(*job);
        if (const auto pair = job->pair.text(); !pair.empty())
            text += " · " + pair;
        group->jobs.push_back({ job->id, text + " · " + delivered, m_model.formats().money(net, currency) });
    }
    for (std::size_t place = 0; place < board.delivered.size(); ++place) {
        auto& group = board.delivered[place];
        const auto count = std::ssize(group.jobs);
        group.summary = fmt::format(
            "{}, {}{}", counted(count, "job", "jobs"), count > 1 ? "oldest " : "", group.summary);
        group.total = sumText(m_model.formats(), groupSums[place]);
    }
    if (!board.delivered.empty())
        board.deliveredTotal = fmt::format("{} in {}", sumText(m_model.formats(), all),
            counted(std::ssize(board.delivered), "client", "clients"));
    const auto& invoices = m_model.library().invoices;
    const auto drafts = std::count_if(
        invoices.begin(), invoices.end(), [](const Invoice& invoice) { return !invoice.isIssued(); });
    if (drafts > 0)
        board.forgottenDrafts = counted(drafts, "draft", "drafts") + " not issued";
    return board;
}

bool DeadlineSection::makeInvoice(const Base::Uuid& clientID)
{
    std::vector<Base::Uuid> jobs;
    for (const auto& group : board().delivered) {
        if (group.clientID != clientID)
            continue;
        for (const auto& line : group.jobs)
            jobs.push_back(line.id);
    }
    return m_model.invoices().makeDraft(jobs);
}

} // namespace Pallisande
