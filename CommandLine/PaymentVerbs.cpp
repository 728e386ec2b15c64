#include "CommandLine/Command.h"

#include "PallisandeKit/Ledger/Ledger.h"

namespace Pallisande::CommandLine {

namespace {

struct PaymentArguments {
    std::string invoice;
    std::string payment;
    std::string amount;
    std::string date;
    std::string receivedHome;
    std::string note;
};

// What was given over a payment; the rest stays.
Payment taken(Payment payment, const PaymentArguments& arguments, const Base::Calendar& calendar)
{
    if (!arguments.amount.empty())
        payment.amount = decimalArgument(arguments.amount);
    if (const auto day = dayArgument(arguments.date, calendar))
        payment.date = *day;
    if (!arguments.receivedHome.empty())
        payment.receivedHome = decimalArgument(arguments.receivedHome);
    if (!arguments.note.empty())
        payment.note = arguments.note;
    return payment;
}

void print(
    Command& command, const LibrarySession& session, const Base::Uuid& invoiceID, const Payment& payment)
{
    const auto& invoice = *session.library().invoice(invoiceID);
    const auto credited = Ledger::credited(session.library(), invoiceID);
    command.print(payment,
        fmt::format("{} received on {}; {} is {}, {} still due.\n", money(payment.amount, invoice.currency),
            dayText(payment.date, session.services().calendar), invoice.number.value_or(""),
            label(Ledger::status(session.library(), invoice, session.moment())),
            money(Ledger::stillDue(invoice, credited), invoice.currency)));
}

void add(Command& command, const PaymentArguments& arguments)
{
    auto session = command.writing();
    const auto moment = session.moment();
    const auto invoice = findInvoice(session.library(), arguments.invoice).id;
    const Payment blank { .id = Base::Uuid::random(), .date = moment.calendar.noon(moment.now) };
    const auto payment = command.change(session, [&](Library& library) {
        return Ledger::addPayment(library, invoice, taken(blank, arguments, moment.calendar), moment);
    });
    print(command, session, invoice, payment);
}

void edit(Command& command, const PaymentArguments& arguments)
{
    auto session = command.writing();
    const auto moment = session.moment();
    const auto& invoice = findInvoice(session.library(), arguments.invoice);
    const auto id = invoice.id;
    const auto payment = taken(findPayment(invoice, arguments.payment), arguments, moment.calendar);
    command.change(session, [&](Library& library) {
        Ledger::editPayment(library, id, payment, moment);
        return true;
    });
    print(command, session, id, findPayment(*session.library().invoice(id), payment.id.toString()));
}

void remove(Command& command, const PaymentArguments& arguments)
{
    auto session = command.writing();
    const auto& invoice = findInvoice(session.library(), arguments.invoice);
    const auto id = invoice.id, payment = findPayment(invoice, arguments.payment).id;
    command.change(session, [&](Library& library) {
        Ledger::removePayment(library, id, payment, session.moment());
        return true;
    });
}

} // namespace

void addPaymentVerbs(CLI::App& app, Command& command)
{
    auto* const payment = app.add_subcommand("payment", "Money received on issued invoices");
    payment->require_subcommand(1);
    const auto arguments = std::make_shared<PaymentArguments>();
    const auto addVerb = [&](const char* verb, const char* help, bool isNew, bool hasFigures, auto action) {
        auto* const sub = payment->add_subcommand(verb, help);
        sub->add_option("INVOICE", arguments->invoice, "Its number or id")->required();
        if (!isNew)
            sub->add_option("PAYMENT", arguments->payment, "The payment’s id")->required();
        if (hasFigures) {
            sub->add_option("--amount", arguments->amount, "In the invoice’s currency")->required(isNew);
            sub->add_option("--date", arguments->date, "The day it arrived (else today)");
            sub->add_option("--received-home", arguments->receivedHome, "What arrived in the home currency");
            sub->add_option("--note", arguments->note, "A note");
        }
        sub->callback([&command, arguments, action] { action(command, *arguments); });
    };
    addVerb("add", "Record one", true, true, &add);
    addVerb("edit", "Correct one", false, true, &edit);
    addVerb("remove", "Remove one", false, false, &remove);
}

} // namespace Pallisande::CommandLine
