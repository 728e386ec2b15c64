#pragma once

#include "Base/Json.h"
#include "PallisandeKit/Library/LibrarySession.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

// What the verbs share: the library folder, the two forms of output, and how records and days are named by
// people.
namespace Pallisande::CommandLine {

// The call is understood but can't be done; printed on standard error, exit 1.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class Command {
public:
    std::string folder; // As given; empty is $PALLISANDE_LIBRARY or the default folder.
    bool json = false;

    std::filesystem::path libraryFolder() const;
    SessionServices services();

    // A session for reading; refused with its sentence when the library can't be read.
    LibrarySession reading();
    // A session for writing; refused when it can't be written.
    LibrarySession writing();
    // Changes the library and saves; what the operation gives is handed on.
    template <typename Operation> auto change(LibrarySession& session, Operation operation)
    {
        auto result = session.change(operation);
        session.save();
        tell(session);
        return result;
    }
    // Prints what the session has to say (notices) on standard error.
    static void tell(LibrarySession& session);

    // With --json the value in its persisted form, else the text.
    template <typename Value> void print(const Value& value, std::string_view text) const
    {
        put(json ? Base::toJson(value) : std::string(text));
    }
    static void put(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

private:
    std::unique_ptr<DocumentRenderer> m_renderer;
};

// A record as JSON from standard input.
std::string standardInput();
template <typename Record> Record recordFromInput(const Base::Moment& moment)
{
    try {
        return Base::fromJson<Record>(standardInput(), { moment.now, moment.calendar.zone() });
    } catch (const Base::DecodingError& error) {
        throw Refusal(fmt::format("The record couldn’t be read: {}", error.what()));
    }
}
// The keys given on standard input over an existing record; the others stay.
template <typename Record> Record patchedFromInput(const Record& record, const Base::Moment& moment)
{
    try {
        return Base::patchedFromJson(record, standardInput(), { moment.now, moment.calendar.zone() });
    } catch (const Base::DecodingError& error) {
        throw Refusal(fmt::format("The record couldn’t be read: {}", error.what()));
    }
}

Base::Decimal decimalArgument(const std::string& text);
// "2026-03-09" as that day's noon in the user's calendar; absent stays absent.
std::optional<Base::Instant> dayArgument(const std::string& text, const Base::Calendar& calendar);

// Records are named by their id, the first characters of it (four at least), or their name where only one has
// it.
const Client& findClient(const Library& library, const std::string& text);
const Job& findJob(const Library& library, const std::string& text);
const Invoice& findInvoice(const Library& library, const std::string& text); // Also by its number.
const Tamberlin::RateCard& findCard(const Library& library, const std::string& text);
const Payment& findPayment(const Invoice& invoice, const std::string& text);

// Refuses what can't be an ISO 4217 code.
void requireCurrency(const std::string& code);

// Figures for people: plain digits with a point in every locale.
std::string money(const Base::Decimal& amount, std::string_view currency);
std::string dayText(const std::optional<Base::Instant>& instant, const Base::Calendar& calendar);
std::string shortId(const Base::Uuid& id);

// One line a property.
class Properties {
public:
    void add(std::string_view name, std::string_view value);
    const std::string& text() const { return m_text; }

private:
    std::string m_text;
};

// Each file of verbs adds its own.
void addAnalysisVerbs(CLI::App& app, Command& command);
void addClientVerbs(CLI::App& app, Command& command);
void addCountVerb(CLI::App& app, Command& command);
void addCountingVerbs(CLI::App& app, Command& command);
void addDemoVerb(CLI::App& app, Command& command);
void addInvoiceVerbs(CLI::App& app, Command& command);
void addJobVerbs(CLI::App& app, Command& command);
void addLibraryVerbs(CLI::App& app, Command& command);
void addPaymentVerbs(CLI::App& app, Command& command);
void addProfileVerbs(CLI::App& app, Command& command);
void addRateVerbs(CLI::App& app, Command& command);

} // namespace Pallisande::CommandLine
