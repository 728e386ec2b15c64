#include "CommandLine/Command.h"

#include "PallisandeKit/Samples/SampleLibrary.h"

namespace Pallisande::CommandLine {

namespace {

void demonstrate(Command& command, const std::string& folder)
{
    const auto told = makeSampleFolder(folder, command.services());
    for (const auto& line : told)
        Command::put(line + "\n");
}

} // namespace

void addDemoVerb(CLI::App& app, Command& command)
{
    auto* const demo = app.add_subcommand("demo", "Make a demonstration library and say what was done");
    const auto folder = std::make_shared<std::string>();
    demo->add_option("FOLDER", *folder, "A new folder for it")->required();
    demo->callback([&command, folder] { demonstrate(command, *folder); });
}

} // namespace Pallisande::CommandLine
