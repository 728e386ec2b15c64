#include "CommandLine/Command.h"
#include "CommandLine/Table.h"

#include "Base/DurableFile.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "TamberlinKit/Quotes/DocumentLabels.h"
#include "TamberlinKit/Quotes/Money.h"

namespace Pallisande::CommandLine {

namespace {

constexpr std::string_view noRate
    = "No exchange rate for this day yet. You can add one later from the invoice.";

std::string kindName(const Invoice& invoice)
{
    return invoice.kind == DocumentKind::invoice ? "Invoice" : "Credit note";
}

std::string rateText(const ExchangeRate& rate, const Base::Calendar& calendar)
{
    const auto* const typed = std::get_if<TypedByUser>(&rate.source);
    return fmt::format("1 {} = {} {} ({}, {})", rate.from, rate.rate.toString(), rate.to,
        typed ? (typed->note.empty() ? "typed" : typed->note) : "ECB", dayText(rate.date, calendar));
}

std::string invoiceText(const Library& library, const Invoice& invoice, const Base::Moment& moment)
{
    const auto& calendar = moment.calendar;
    const auto credited = Ledger::credited(library, invoice.id);
    Properties properties;
    properties.add(kindName(invoice), invoice.number.value_or("Draft"));
    properties.add("Id", invoice.id.toString());
    properties.add("Status", label(Ledger::status(library, invoice, moment)));
    properties.add("Client", invoice.client.name);
    properties.add("Corrects", invoice.creditsNumber.value_or(""));
    properties.add("Issued", invoice.issueDate ? dayText(invoice.issueDate, calendar) : "");
    properties.add("Due", invoice.dueDate ? dayText(invoice.dueDate, calendar) : "");
    auto text = properties.text() + "\n";

    Table lines({ { "Description" }, { "Quantity", Table::Align::right }, { "Unit" },
        { "Price", Table::Align::right },
        { fmt::format("Amount {}", invoice.currency), Table::Align::right } });
    const int digits = Tamberlin::Money::minorDigits(invoice.currency);
    for (const auto& line : invoice.lines)
        lines.add({ line.detail.empty() ? line.title : fmt::format("{} ({})", line.title, line.detail),
            line.quantity.toString(), line.unit, line.unitPrice.toString(2), line.amount.toString(digits) });
    text += lines.text() + "\n";

    Properties sums;
    sums.add("Subtotal", money(invoice.subtotal(), invoice.currency));
    if (!invoice.taxPercent.isZero())
        sums.add(fmt::format("{} {}%", invoice.taxLabel.empty() ? "Tax" : invoice.taxLabel,
                     invoice.taxPercent.toString()),
            money(invoice.tax(), invoice.currency));
    sums.add("Total", money(invoice.total(), invoice.currency));
    if (!credited.isZero())
        sums.add("Credited", money(credited, invoice.currency));
    for (const auto& payment : invoice.payments)
        sums.add("Payment",
            fmt::format("{} on {} ({}){}", money(payment.amount, invoice.currency),
                dayText(payment.date, calendar), shortId(payment.id),
                payment.note.empty() ? "" : ", " + payment.note));
    if (invoice.isIssued() && invoice.kind == DocumentKind::invoice)
        sums.add("Still due", money(Ledger::stillDue(invoice, credited), invoice.currency));
    if (invoice.isIssued() && invoice.currency != invoice.homeCurrency)
        sums.add("Exchange rate", invoice.homeRate ? rateText(*invoice.homeRate, calendar) : noRate);
    sums.add("PDF", invoice.pdfFile.value_or(""));
    return text + sums.text();
}

void print(Command& command, const LibrarySession& session, const Base::Uuid& id)
{
    const auto& invoice = *session.library().invoice(id);
    command.print(invoice, invoiceText(session.library(), invoice, session.moment()));
}

const Tamberlin::DocumentLabels& labels(const LibrarySession& session)
{
    return Tamberlin::DocumentLabels::of(session.services().documentLanguage);
}

void draft(Command& command, const std::vector<std::string>& jobs)
{
    auto session = command.writing();
    std::vector<Base::Uuid> ids;
    for (const auto& job : jobs)
        ids.push_back(findJob(session.library(), job).id);
    const auto id = command.change(session, [&](Library& library) {
        return Ledger::draftInvoice(library, ids, session.moment(), labels(session)).id;
    });
    print(command, session, id);
}

void edit(Command& command, const std::string& name)
{
    auto session = command.writing();
    const auto& old = findInvoice(session.library(), name);
    const auto id = old.id;
    auto edited = patchedFromInput(old, session.moment());
    edited.id = id;
    command.change(session, [&](Library& library) {
        Ledger::editDraft(library, edited, session.moment().now);
        return true;
    });
    print(command, session, id);
}

void remove(Command& command, const std::string& name)
{
    auto session = command.writing();
    const auto id = findInvoice(session.library(), name).id;
    command.change(session, [&](Library& library) {
        Ledger::deleteDraft(library, id, session.moment().now);
        return true;
    });
}

void issue(Command& command, const std::string& name, const std::string& date)
{
    auto session = command.writing();
    const auto id = findInvoice(session.library(), name).id;
    session.issue(id, dayArgument(date, session.services().calendar));
    Command::tell(session);
    print(command, session, id);
}

void credit(Command& command, const std::string& name)
{
    auto session = command.writing();
    const auto invoice = findInvoice(session.library(), name).id;
    const auto id = command.change(session, [&](Library& library) {
        return Ledger::makeCreditNote(library, invoice, session.moment(), labels(session)).id;
    });
    print(command, session, id);
}

void setRate(Command& command, const std::string& name, const std::string& rate, const std::string& note)
{
    auto session = command.writing();
    const auto moment = session.moment();
    const auto& invoice = findInvoice(session.library(), name);
    const auto id = invoice.id;
    std::optional<ExchangeRate> homeRate;
    if (!rate.empty())
        homeRate = ExchangeRate { .id = Base::Uuid::random(),
            .from = invoice.currency,
            .to = invoice.homeCurrency,
            .rate = decimalArgument(rate),
            .date = invoice.issueDate.value_or(moment.now),
            .source = TypedByUser { note },
            .recordedAt = moment.now };
    else if (invoice.issueDate)
        homeRate = session.library().rates.rate(
            invoice.currency, invoice.homeCurrency, *invoice.issueDate, moment);
    if (!homeRate)
        throw Refusal(std::string(noRate));
    homeRate->recordedAt = moment.now;
    command.change(session, [&](Library& library) {
        Ledger::setHomeRate(library, id, *homeRate);
        return true;
    });
    print(command, session, id);
}

void writePDF(Command& command, const std::string& name, const std::string& file)
{
    const auto session = command.reading();
    const auto& invoice = findInvoice(session.library(), name);
    if (invoice.isIssued() && file.empty()) {
        Command::put(session.storedPDF(invoice.id).string() + "\n");
        return;
    }
    if (file.empty())
        throw Refusal("Say with --out where the draft’s PDF goes.");
    try {
        const auto path = std::filesystem::absolute(file);
        const auto bytes = invoice.isIssued() ? Base::readFile(session.storedPDF(invoice.id)).bytes
                                              : session.renderDraft(invoice.id);
        Base::writeDurably(Base::Folder::open(path.parent_path()), path.filename().string(), bytes);
    } catch (const std::system_error& error) {
        throw Refusal(fmt::format("The PDF couldn’t be saved: {}", error.what()));
    }
}

void list(Command& command, const std::string& status)
{
    const auto session = command.reading();
    const auto& library = session.library();
    const auto moment = session.moment();
    const Ledger::CreditedAmounts credited(library);
    std::vector<Invoice> invoices;
    Table table({ { "Id" }, { "Number" }, { "Kind" }, { "Client" }, { "Issued" }, { "Due" },
        { "Total", Table::Align::right }, { "Still due", Table::Align::right }, { "Status" } });
    for (const auto& invoice : library.invoices) {
        const auto creditedHere = credited.of(invoice.id);
        const auto now = Ledger::status(invoice, creditedHere, moment.now, moment.calendar);
        if (!status.empty() && Base::caseName(now) != status)
            continue;
        invoices.push_back(invoice);
        const bool isPayable = invoice.isIssued() && invoice.kind == DocumentKind::invoice;
        table.add({ shortId(invoice.id), invoice.number.value_or("Draft"), kindName(invoice),
            invoice.client.name, dayText(invoice.issueDate, moment.calendar),
            dayText(invoice.dueDate, moment.calendar), money(invoice.total(), invoice.currency),
            isPayable ? money(Ledger::stillDue(invoice, creditedHere), invoice.currency) : "",
            std::string(label(now)) });
    }
    command.print(invoices, table.text());
}

void checkNumbers(Command& command)
{
    const auto session = command.reading();
    const auto lines = Ledger::checkNumbering(session.library());
    std::string text;
    for (const auto& line : lines)
        text += printable(line) + "\n";
    command.print(lines, text);
}

} // namespace

void addInvoiceVerbs(CLI::App& app, Command& command)
{
    auto* const invoice = app.add_subcommand("invoice", "Invoices and credit notes");
    invoice->require_subcommand(1);
    const auto name = std::make_shared<std::string>(), text = std::make_shared<std::string>(),
               note = std::make_shared<std::string>();
    const auto jobs = std::make_shared<std::vector<std::string>>();

    auto* const drafted = invoice->add_subcommand("draft", "Make a draft of delivered jobs of one client");
    drafted->add_option("JOB", *jobs, "Titles or ids of jobs")->required();
    drafted->callback([&command, jobs] { draft(command, *jobs); });

    const auto addNamed = [&](const char* verb, const char* help, auto action) {
        auto* const sub = invoice->add_subcommand(verb, help);
        sub->add_option("INVOICE", *name, "Its number or id")->required();
        sub->callback(action);
        return sub;
    };
    addNamed("edit", "Change the keys of a draft given as JSON on standard input",
        [&command, name] { edit(command, *name); });
    addNamed("delete", "Delete a draft", [&command, name] { remove(command, *name); });
    addNamed("issue", "Give a draft its number, store its PDF and lock it", [&command, name, text] {
        issue(command, *name, *text);
    })->add_option("--date", *text, "The issue day (else the draft’s own, else today)");
    addNamed(
        "credit", "Make a draft credit note for what is left", [&command, name] { credit(command, *name); });
    auto* const rate = addNamed("rate", "Add the exchange rate that an issued document lacks",
        [&command, name, text, note] { setRate(command, *name, *text, *note); });
    rate->add_option("RATE", *text, "Home currency for one unit (else the stored rate of its day)");
    rate->add_option("--note", *note, "Where the rate comes from");
    addNamed("pdf", "Say where the stored PDF lies, or write one", [&command, name, text] {
        writePDF(command, *name, *text);
    })->add_option("--out", *text, "The file to write");
    addNamed("show", "Show one", [&command, name] {
        const auto session = command.reading();
        print(command, session, findInvoice(session.library(), *name).id);
    });
    auto* const listed = invoice->add_subcommand("list", "List them");
    std::vector<std::string> statuses;
    for (const auto caseName : caseNames(InvoiceStatus {}))
        statuses.emplace_back(caseName);
    listed->add_option("--status", *text, "Only of this status")->check(CLI::IsMember(statuses));
    listed->callback([&command, text] { list(command, *text); });
    invoice->add_subcommand("check", "Check the numbering for gaps and repeats")->callback([&command] {
        checkNumbers(command);
    });
}

} // namespace Pallisande::CommandLine
