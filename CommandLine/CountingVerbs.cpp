#include "CommandLine/Command.h"
#include "CommandLine/Table.h"

#include <algorithm>

// The document counter's switches and the rate cards of quick quotes.
namespace Pallisande::CommandLine {

namespace {

using Tamberlin::CountOptions;
using Tamberlin::RateCard;

std::string optionsText(const CountOptions& options)
{
    std::string parts;
    for (const auto part : options.included)
        parts += (parts.empty() ? "" : ", ") + std::string(title(part));
    Properties properties;
    properties.add("Counted parts", parts);
    properties.add("Numbers", options.countNumbers ? "count as words" : "don’t count");
    properties.add("Lone symbols", options.countMarks ? "count as words" : "don’t count");
    properties.add("Repetitions", title(options.repetitions));
    properties.add(
        "Scanned pages", options.ocrScannedPDFs ? "are read with text recognition" : "are left out");
    return properties.text();
}

void showOptions(Command& command)
{
    const auto session = command.reading();
    command.print(session.library().counting.options, optionsText(session.library().counting.options));
}

void editOptions(Command& command)
{
    auto session = command.writing();
    const auto options = patchedFromInput(session.library().counting.options, session.moment());
    command.change(session, [&](Library& library) { return library.counting.options = options; });
    command.print(options, optionsText(options));
}

std::string cardsText(const std::vector<RateCard>& cards, const std::optional<Base::Uuid>& used)
{
    Table table({ { "Id" }, { "Name" }, { "Rate", Table::Align::right }, { "Per" },
        { "Repetitions", Table::Align::right }, { "Minimum", Table::Align::right }, { "In use" } });
    for (const auto& card : cards)
        table.add({ shortId(card.id), card.name, fmt::format("{} {}", card.rate.toString(2), card.currency),
            std::string(Base::caseName(card.unit)), card.repetitionPercent.toString() + "%",
            money(card.minimumFee, card.currency), used == card.id ? "yes" : "" });
    return table.text();
}

void listCards(Command& command)
{
    const auto session = command.reading();
    const auto& counting = session.library().counting;
    command.print(counting.rateCards, cardsText(counting.rateCards, counting.rateCardID));
}

void printCard(Command& command, const RateCard& card)
{
    command.print(card, cardsText({ card }, std::nullopt));
}

void addCard(Command& command)
{
    auto session = command.writing();
    auto card = recordFromInput<RateCard>(session.moment());
    requireCurrency(card.currency);
    const auto& cards = session.library().counting.rateCards;
    if (std::any_of(cards.begin(), cards.end(), [&](const RateCard& other) { return other.id == card.id; }))
        card.id = Base::Uuid::random();
    command.change(session, [&](Library& library) {
        library.counting.rateCards.push_back(card);
        return true;
    });
    printCard(command, card);
}

void editCard(Command& command, const std::string& name)
{
    auto session = command.writing();
    const auto id = findCard(session.library(), name).id;
    auto card = patchedFromInput(findCard(session.library(), name), session.moment());
    card.id = id;
    requireCurrency(card.currency);
    command.change(session, [&](Library& library) {
        auto& cards = library.counting.rateCards;
        std::replace_if(
            cards.begin(), cards.end(), [&](const RateCard& other) { return other.id == id; }, card);
        return true;
    });
    printCard(command, card);
}

void deleteCard(Command& command, const std::string& name)
{
    auto session = command.writing();
    const auto id = findCard(session.library(), name).id;
    if (session.library().counting.rateCards.size() == 1)
        throw Refusal("Keep at least one rate card.");
    command.change(session, [&](Library& library) {
        auto& counting = library.counting;
        std::erase_if(counting.rateCards, [&](const RateCard& card) { return card.id == id; });
        counting.cardClients.erase(id);
        if (counting.rateCardID == id)
            counting.rateCardID.reset();
        return true;
    });
}

void useCard(Command& command, const std::string& name, const std::string& client)
{
    auto session = command.writing();
    const auto card = command.change(session, [&](Library& library) {
        const auto& found = findCard(library, name);
        library.counting.rateCardID = found.id;
        if (!client.empty())
            library.counting.cardClients[found.id] = findClient(library, client).id;
        return found;
    });
    printCard(command, card);
}

} // namespace

void addCountingVerbs(CLI::App& app, Command& command)
{
    auto* const options = app.add_subcommand("options", "What the document counter counts");
    options->require_subcommand(1);
    options->add_subcommand("show", "Show the switches")->callback([&command] { showOptions(command); });
    options->add_subcommand("edit", "Change the keys given as JSON on standard input")->callback([&command] {
        editOptions(command);
    });

    auto* const card = app.add_subcommand("card", "Rate cards for quick quotes");
    card->require_subcommand(1);
    const auto name = std::make_shared<std::string>(), client = std::make_shared<std::string>();
    card->add_subcommand("list", "List them")->callback([&command] { listCards(command); });
    card->add_subcommand("add", "Add the card given as JSON on standard input")->callback([&command] {
        addCard(command);
    });
    const auto addNamed = [&](const char* verb, const char* help, auto action) {
        auto* const sub = card->add_subcommand(verb, help);
        sub->add_option("CARD", *name, "Its name or id")->required();
        sub->callback(action);
        return sub;
    };
    addNamed("show", "Show one", [&command, name] {
        const auto session = command.reading();
        printCard(command, findCard(session.library(), *name));
    });
    addNamed("edit", "Change the keys given as JSON on standard input",
        [&command, name] { editCard(command, *name); });
    addNamed("delete", "Delete one; the last stays", [&command, name] { deleteCard(command, *name); });
    addNamed("use", "Make it the card in use", [&command, name, client] {
        useCard(command, *name, *client);
    })->add_option("--client", *client, "The client whose card it is");
}

} // namespace Pallisande::CommandLine
