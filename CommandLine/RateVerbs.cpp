#include "CommandLine/Command.h"
#include "CommandLine/Table.h"

#include "Base/DurableFile.h"
#include "PallisandeKit/Analyses/Importer.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "PallisandeKit/Rates/ECBFeed.h"

namespace Pallisande::CommandLine {

namespace {

struct RateArguments {
    std::string file;
    std::string from;
    std::string to;
    std::string rate;
    std::string date;
    std::string note;
};

std::string rateText(const ExchangeRate& rate, const Base::Calendar& calendar)
{
    const auto* const typed = std::get_if<TypedByUser>(&rate.source);
    return fmt::format("1 {} = {} {}, {}{}\n", rate.from, rate.rate.toString(), rate.to,
        typed ? (typed->note.empty() ? "typed" : "typed: " + typed->note) : "ECB",
        fmt::format(", {}", dayText(rate.date, calendar)));
}

void readFile(Command& command, const RateArguments& arguments)
{
    auto session = command.writing();
    std::string bytes;
    try {
        bytes = Base::readFile(std::filesystem::path(arguments.file), ECBFeed::largestFile).bytes;
    } catch (const std::exception& error) {
        throw Refusal(
            fmt::format("“{}” couldn’t be opened: {}", Importer::displayName(arguments.file), error.what()));
    }
    const auto moment = session.moment();
    const auto days = ECBFeed::parse(bytes, moment.calendar);
    command.change(session, [&](Library& library) {
        library.rates.merge(days, moment);
        return true;
    });
    const auto& stored = session.library().rates.ecb;
    command.print(days,
        fmt::format("{} days were read; the rates now reach from {} to {}.\n", days.size(),
            dayText(stored.front().date, moment.calendar), dayText(stored.back().date, moment.calendar)));
}

void typeRate(Command& command, const RateArguments& arguments)
{
    auto session = command.writing();
    const auto moment = session.moment();
    const ExchangeRate typed { .id = Base::Uuid::random(),
        .from = arguments.from,
        .to = arguments.to,
        .rate = decimalArgument(arguments.rate),
        .date = dayArgument(arguments.date, moment.calendar).value_or(moment.calendar.noon(moment.now)),
        .source = TypedByUser { arguments.note },
        .recordedAt = moment.now };
    const auto added
        = command.change(session, [&](Library& library) { return Ledger::addTypedRate(library, typed); });
    command.print(added, rateText(added, moment.calendar));
}

void lookUp(Command& command, const RateArguments& arguments)
{
    const auto session = command.reading();
    const auto moment = session.moment();
    const auto day = dayArgument(arguments.date, moment.calendar).value_or(moment.calendar.noon(moment.now));
    const auto rate = session.library().rates.rate(arguments.from, arguments.to, day, moment);
    if (!rate)
        throw Refusal("No rate for this day.");
    command.print(*rate, rateText(*rate, moment.calendar));
}

} // namespace

void addRateVerbs(CLI::App& app, Command& command)
{
    auto* const rates = app.add_subcommand("rates", "Exchange rates: the ECB’s, or typed in");
    rates->require_subcommand(1);
    const auto arguments = std::make_shared<RateArguments>();
    const auto addVerb = [&](const char* verb, const char* help, auto action) {
        auto* const sub = rates->add_subcommand(verb, help);
        sub->callback([&command, arguments, action] { action(command, *arguments); });
        return sub;
    };
    const auto addPair = [&](CLI::App* sub) {
        sub->add_option("FROM", arguments->from, "Currency code")->required();
        sub->add_option("TO", arguments->to, "Currency code")->required();
    };
    addVerb("read", "Take in a file of the European Central Bank’s euro reference rates", &readFile)
        ->add_option("FILE", arguments->file, "The saved XML file")
        ->required();
    auto* const typed = addVerb("type", "Add a rate: units of TO for one unit of FROM", &typeRate);
    addPair(typed);
    typed->add_option("RATE", arguments->rate, "The rate")->required();
    typed->add_option("--date", arguments->date, "Its day (else today)");
    typed->add_option("--note", arguments->note, "Where it comes from");
    auto* const lookup = addVerb("lookup", "Say which rate is in force", &lookUp);
    addPair(lookup);
    lookup->add_option("--date", arguments->date, "On this day (else today)");
}

} // namespace Pallisande::CommandLine
