#include "CommandLine/Command.h"
#include "CommandLine/Table.h"

#include "PallisandeKit/Ledger/Ledger.h"

namespace Pallisande::CommandLine {

namespace {

std::string clientText(const Client& client)
{
    Properties properties;
    properties.add("Client", client.name);
    properties.add("Id", client.id.toString());
    properties.add("Contact", client.contact);
    properties.add("Email", client.email);
    properties.add("Address", client.address);
    properties.add("Tax number", client.taxID);
    properties.add("Time zone", client.timeZone);
    properties.add("Rate",
        fmt::format("{} {} per {} ({} side)", client.defaultRate.toString(2), client.currency,
            Base::caseName(client.unit), Base::caseName(client.basis)));
    for (const auto& rate : client.rates)
        properties.add(rate.pair.text(), fmt::format("{} {}", rate.rate.toString(2), client.currency));
    std::string weights;
    for (const auto band : allMatchBands)
        weights += fmt::format(
            "{}{}: {}%", weights.empty() ? "" : ", ", label(band), client.weights.percentOf(band).toString());
    properties.add("Weights", weights);
    if (const auto preset = client.weights.matchingPreset())
        properties.add("", fmt::format("Same as the example “{}”", label(*preset)));
    if (const auto band = client.weights.firstInvalidBand())
        properties.add("", fmt::format("The weight for {} must be between 0 and 100%.", label(*band)));
    if (client.weights.floor75)
        properties.add("", "75% floor: 50–74% matches are billed as new words.");
    properties.add("Minimum fee", money(client.minimumFee, client.currency));
    properties.add("Tax",
        fmt::format(
            "{}%{}{}", client.taxPercent.toString(), client.taxLabel.empty() ? "" : " ", client.taxLabel));
    properties.add("Tax note", client.taxNote);
    properties.add("Payment", fmt::format("{} days", client.paymentDays));
    properties.add("Terms", client.paymentTerms);
    properties.add("Notes", client.notes);
    properties.add("Archived", client.archived ? "yes" : "");
    return properties.text();
}

// A new client's currency is the user's own, until it says otherwise.
Client newClient(const Library& library, const Base::Moment& moment)
{
    Client client;
    client.id = Base::Uuid::random();
    client.timeZone = moment.calendar.zone();
    client.currency = library.profile.homeCurrency;
    client.created = moment.now;
    return client;
}

void addClient(Command& command)
{
    auto session = command.writing();
    const auto client = patchedFromInput(newClient(session.library(), session.moment()), session.moment());
    const auto added
        = command.change(session, [&](Library& library) { return Ledger::addClient(library, client); });
    command.print(added, clientText(added));
}

void listClients(Command& command, bool withArchived)
{
    const auto session = command.reading();
    std::vector<Client> clients;
    Table table({ { "Id" }, { "Name" }, { "Rate", Table::Align::right }, { "Per" },
        { "Tax", Table::Align::right }, { "Archived" } });
    for (const auto& client : session.library().clients) {
        if (client.archived && !withArchived)
            continue;
        clients.push_back(client);
        table.add({ shortId(client.id), client.name,
            fmt::format("{} {}", client.defaultRate.toString(2), client.currency),
            std::string(Base::caseName(client.unit)), client.taxPercent.toString() + "%",
            client.archived ? "yes" : "" });
    }
    command.print(clients, table.text());
}

void showClient(Command& command, const std::string& name)
{
    const auto session = command.reading();
    const auto& client = findClient(session.library(), name);
    command.print(client, clientText(client));
}

void editClient(Command& command, const std::string& name)
{
    auto session = command.writing();
    const auto& old = findClient(session.library(), name);
    auto client = patchedFromInput(old, session.moment());
    client.id = old.id;
    command.change(session, [&](Library& library) {
        Ledger::replaceClient(library, client);
        return true;
    });
    command.print(client, clientText(client));
}

void archiveClient(Command& command, const std::string& name, bool undo)
{
    auto session = command.writing();
    const auto id = findClient(session.library(), name).id;
    command.change(session, [&](Library& library) {
        Ledger::archiveClient(library, id, !undo);
        return true;
    });
}

void deleteClient(Command& command, const std::string& name)
{
    auto session = command.writing();
    const auto id = findClient(session.library(), name).id;
    command.change(session, [&](Library& library) {
        Ledger::deleteClient(library, id);
        return true;
    });
}

} // namespace

void addClientVerbs(CLI::App& app, Command& command)
{
    auto* const client = app.add_subcommand("client", "Clients and what was agreed with them");
    client->require_subcommand(1);
    const auto name = std::make_shared<std::string>();
    const auto flag = std::make_shared<bool>(false);
    client->add_subcommand("add", "Add the client given as JSON on standard input; every key has a default")
        ->callback([&command] { addClient(command); });
    auto* const list = client->add_subcommand("list", "List them");
    list->add_flag("--archived", *flag, "The archived ones too");
    list->callback([&command, flag] { listClients(command, *flag); });
    const auto addNamed = [&](const char* verb, const char* help, auto action) {
        auto* const sub = client->add_subcommand(verb, help);
        sub->add_option("CLIENT", *name, "The client’s name or id")->required();
        sub->callback(action);
        return sub;
    };
    addNamed("show", "Show one", [&command, name] { showClient(command, *name); });
    addNamed("edit", "Change the keys given as JSON on standard input",
        [&command, name] { editClient(command, *name); });
    addNamed("archive", "Hide it from lists, but keep it", [&command, name, flag] {
        archiveClient(command, *name, *flag);
    })->add_flag("--undo", *flag, "Take it out of the archive");
    addNamed(
        "delete", "Delete one without jobs and invoices", [&command, name] { deleteClient(command, *name); });
}

} // namespace Pallisande::CommandLine
