#include "CommandLine/Command.h"
#include "CommandLine/Table.h"

#include "PallisandeKit/Library/LibraryCheck.h"

namespace Pallisande::CommandLine {

namespace {

void makeLibrary(Command& command, bool startsAnew)
{
    const auto folder = command.libraryFolder();
    try {
        Base::Folder::make(folder);
    } catch (const std::system_error& error) {
        throw Refusal(fmt::format("Pallisande couldn’t open its library folder: {}", error.what()));
    }
    auto session = LibrarySession::open(folder, LibrarySession::Access::writing, command.services());
    if (session.readOnlyReason() == ReadOnlyReason::missingFile && startsAnew) {
        session.takeMessages();
        session.startAnew();
    } else {
        session.requireWritable();
        Command::tell(session); // A damaged library may just have been moved aside.
        if (session.store().exists())
            throw Refusal(fmt::format("“{}” already holds a library.", folder.string()));
        session.change([](Library&) { return true; });
        session.save();
    }
    Command::tell(session);
    Command::put(fmt::format("The library is in “{}”.\n", folder.string()));
}

void check(Command& command)
{
    const auto session = command.reading();
    const auto check = checkLibrary(session);
    std::string text = fmt::format(
        "Clients: {}, jobs: {}, issued documents: {}.\n", check.clients, check.jobs, check.documents);
    for (const auto& line : check.numbering)
        text += printable(line) + "\n";
    for (const auto& finding : check.findings)
        text += printable(finding) + "\n";
    command.print(check, text);
    if (!check.isClean())
        throw Refusal("The library needs a look.");
}

void backUp(Command& command, const std::string& into)
{
    auto session = command.writing();
    const auto path
        = session.backUpNow(into.empty() ? std::nullopt : std::optional<std::filesystem::path>(into));
    Command::put(fmt::format("Backed up as “{}”.\n", path.filename().string()));
}

void restore(Command& command, const std::string& backup)
{
    auto session
        = LibrarySession::open(command.libraryFolder(), LibrarySession::Access::writing, command.services());
    if (session.isReadOnly()) // The restoring overcomes the reason, or gives it itself.
        session.takeMessages();
    Command::tell(session);
    session.restore(backup);
    Command::tell(session);
    Command::put(
        fmt::format("“{}” is the library now.\n", std::filesystem::path(backup).filename().string()));
}

void recover(Command& command)
{
    auto session = command.writing();
    const auto numbers = session.recoverFromIssueLog();
    std::string text;
    for (const auto& number : numbers)
        text += number + "\n";
    command.print(numbers, numbers.empty() ? "The library holds every document that was issued.\n" : text);
}

void move(Command& command, const std::string& folder)
{
    auto session = command.writing();
    session.moveTo(folder);
    Command::tell(session);
}

} // namespace

void addLibraryVerbs(CLI::App& app, Command& command)
{
    auto* const library = app.add_subcommand("library", "The library folder");
    library->require_subcommand(1);
    const auto path = std::make_shared<std::string>();
    const auto flag = std::make_shared<bool>(false);

    auto* const made = library->add_subcommand("new", "Begin a new library in the folder");
    made->add_flag("--start-anew", *flag, "Even where an earlier library’s file is missing");
    made->callback([&command, flag] { makeLibrary(command, *flag); });
    library->add_subcommand("check", "Compare records, PDFs, reports and numbers with each other")
        ->callback([&command] { check(command); });
    auto* const backup = library->add_subcommand("backup", "Make a copy of the library now");
    backup->add_option("--into", *path, "The folder for the copy (else Backups)");
    backup->callback([&command, path] { backUp(command, *path); });
    auto* const restored
        = library->add_subcommand("restore", "Put a backup in the library’s place, which is backed up first");
    restored->add_option("BACKUP", *path, "The copy")->required();
    restored->callback([&command, path] { restore(command, *path); });
    library
        ->add_subcommand(
            "recover", "Take over issued documents that the library lacks (after a restored backup)")
        ->callback([&command] { recover(command); });
    auto* const moved = library->add_subcommand("move", "Move the library to another folder");
    moved->add_option("FOLDER", *path, "Where it goes")->required();
    moved->callback([&command, path] { move(command, *path); });
}

} // namespace Pallisande::CommandLine
