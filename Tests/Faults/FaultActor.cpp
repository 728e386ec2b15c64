// Does one thing to a library folder and says what became of it, while its system calls are made to fail or
// it is killed:
//
//     fault-actor save FOLDER NAME      renames the first client and saves
//     fault-actor issue FOLDER          drafts and issues an invoice of the first free job
//     fault-actor issue-on FOLDER       goes on with that until it is killed
//     fault-actor save-on FOLDER        goes on saving until it is killed
//
// A refused operation is tried once more, as a user would.

#include "PallisandeKit/Library/LibrarySession.h"
#include "Tests/Support/Sessions.h"

#include <fmt/format.h>

#include <algorithm>

using namespace Pallisande;

namespace {

void say(std::string_view line)
{
    fmt::print("{}\n", line);
    std::fflush(stdout);
}

// Gives whether it went well.
template <typename Operation> bool attempt(Operation operation)
{
    try {
        operation();
        return true;
    } catch (const std::exception& error) {
        say(fmt::format("refused: {}", error.what()));
        return false;
    }
}

template <typename Operation> void attemptTwice(Operation operation)
{
    if (!attempt(operation))
        attempt(operation);
}

void saveUnder(LibrarySession& session, const std::string& name)
{
    session.change([&](Library& library) { library.clients.front().name = name; });
    session.save();
    say("saved " + name);
}

// The draft that is there, or a new one of the first job that is free.
Base::Uuid draft(LibrarySession& session)
{
    for (const auto& invoice : session.library().invoices) {
        if (!invoice.isIssued())
            return invoice.id;
    }
    const auto& jobs = session.library().jobs;
    const auto job
        = std::find_if(jobs.begin(), jobs.end(), [](const Job& candidate) { return !candidate.invoiceID; });
    return session.change([&](Library& library) {
        if (job == jobs.end())
            throw LedgerError::notFound();
        const Base::Uuid ids[] { job->id };
        return Ledger::draftInvoice(library, ids, session.moment(), Test::labels()).id;
    });
}

} // namespace

int main(int count, char** arguments)
{
    const std::string verb = count > 2 ? arguments[1] : "";
    Test::Surroundings surroundings;
    std::optional<LibrarySession> session;
    if (!attempt([&] { session.emplace(surroundings.open(arguments[2])); }))
        return 1;
    for (const auto& message : session->takeMessages())
        say("told: " + message);
    if (session->isReadOnly())
        return 1;
    const auto issue = [&] { say("issued " + session->issue(draft(*session))); };
    if (verb == "save")
        attemptTwice([&] { saveUnder(*session, arguments[3]); });
    if (verb == "issue")
        attemptTwice(issue);
    for (int round = 0; verb == "save-on"; ++round)
        saveUnder(*session, fmt::format("Round {}", round));
    while (verb == "issue-on" && attempt(issue)) { }
    return 0;
}
