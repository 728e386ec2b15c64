#include "CommandLine/Command.h"

#include "CommandLine/Table.h"
#include "PallisandeKit/Library/HelperRenderer.h"
#include "TamberlinKit/Quotes/Money.h"

#include <algorithm>
#include <cstdlib>
#include <thread>
#include <unistd.h>

namespace Pallisande::CommandLine {

namespace {

constexpr std::size_t shortestId = 4;
constexpr std::size_t shownId = 8;
constexpr std::size_t largestInput = 64 * 1024 * 1024;

// The record that a person means by a text; `nameOf` gives what else than its id it goes by.
template <typename Records, typename NameOf>
const auto& findRecord(const Records& records, const std::string& text, std::string_view kind, NameOf nameOf)
{
    if (const auto id = Base::Uuid::parse(text)) {
        const auto found = std::find_if(
            records.begin(), records.end(), [&](const auto& record) { return record.id == *id; });
        if (found == records.end())
            throw LedgerError::notFound();
        return *found;
    }
    auto start = text;
    std::transform(start.begin(), start.end(), start.begin(),
        [](char c) { return c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c; });
    const auto* match = static_cast<const typename Records::value_type*>(nullptr);
    for (const auto& record : records) {
        const bool hasName = nameOf(record) == text;
        const bool hasId = start.size() >= shortestId && record.id.toString().starts_with(start);
        if (!hasName && !hasId)
            continue;
        if (match)
            throw Refusal(fmt::format("“{}” fits more than one {}; use its id.", text, kind));
        match = &record;
    }
    if (!match)
        throw Refusal(fmt::format("There is no {} “{}”.", kind, text));
    return *match;
}

} // namespace

std::filesystem::path Command::libraryFolder() const
{
    if (!folder.empty())
        return folder;
    if (const char* const variable = std::getenv("PALLISANDE_LIBRARY"); variable && *variable)
        return variable;
    try {
        return LibraryStore::defaultFolder();
    } catch (const std::system_error& error) {
        throw Refusal(fmt::format("Pallisande couldn’t open its library folder: {}", error.what()));
    }
}

SessionServices Command::services()
{
    m_renderer = std::make_unique<HelperRenderer>(HelperRenderer::besideThisProgram());
    return { .now = &Base::Instant::now,
        .calendar = Base::Calendar::system(),
        .renderer = m_renderer.get(),
        .wait = [](std::chrono::milliseconds time) { std::this_thread::sleep_for(time); } };
}

LibrarySession Command::reading()
{
    auto session = LibrarySession::open(libraryFolder(), LibrarySession::Access::reading, services());
    // A newer library can be neither read nor written by this version.
    if (session.readOnlyReason() != ReadOnlyReason::openedForReading)
        session.requireWritable();
    return session;
}

LibrarySession Command::writing()
{
    auto session = LibrarySession::open(libraryFolder(), LibrarySession::Access::writing, services());
    session.requireWritable();
    tell(session);
    return session;
}

void Command::tell(LibrarySession& session)
{
    for (const auto& message : session.takeMessages())
        fmt::print(stderr, "{}\n", printable(message));
}

std::string standardInput()
{
    std::string text;
    char buffer[65536];
    for (;;) {
        const auto count = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        text.append(buffer, static_cast<std::size_t>(count));
        if (text.size() > largestInput)
            throw Refusal("What stands on standard input is too large for a record.");
    }
    return text;
}

Base::Decimal decimalArgument(const std::string& text)
{
    const auto value = Base::Decimal::parse(text);
    if (!value)
        throw Refusal(fmt::format("“{}” isn’t a number.", text));
    return *value;
}

std::optional<Base::Instant> dayArgument(const std::string& text, const Base::Calendar& calendar)
{
    if (text.empty())
        return std::nullopt;
    const auto day = Base::Day::parse(text);
    if (!day)
        throw Refusal(fmt::format("“{}” isn’t a day; write it as 2026-03-09.", text));
    return calendar.noon(*day);
}

const Client& findClient(const Library& library, const std::string& text)
{
    return findRecord(library.clients, text, "client", [](const Client& client) { return client.name; });
}

const Job& findJob(const Library& library, const std::string& text)
{
    return findRecord(library.jobs, text, "job", [](const Job& job) { return job.title; });
}

const Invoice& findInvoice(const Library& library, const std::string& text)
{
    return findRecord(library.invoices, text, "document",
        [](const Invoice& invoice) { return invoice.number.value_or(""); });
}

const Tamberlin::RateCard& findCard(const Library& library, const std::string& text)
{
    return findRecord(library.counting.rateCards, text, "rate card",
        [](const Tamberlin::RateCard& card) { return card.name; });
}

const Payment& findPayment(const Invoice& invoice, const std::string& text)
{
    return findRecord(
        invoice.payments, text, "payment", [](const Payment& payment) { return payment.id.toString(); });
}

void requireCurrency(const std::string& code)
{
    if (!Tamberlin::Money::isCurrencyCode(code))
        throw Refusal(
            fmt::format("“{}” isn’t a currency code; use three capital letters such as EUR.", code));
}

std::string money(const Base::Decimal& amount, std::string_view currency)
{
    return fmt::format("{} {}", amount.toString(Tamberlin::Money::minorDigits(currency)), currency);
}

std::string dayText(const std::optional<Base::Instant>& instant, const Base::Calendar& calendar)
{
    return instant ? calendar.day(*instant).toString() : "–";
}

std::string shortId(const Base::Uuid& id) { return id.toString().substr(0, shownId); }

void Properties::add(std::string_view name, std::string_view value)
{
    const auto label = name.empty() ? "" : fmt::format("{}:", name); // None: it goes with the line above.
    if (!value.empty())
        m_text += fmt::format("{:<18}{}\n", label, printable(value));
}

} // namespace Pallisande::CommandLine
