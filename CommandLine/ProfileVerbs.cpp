#include "CommandLine/Command.h"
#include "CommandLine/Table.h"

#include "Base/Base64.h"
#include "Base/DurableFile.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "TamberlinKit/Quotes/Money.h"

namespace Pallisande::CommandLine {

namespace {

constexpr std::size_t logoLimit = 2'097'152; // Bytes; a logo has fewer.

std::string profileText(const Profile& profile)
{
    Properties properties;
    properties.add("Name", profile.sender.name);
    properties.add("Address", profile.sender.address);
    properties.add("Email", profile.sender.email);
    properties.add("Phone", profile.sender.phone);
    properties.add("Website", profile.sender.website);
    properties.add("Tax number", profile.sender.taxID);
    properties.add("Logo", profile.sender.logo ? "yes" : "");
    properties.add("Home currency", profile.homeCurrency);
    properties.add("Payment terms", profile.defaultPaymentTerms);
    properties.add("Bank details", profile.bankDetails);
    properties.add("Paper", profile.paper == Tamberlin::Paper::a4 ? "A4" : "US Letter");
    properties.add("Quotes valid for", fmt::format("{} days", profile.quoteValidDays));
    return properties.text();
}

void showProfile(Command& command)
{
    const auto session = command.reading();
    command.print(session.library().profile, profileText(session.library().profile));
}

void requireLogo(std::string_view bytes)
{
    const bool isImage = bytes.starts_with("\x89PNG\r\n\x1A\n") || bytes.starts_with("\xFF\xD8\xFF");
    if (!isImage || bytes.size() >= logoLimit)
        throw Refusal("Choose a PNG or JPEG under 2 MB for the logo.");
}

// The image as it is kept: Base64 of a PNG or JPEG file.
std::string logoFromFile(const std::string& path)
{
    try {
        const auto bytes = Base::readFile(std::filesystem::path(path), logoLimit).bytes;
        requireLogo(bytes);
        return Base::toBase64(bytes);
    } catch (const std::system_error& error) {
        if (error.code().value() == EFBIG)
            requireLogo({});
        throw Refusal(fmt::format("“{}” couldn’t be opened: {}", path, error.what()));
    }
}

struct ProfileEdit {
    std::string logo;
    bool removesLogo = false;
};

void editProfile(Command& command, const ProfileEdit& edit)
{
    auto session = command.writing();
    auto profile = session.library().profile;
    if (!edit.logo.empty())
        profile.sender.logo = logoFromFile(edit.logo);
    else if (edit.removesLogo)
        profile.sender.logo.reset();
    else
        profile = patchedFromInput(profile, session.moment());
    if (const auto& given = profile.sender.logo; given && given != session.library().profile.sender.logo)
        requireLogo(Base::fromBase64(*given).value_or(""));
    requireCurrency(profile.homeCurrency);
    for (const auto which :
        { Ledger::Series::invoices, Ledger::Series::creditNotes, Ledger::Series::quotes }) {
        if (Ledger::series(profile, which).next != Ledger::series(session.library().profile, which).next)
            throw Refusal("The next number of a series is set with “series set-next”.");
    }
    command.change(session, [&](Library& library) { return library.profile = profile; });
    command.print(profile, profileText(profile));
}

std::string seriesText(const Profile& profile, std::int64_t year)
{
    Table table({ { "Series" }, { "Next number" }, { "Year in it" }, { "Starts each year" } });
    for (const auto which :
        { Ledger::Series::invoices, Ledger::Series::creditNotes, Ledger::Series::quotes }) {
        const auto& series = Ledger::series(profile, which);
        table.add({ std::string(Base::caseName(which)), series.upcoming(year).number,
            series.includeYear ? "yes" : "no", series.includeYear && series.resetEachYear ? "yes" : "no" });
    }
    return table.text();
}

void showSeries(Command& command)
{
    const auto session = command.reading();
    const auto& profile = session.library().profile;
    if (command.json) {
        std::string text;
        Base::JsonWriter writer(text, Base::JsonStyle::pretty);
        writer.beginObject();
        for (const auto which :
            { Ledger::Series::creditNotes, Ledger::Series::invoices, Ledger::Series::quotes }) {
            writer.plainKey(Base::caseName(which));
            Base::writeJson(writer, Ledger::series(profile, which));
        }
        writer.endObject();
        Command::put(text + "\n");
        return;
    }
    Command::put(seriesText(profile, session.services().calendar.day(session.moment().now).year));
}

struct SetNext {
    std::string series;
    std::int64_t next = 0;
    std::int64_t year = 0;
};

void setNext(Command& command, const SetNext& arguments)
{
    auto which = Ledger::Series::invoices;
    Base::parseCase(arguments.series, which);
    auto session = command.writing();
    const auto year = arguments.year != 0
        ? arguments.year
        : std::int64_t { session.services().calendar.day(session.moment().now).year };
    command.change(session, [&](Library& library) {
        Ledger::setNextNumber(library, which, year, arguments.next);
        return true;
    });
    Command::put(fmt::format(
        "The next number is {}.\n", Ledger::series(session.library().profile, which).upcoming(year).number));
}

} // namespace

void addProfileVerbs(CLI::App& app, Command& command)
{
    auto* const profile = app.add_subcommand("profile", "Your business: sender, currency, terms, numbering");
    profile->require_subcommand(1);
    profile->add_subcommand("show", "Show it")->callback([&command] { showProfile(command); });
    auto* const edit = profile->add_subcommand("edit", "Change the keys given as JSON on standard input");
    const auto logo = std::make_shared<ProfileEdit>();
    edit->add_option(
        "--logo", logo->logo, "Take this PNG or JPEG as the logo (nothing is read from standard input)");
    edit->add_flag("--no-logo", logo->removesLogo, "Remove the logo");
    edit->callback([&command, logo] { editProfile(command, *logo); });

    auto* const series = app.add_subcommand("series", "The series of invoice, credit note and quote numbers");
    series->require_subcommand(1);
    series->add_subcommand("show", "Show each series and its next number")->callback([&command] {
        showSeries(command);
    });
    auto* const next = series->add_subcommand("set-next", "Set the first number of a series");
    const auto arguments = std::make_shared<SetNext>();
    next->add_option("SERIES", arguments->series, "invoices, creditNotes or quotes")
        ->required()
        ->check(CLI::IsMember({ "invoices", "creditNotes", "quotes" }));
    next->add_option("N", arguments->next, "The number")->required();
    next->add_option("--year", arguments->year, "Of the year (else this one)")->check(CLI::Range(1, 9999));
    next->callback([&command, arguments] { setNext(command, *arguments); });
}

} // namespace Pallisande::CommandLine
