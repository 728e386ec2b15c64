#include "CommandLine/CountVerbs.h"
#include "CommandLine/Table.h"

#include "PallisandeKit/Analyses/FileCounting.h"
#include "PallisandeKit/Ledger/Deadlines.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "PallisandeKit/Pricing/JobPricing.h"

#include <algorithm>

namespace Pallisande::CommandLine {

namespace {

std::string jobName(const Job& job) { return job.title.empty() ? "Untitled job" : job.title; }

std::string clientName(const Library& library, const Base::Uuid& id)
{
    const auto* const client = library.client(id);
    return client ? client->name : "–";
}

// A deadline in the client's own time zone, which is named.
std::string deadlineText(const Library& library, const Job& job, const Base::Calendar& own)
{
    if (!job.deadline)
        return "–";
    const auto* const client = library.client(job.clientID);
    const auto calendar = client ? Base::Calendar::named(client->timeZone).value_or(own) : own;
    const auto at = calendar.components(*job.deadline);
    return fmt::format("{} {:02}:{:02} {}", at.day.toString(), at.hour, at.minute, calendar.zone());
}

std::string jobText(const Library& library, const Job& job, const Base::Calendar& calendar)
{
    Properties properties;
    properties.add("Job", jobName(job));
    properties.add("Id", job.id.toString());
    properties.add("Client", clientName(library, job.clientID));
    properties.add("Pair", job.pair.text());
    properties.add("Reference", job.reference);
    properties.add("Status", title(job.status));
    properties.add("Received", dayText(job.received, calendar));
    properties.add("Deadline", deadlineText(library, job, calendar));
    properties.add("Delivered", dayText(job.deliveredAt, calendar));
    for (const auto& analysis : job.analyses)
        properties.add("Analysis", fmt::format("{} ({} words)", analysis.name, sum(analysis.totals().words)));
    for (const auto& extra : job.extras)
        properties.add("Extra",
            fmt::format("{}: {} {} at {}", extra.title, extra.quantity.toString(), extra.unit,
                extra.unitPrice.toString(2)));
    properties.add("Quote number", job.quoteNumber.value_or(""));
    if (job.invoiceID) {
        const auto* const invoice = library.invoice(*job.invoiceID);
        properties.add("Invoice", invoice ? invoice->number.value_or("a draft") : "missing");
    }
    properties.add("Notes", job.notes);
    return properties.text();
}

void addJob(Command& command, const std::string& client)
{
    auto session = command.writing();
    const auto moment = session.moment();
    Job job;
    if (client.empty()) {
        job = recordFromInput<Job>(moment);
    } else {
        job = { .id = Base::Uuid::random(),
            .clientID = findClient(session.library(), client).id,
            .received = moment.now,
            .created = moment.now,
            .modified = moment.now };
        job = patchedFromInput(job, moment);
    }
    const auto added
        = command.change(session, [&](Library& library) { return Ledger::addJob(library, job); });
    command.print(added, jobText(session.library(), added, moment.calendar));
}

void listJobs(Command& command, const std::string& client, const std::string& status)
{
    const auto session = command.reading();
    const auto& library = session.library();
    const auto* const wantedClient = client.empty() ? nullptr : &findClient(library, client);
    std::vector<Job> jobs;
    Table table({ { "Id" }, { "Title" }, { "Client" }, { "Pair" }, { "Status" }, { "Deadline" },
        { "Price", Table::Align::right } });
    for (const auto& job : library.jobs) {
        const bool isWanted = (!wantedClient || job.clientID == wantedClient->id)
            && (status.empty() || Base::caseName(job.status) == status);
        if (!isWanted)
            continue;
        jobs.push_back(job);
        const auto* const owner = library.client(job.clientID);
        table.add({ shortId(job.id), jobName(job), clientName(library, job.clientID), job.pair.text(),
            std::string(title(job.status)), dayText(job.deadline, session.services().calendar),
            owner ? money(JobPricing::price(job, *owner).total, owner->currency) : "–" });
    }
    command.print(jobs, table.text());
}

void showJob(Command& command, const std::string& name)
{
    const auto session = command.reading();
    const auto& job = findJob(session.library(), name);
    command.print(job, jobText(session.library(), job, session.services().calendar));
}

void editJob(Command& command, const std::string& name)
{
    auto session = command.writing();
    const auto& old = findJob(session.library(), name);
    const auto id = old.id;
    auto job = patchedFromInput(old, session.moment());
    job.id = id;
    command.change(session, [&](Library& library) {
        Ledger::replaceJob(library, job, session.moment().now);
        return true;
    });
    const auto& changed = *session.library().job(id);
    command.print(changed, jobText(session.library(), changed, session.services().calendar));
}

void deleteJob(Command& command, const std::string& name)
{
    auto session = command.writing();
    const auto id = findJob(session.library(), name).id;
    command.change(session, [&](Library& library) {
        Ledger::deleteJob(library, id);
        return true;
    });
}

void setStatus(Command& command, const std::string& name, const std::string& status)
{
    auto to = JobStatus::quote;
    Base::parseCase(status, to);
    auto session = command.writing();
    const auto id = findJob(session.library(), name).id;
    command.change(session, [&](Library& library) {
        Ledger::setStatus(library, id, to, session.moment().now);
        return true;
    });
    const auto& job = *session.library().job(id);
    command.print(job, jobText(session.library(), job, session.services().calendar));
}

std::string priceText(const Job& job, const JobPrice& price, const BandWeights& weights)
{
    const auto amount = [&](const Base::Decimal& value) { return money(value, price.currency); };
    std::string text = printable(jobName(job)) + "\n\n";
    const std::string unit(price.unit == RateUnit::word ? "Words" : "Characters");
    if (price.basis == WordBasis::source) {
        Table bands({ { "Band" }, { unit, Table::Align::right }, { "Weight", Table::Align::right },
            { "Weighted", Table::Align::right } });
        for (const auto& line : price.bands)
            bands.add({ std::string(label(line.band)), std::to_string(line.units),
                line.weight.toString() + "%", line.weightedUnits.toString() });
        bands.add({ "Sum", std::to_string(price.units), "", price.weightedUnits.toString() });
        text += bands.text() + "\n";
        if (weights.floor75)
            text += "75% floor: 50–74% matches are billed as new words.\n\n";
    } else {
        text += "Target basis: bands shown for reference\n\n";
    }
    Table sums({ { "Line" }, { "Amount", Table::Align::right } });
    sums.add({ fmt::format("{} × {}", price.weightedUnits.toString(), price.rate.toString(2)),
        amount(price.translation) });
    if (!price.surcharge.isZero())
        sums.add(
            { fmt::format("Surcharge {}%", price.surchargePercent.toString()), amount(price.surcharge) });
    for (const auto& [line, value] : price.extras)
        sums.add({ fmt::format("{}, {} {} × {}", line.title, line.quantity.toString(), line.unit,
                       line.unitPrice.toString(2)),
            amount(value) });
    sums.add({ "Subtotal", amount(price.subtotal) });
    if (!price.minimumAdjustment.isZero())
        sums.add({ "Minimum fee", amount(price.minimumAdjustment) });
    if (!price.taxPercent.isZero())
        sums.add({ fmt::format("{} {}%", price.taxLabel.empty() ? "Tax" : price.taxLabel,
                       price.taxPercent.toString()),
            amount(price.tax) });
    sums.add({ "Total", amount(price.total) });
    text += sums.text();
    for (const auto& problem : price.problems)
        text += fmt::format("\nWarning: {}\n", problem.sentence());
    return text;
}

void priceJob(Command& command, const std::string& name)
{
    const auto session = command.reading();
    const auto& job = findJob(session.library(), name);
    const auto* const client = session.library().client(job.clientID);
    if (!client)
        throw LedgerError::notFound();
    const auto price = JobPricing::price(job, *client);
    command.print(price, priceText(job, price, client->weights));
}

void quoteJob(Command& command, const std::string& name)
{
    auto session = command.writing();
    const auto id = findJob(session.library(), name).id;
    const auto number = command.change(
        session, [&](Library& library) { return Ledger::giveQuoteNumber(library, id, session.moment()); });
    command.print(*session.library().job(id), number + "\n");
}

// One lane of the board as scripts read it.
struct Lane {
    std::string lane;
    std::vector<Job> jobs;

