#include "CommandLine/Command.h"

#include "Base/Text.h"

#include <fmt/format.h>

namespace {

using Pallisande::CommandLine::Command;

constexpr int done = 0, refused = 1, wrongUsage = 2;

int refuse(std::string_view sentence)
{
    fmt::print(stderr, "{}\n", sentence);
    return refused;
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
    addProfileVerbs(app, command);
    addCountingVerbs(app, command);
    addAnalysisVerbs(app, command);
    addClientVerbs(app, command);
    addJobVerbs(app, command);
    addInvoiceVerbs(app, command);
    addPaymentVerbs(app, command);
    addRateVerbs(app, command);
    addLibraryVerbs(app, command);
    addDemoVerb(app, command);

    try {
        app.parse(argc, argv);
        return done;
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? done : wrongUsage;
    } catch (const std::bad_alloc&) {
        return refuse("There is not enough memory.");
    } catch (const std::exception& error) { // Every refusal carries its sentence.
        return refuse(error.what());
    }
}
