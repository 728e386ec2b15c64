#include "CommandLine/Command.h"

#include "CommandLine/Table.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace {

using Pallisande::CommandLine::Command;

constexpr int done = 0, refused = 1, wrongUsage = 2;

int refuse(std::string_view sentence)
{
    fmt::print(stderr, "{}\n", Pallisande::CommandLine::printable(sentence));
    return refused;
}

// A full disk shows when the last of the output is written; half a list must not pass for a whole one.
int finish()
{
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0 ? done
                                                                : refuse("The output couldn’t be written.");
}

// Setting up all verbs takes as long as counting a short document; mostly the first argument says which one
// it will be.
void addVerbs(CLI::App& app, Command& command, std::string_view argument)
{
    using namespace Pallisande::CommandLine;
    struct Group {
        std::array<std::string_view, 2> verbs;
        void (*add)(CLI::App&, Command&);
    };
    static constexpr Group groups[] {
        { { "profile", "series" }, &addProfileVerbs },
        { { "count" }, &addCountVerb },
        { { "options", "card" }, &addCountingVerbs },
        { { "analysis" }, &addAnalysisVerbs },
        { { "client" }, &addClientVerbs },
        { { "job", "deadlines" }, &addJobVerbs },
        { { "invoice" }, &addInvoiceVerbs },
        { { "payment" }, &addPaymentVerbs },
        { { "rates" }, &addRateVerbs },
        { { "library" }, &addLibraryVerbs },
        { { "demo" }, &addDemoVerb },
    };
    const auto* const chosen
        = std::find_if(std::begin(groups), std::end(groups), [argument](const Group& group) {
              return !argument.empty() && (group.verbs[0] == argument || group.verbs[1] == argument);
          });
    for (const auto& group : groups) {
        if (chosen == std::end(groups) || &group == chosen)
            group.add(app, command);
    }
}

} // namespace

int main(int argc, char** argv)
{
    using namespace Pallisande::CommandLine;

    CLI::App app("Clients, jobs and invoices of a freelance translator, without a window.", "pallisande-cli");
    Command command;
    app.add_option(
        "--library", command.folder, "The library folder (else $PALLISANDE_LIBRARY, else the default one)");
    app.add_flag("--json", command.json, "Print records in the form in which they are stored");
    app.set_version_flag("--version", std::string("pallisande-cli " PALLISANDE_VERSION));
    app.require_subcommand(1);
    app.fallthrough();
    addVerbs(app, command, argc > 1 ? argv[1] : "");

    try {
        app.parse(argc, argv);
        return finish();
    } catch (const CLI::RequiredError& error) {
        const CLI::App* last = &app;
        while (!last->get_subcommands().empty())
            last = last->get_subcommands().front();
        const auto words = app.remaining(true);
        const bool isMeantAsVerb
            = last->get_require_subcommand_min() > 0 && !words.empty() && !words.front().starts_with('-');
        if (isMeantAsVerb) {
            refuse(fmt::format("“{}” isn’t a verb here; --help lists them.", words.front()));
            return wrongUsage;
        }
        app.exit(error);
        return wrongUsage;
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? finish() : wrongUsage; // Help is an “error” of code 0.
    } catch (const std::bad_alloc&) {
        return refuse("There is not enough memory.");
    } catch (const std::exception& error) { // Every refusal carries its sentence.
        return refuse(error.what());
    }
}