    static constexpr auto fields()
    {
        return std::tuple { Base::field("lane", &Lane::lane), Base::field("jobs", &Lane::jobs) };
    }
};

std::string laneTitle(std::size_t place)
{
    constexpr std::array<std::string_view, 6> titles { "Overdue", "Today", "Tomorrow", "In 2 to 6 days",
        "Later", "No deadline" };
    return std::string(titles[place]);
}

void showDeadlines(Command& command)
{
    const auto session = command.reading();
    const auto& library = session.library();
    const auto board = Deadlines::board(library, session.moment());
    std::vector<Lane> lanes;
    std::string text;
    const auto addLane
        = [&](const std::string& name, const std::string& heading, const std::vector<const Job*>& jobs) {
              lanes.push_back({ name, {} });
              Table table({ { "Id" }, { "Title" }, { "Client" }, { "Pair" }, { "Deadline" } });
              for (const auto* job : jobs) {
                  lanes.back().jobs.push_back(*job);
                  table.add({ shortId(job->id), jobName(*job), clientName(library, job->clientID),
                      job->pair.text(), deadlineText(library, *job, session.services().calendar) });
              }
              if (!table.isEmpty())
                  text += fmt::format("{}{}\n{}", text.empty() ? "" : "\n", heading, table.text());
          };
    for (std::size_t place = 0; place < board.lanes.size(); ++place)
        addLane(std::string(Base::caseName(static_cast<DeadlineLane>(place))), laneTitle(place),
            board.lanes[place]);
    addLane("deliveredNotInvoiced", "Delivered, not invoiced", board.deliveredNotInvoiced);
    command.print(lanes, text.empty() ? "Nothing is due.\n" : text);
}

void countForJob(Command& command, const std::string& name, const CountArguments& arguments)
{
    auto session = command.writing();
    const auto id = findJob(session.library(), name).id;
    const auto batch = counted(arguments, session.library().counting.options);
    tellFailures(batch);
    if (batch.files.empty())
        throw Refusal("None of the files could be counted, so nothing was attached.");
    const auto analysis = FileCounting::analysis(batch, session.moment().now);
    command.change(session, [&](Library& library) {
        Ledger::attachAnalysis(library, id, analysis, session.moment().now);
        return true;
    });
    command.print(analysis, countTable(batch));
}

} // namespace

void addJobVerbs(CLI::App& app, Command& command)
{
    auto* const job = app.add_subcommand("job", "Jobs, their status and their price");
    job->require_subcommand(1);
    const auto name = std::make_shared<std::string>(), client = std::make_shared<std::string>(),
               status = std::make_shared<std::string>();
    std::vector<std::string> statuses;
    for (const auto caseName : caseNames(JobStatus {}))
        statuses.emplace_back(caseName);

    auto* const add = job->add_subcommand("add", "Add the job given as JSON on standard input");
    add->add_option("--client", *client, "Its client’s name or id (else the key clientID)");
    add->callback([&command, client] { addJob(command, *client); });
    auto* const list = job->add_subcommand("list", "List them");
    list->add_option("--client", *client, "Only of this client");
    list->add_option("--status", *status, "Only of this status")->check(CLI::IsMember(statuses));
    list->callback([&command, client, status] { listJobs(command, *client, *status); });

    const auto addNamed = [&](const char* verb, const char* help, auto action) {
        auto* const sub = job->add_subcommand(verb, help);
        sub->add_option("JOB", *name, "The job’s title or id")->required();
        sub->callback(action);
        return sub;
    };
    addNamed("show", "Show one", [&command, name] { showJob(command, *name); });
    addNamed("edit", "Change the keys given as JSON on standard input",
        [&command, name] { editJob(command, *name); });
    addNamed("delete", "Delete one that is on no invoice", [&command, name] { deleteJob(command, *name); });
    addNamed("status", "Change its status by hand",
        [&command, name, status] { setStatus(command, *name, *status); })
        ->add_option("STATUS", *status, "The new status")
        ->required()
        ->check(CLI::IsMember(statuses));
    addNamed("price", "Work out its price", [&command, name] { priceJob(command, *name); });
    const auto counting = std::make_shared<CountArguments>();
    addCountOptions(*addNamed("count", "Count documents with the library’s switches and attach the count",
                        [&command, name, counting] { countForJob(command, *name, *counting); }),
        *counting);
    addNamed("quote", "Give it its quote number", [&command, name] { quoteJob(command, *name); });

    app.add_subcommand("deadlines", "What is due, and what waits for an invoice")->callback([&command] {
        showDeadlines(command);
    });
}

} // namespace Pallisande::CommandLine
