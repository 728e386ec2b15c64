#include "Tests/Pallisande/InvoiceWindow.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;
using namespace Pallisande;
using ::Test::decimal;
using ::Test::id;
using ::Test::InvoiceWindow;

namespace {

using IDs = std::vector<Base::Uuid>;

bool canIssue(InvoiceWindow& world) { return world.find<QPushButton>("issue")->isEnabled(); }

} // namespace

// The one thing that can't be taken back: what will be stored was seen, and the button itself was pressed.
TEST(IssueSheet, issuesOnlyWhatWasSeenAndOnlyByItsButton)
{
    InvoiceWindow world(::Test::sampleLibrary());
    auto& model = *world.model;
    model.invoices().makeDraft(IDs { id(11) });
    world.background.isHeld = true;
    world.trigger(Command::issue);
    EXPECT_FALSE(canIssue(world)); // The preview isn't there yet.
    world.background.letGo();
    EXPECT_TRUE(canIssue(world));
    EXPECT_EQ(world.find<QPushButton>("issue")->text(), "Issue INV-2026-001");
    EXPECT_EQ(world.text("issueNumber"), "INV-2026-001");
    EXPECT_FALSE(world.shows("issueRate")); // Nothing is foreign.

    const auto due = [&] { return world.find<DateEdit>("dueDay")->value(); };
    EXPECT_EQ(due(), ::Test::day("2026-03-23")); // In 14 days, and follows
    world.type("issueDay", "4 Jan 2027");
    EXPECT_EQ(due(), ::Test::day("2027-01-18"));
    EXPECT_EQ(world.text("issueNumber"), "INV-2027-001"); // Numbered by years.
    EXPECT_EQ(world.text("issueWarnings"), "The issue date is in the future.");
    world.type("dueDay", "1 Jan 2027"); // until it is typed.
    world.type("issueDay", "5 Jan 2027");
    EXPECT_EQ(due(), ::Test::day("2027-01-01"));
    EXPECT_EQ(world.text("issueWarnings"),
        "The issue date is in the future.\nThe due date is before the issue date.");
    world.type("issueDay", "9 Mar 2026");
    QTest::keyClick(world.find<QLineEdit>("issueDay"), Qt::Key_Return);
    QTest::keyClick(world.dialog.get(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_FALSE(world.invoice().isIssued()); // Return only commits.

    world.dialog->reject();
    world.trigger(Command::issue); // Neither date is kept.
    EXPECT_EQ(world.find<DateEdit>("issueDay")->value(), ::Test::day("2026-03-09"));
    EXPECT_EQ(due(), ::Test::day("2026-03-23"));

    // While it is drawn and stored, there is no way back and no second time.
    world.background.isHeld = true;
    world.click("issue");
    EXPECT_EQ(world.find<QPushButton>("issue")->text(), "Issuing…");
    EXPECT_FALSE(canIssue(world));
    world.dialog->reject();
    EXPECT_TRUE(model.sheet());
    world.background.letGo();
    EXPECT_TRUE(world.invoice().isIssued()) << world.problem();
    EXPECT_EQ(world.invoice().dueDate, ::Test::noon("2026-03-23"));
    EXPECT_FALSE(model.sheet());
    EXPECT_EQ(world.notice(), "Issued INV-2026-001.");
}

TEST(IssueSheet, saysWhyItCantIssue)
{
    InvoiceWindow world(::Test::sampleLibrary());
    auto& model = *world.model;
    const struct {
        std::string sentence;
        std::function<void(Invoice&)> change;
    } cases[] {
        { "Add at least one line before issuing.", [](Invoice& draft) { draft.lines.clear(); } },
        { "An invoice’s total can’t be below zero; make a credit note instead.",
            [](Invoice& draft) { draft.lines = { { .id = id(71), .quantity = 1, .amount = -5 } }; } },
        { "No installed font has the characters “\uF8FF”; they would print as empty boxes.",
            [](Invoice& draft) { draft.lines = { { .id = id(72), .title = "\uF8FF", .amount = 5 } }; } },
    };
    model.invoices().makeDraft(IDs { id(11) });
    for (const auto& [sentence, change] : cases) {
        model.invoices().edit(world.current(), "Change Draft", change);
        world.trigger(Command::issue);
        ASSERT_TRUE(world.dialog);
        EXPECT_EQ(world.dialog->error().toStdString(), sentence);
        EXPECT_FALSE(canIssue(world));
        world.dialog->reject();
    }
}

TEST(IssueSheet, takesTheRateOfTheDay)
{
    InvoiceWindow world(::Test::sampleLibrary());
    world.model->invoices().makeDraft(IDs { id(21) });
    world.trigger(Command::issue);
    EXPECT_EQ(world.text("issueRateText"),
        "No exchange rate for this day yet. You can add one later from the invoice.");
    world.type("issueRate", "0");
    world.click("issue");
    EXPECT_FALSE(world.invoice().isIssued()); // It makes no sense.
    world.type("issueRate", "0.9");
    world.click("issue");
    ASSERT_TRUE(world.invoice().isIssued()) << world.problem();
    EXPECT_EQ(world.invoice().homeRate->rate, decimal("0.9"));
    EXPECT_EQ(world.model->library().rates.typed.size(), 1u);
}

TEST(PaymentSheet, keepsWhatWasTypedUntilItIsRecorded)
{
    auto library = ::Test::sampleLibrary();
    ::Test::issued(library, { 11 }); // 119.00
    InvoiceWindow world(library);
    world.model->select(AppSection::invoices, library.invoices[0].id);
    world.trigger(Command::recordPayment);
    EXPECT_EQ(world.find<QLineEdit>("paymentSum")->text(), "119.00");
    EXPECT_EQ(world.find<DateEdit>("paymentDay")->value(), ::Test::day("2026-03-09"));
    EXPECT_FALSE(world.shows("paymentRate"));
    EXPECT_TRUE(world.commit("paymentSum", "130"));
    EXPECT_EQ(world.text("paymentHint"), "This is more than is still due (119.00\u00A0EUR).");
    EXPECT_FALSE(world.commit("paymentSum", "0"));
    EXPECT_EQ(world.find<LineField>("paymentSum")->problem(), "A payment must be more than zero.");
    EXPECT_FALSE(world.commit("paymentSum", "1.005"));
    EXPECT_TRUE(world.commit("paymentSum", "119"));
    EXPECT_TRUE(world.commit("paymentReceived", "116.50")); // Banks take fees at home, too.
    EXPECT_EQ(world.text("bankKept"), "The bank kept 2.50\u00A0EUR.");
    EXPECT_TRUE(world.commit("paymentDay", "2 Mar 2026"));
    EXPECT_TRUE(world.commit("paymentNote", "Bank transfer"));

    world.dialog->reject();
    world.trigger(Command::recordPayment);
    EXPECT_EQ(world.text("bankKept"), "The bank kept 2.50\u00A0EUR.");
    QTest::keyClick(world.find<QLineEdit>("paymentNote"), Qt::Key_Return);
    ASSERT_EQ(world.invoice().payments.size(), 1u) << world.problem();
    const auto& payment = world.invoice().payments[0];
    EXPECT_EQ(payment.date, ::Test::noon("2026-03-02"));
    EXPECT_EQ(payment.receivedHome, decimal("116.50"));
    EXPECT_EQ(payment.note, "Bank transfer");
    EXPECT_EQ(world.model->undoText(), "Undo Record Payment");

    world.trigger(Command::recordPayment); // What was recorded isn't proposed again.
    EXPECT_EQ(world.find<QLineEdit>("paymentReceived")->text(), "");
    world.dialog->reject();
}

TEST(TypedRateSheet, doubtsARateThatIsFarFromTheBanks)
{
    auto library = ::Test::sampleLibrary();
    ::Test::issued(library, { 21 });
    library.rates.ecb = { { ::Test::noon("2026-03-06"), { { "USD", decimal("1.25") } } },
        { ::Test::noon("2026-03-10"), { { "USD", decimal("2") } } } };
    InvoiceWindow world(library);
    world.model->openSheet(
        TypedRateSheet { "USD", "EUR", ::Test::noon("2026-03-09"), library.invoices[0].id });
    QApplication::processEvents();
    EXPECT_EQ(world.text("rateBothWays"), "The ECB’s rate of that day is 0.800000.");
    EXPECT_TRUE(world.commit("rate", "0.85"));
    EXPECT_EQ(world.text("rateBothWays"),
        "1 USD = 0.85 EUR, 1 EUR = 1.176471 USD\nThe ECB’s rate of that day is 0.800000.");
    EXPECT_FALSE(world.dialog->findChild<QWidget*>("swap")->isVisible());
    EXPECT_FALSE(world.commit("rate", "-1"));
    EXPECT_TRUE(world.commit("rate", "1.2"));
    EXPECT_EQ(
        world.text("rateDoubt"), "This is far from the ECB’s 0.800000. Check that the direction is right.");
    world.click("swap");
    EXPECT_EQ(world.find<QLineEdit>("rate")->text(), "0.833333");
    EXPECT_FALSE(world.dialog->findChild<QWidget*>("swap")->isVisible());
    QTest::keyClick(world.find<QLineEdit>("rate"), Qt::Key_Return);
    EXPECT_FALSE(world.model->sheet()) << world.problem();
    EXPECT_EQ(world.model->invoice(library.invoices[0].id)->homeRate->rate, decimal("0.833333"));
}

TEST(InvoiceSheets, fitAndAreNamed)
{
    auto library = ::Test::sampleLibrary();
    ::Test::issued(library, { 21 });
    ::Test::draft(library, { 11 });
    library.clients[0].currency = "USD";
    library.invoices[1].currency = "USD";
    InvoiceWindow world(library);
    const Sheet sheets[] { IssueSheet { library.invoices[1].id },
        PaymentSheet { library.invoices[0].id, std::nullopt },
        TypedRateSheet { "USD", "EUR", world.now, library.invoices[0].id } };
    for (const int textSize : { 100, 150, 200 }) {
        themeController().setTextSize(textSize);
        for (const auto& sheet : sheets) {
            SCOPED_TRACE(std::to_string(sheet.index()) + " at " + std::to_string(textSize));
            world.model->openSheet(sheet);
            QApplication::processEvents();
            ASSERT_TRUE(world.dialog);
            EXPECT_EQ(clippedTexts(*world.dialog), std::vector<std::string>());
            EXPECT_EQ(namelessWidgets(*world.dialog), std::vector<std::string>());
            world.dialog->reject();
        }
    }
    themeController().setTextSize(100);
}
