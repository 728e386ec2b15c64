#include "Pallisande/Screens/Invoices/InvoiceDetail.h"
#include "Pallisande/Screens/Invoices/NewInvoiceMenu.h"
#include "Pallisande/Widgets/Popup.h"
#include "Tests/Pallisande/InvoiceWindow.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QMenu>

namespace fs = std::filesystem;
using namespace Pallisande;
using ::Test::decimal;
using ::Test::id;
using ::Test::InvoiceWindow;

namespace {

using IDs = std::vector<Base::Uuid>;

std::vector<std::string> texts(const QMenu& menu)
{
    std::vector<std::string> texts;
    for (const auto* action : menu.actions()) {
        if (!action->isSeparator())
            texts.push_back(action->text().toStdString());
    }
    return texts;
}

// The sentences in the popup that is open; it is closed.
std::vector<std::string> popupTexts()
{
    std::vector<std::string> texts;
    if (auto* popup = QApplication::activePopupWidget()) {
        for (auto* label : popup->findChildren<QLabel*>())
            texts.push_back(label->text().toStdString());
        popup->close();
    }
    return texts;
}

} // namespace

TEST(InvoicesPage, aDraftIsMadeEditedIssuedAndLocked)
{
    InvoiceWindow world(::Test::sampleLibrary());
    QMenu menu;
    prepareNewInvoiceMenu(&menu, *world.model);
    emit menu.aboutToShow();
    EXPECT_EQ(texts(menu),
        (std::vector<std::string> { "Nordlicht Verlag: 2 jobs, 150.00\u00A0EUR",
            "Harbor Books: 1 job, 200.00\u00A0USD", "Blank Draft" }));
    EXPECT_EQ(texts(*menu.actions().back()->menu()),
        (std::vector<std::string> { "Harbor Books", "Nordlicht Verlag" }));
    world.model->invoices().makeDraft(IDs { id(11) });
    QApplication::processEvents();
    EXPECT_EQ(world.text("invoiceTitle"), "Draft");
    const auto line = [&](std::size_t place) { return world.invoice().lines.at(place); };

    // Amounts follow quantity and price unless they were typed.
    world.type("linePrice", "0.1234");
    EXPECT_EQ(line(0).amount, decimal("123.40"));
    world.type("lineAmount", "99");
    EXPECT_EQ(line(0).amount, decimal("99"));
    EXPECT_EQ(world.text("lineTyped"), "Typed over");
    EXPECT_EQ(world.text("linesTotal"), "117.81"); // With 19%.
    world.click("lineReckon");
    EXPECT_EQ(line(0).amount, decimal("123.40"));
    EXPECT_FALSE(world.shows("lineTyped"));
    world.type("lineQuantity", "12,3x");
    EXPECT_EQ(line(0).quantity, decimal("1000"));
    EXPECT_EQ(world.find<QLineEdit>("lineQuantity")->text(), "12,3x"); // As typed, with the reason below.
    QTest::keyClick(world.find<QLineEdit>("lineQuantity"), Qt::Key_Escape);

    // The rest of its client's work, and what has changed meanwhile.
    QTest::mouseClick(world.find<QWidget>("otherJobs")->findChild<QPushButton*>(), Qt::LeftButton);
    ASSERT_EQ(world.invoice().lines.size(), 2u);
    EXPECT_FALSE(world.shows("otherJobs"));
    EXPECT_TRUE(world.shows("linesOutdated")); // The price was typed.
    EXPECT_FALSE(world.shows("clientOutdated"));
    world.model->clients().edit(id(1), "Change Name", [](Client& client) { client.name = "Nordlicht AG"; });
    ASSERT_TRUE(world.shows("clientOutdated"));
    QTest::mouseClick(world.find<QWidget>("clientOutdated")->findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_EQ(world.invoice().client.name, "Nordlicht AG");
    QTest::mouseClick(world.find<QWidget>("linesOutdated")->findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_EQ(line(0).amount, decimal("100"));

    // Lines of one's own, moved and removed.
    world.click("addLine");
    world.type("lineTitle", "Courier", 2);
    world.type("linePrice", "7.50", 2);
    EXPECT_EQ(line(2).amount, decimal("7.50"));
    QTest::keyClick(world.find<QLineEdit>("lineTitle", 2), Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(line(1).title, "Courier");
    EXPECT_EQ(world.find<QLineEdit>("lineTitle", 1)->text(), "Courier");
    auto* acts = world.find<QToolButton>("lineActs", 1);
    emit acts->menu()->aboutToShow();
    acts->menu()->actions().back()->trigger();
    EXPECT_EQ(world.invoice().lines.size(), 2u);
    EXPECT_EQ(world.model->undoText(), "Undo Change Draft");
    world.model->undo();
    EXPECT_EQ(world.invoice().lines.size(), 3u);

    world.type("Due date", "1 Apr");
    EXPECT_EQ(world.invoice().dueDate, ::Test::noon("2026-04-01"));
    world.type("Tax %", "7");
    EXPECT_EQ(world.invoice().taxPercent, decimal("7"));
    world.click("lineJob");
    EXPECT_EQ(world.model->section(), AppSection::jobs);
    world.model->goBack();

    // Typed and not committed, it belongs to the document all the same.
    auto* note = world.find<QLineEdit>("Tax note");
    note->setFocus(Qt::TabFocusReason);
    QTest::keyClicks(note, "Reverse charge");
    world.trigger(Command::issue);
    EXPECT_EQ(world.invoice().taxNote, "Reverse charge");
    world.click("issue");
    ASSERT_TRUE(world.invoice().isIssued()) << world.problem();
    EXPECT_EQ(world.notice(), "Issued INV-2026-001.");
    EXPECT_TRUE(fs::exists(world.library / "Invoices" / "INV-2026-001.pdf"));
    EXPECT_EQ(world.text("invoiceTitle"), "INV-2026-001");
    EXPECT_EQ(world.text("invoiceState"), "· issued 9 Mar 2026 · due 1 Apr 2026 (in 23 days)");
    EXPECT_FALSE(world.shows("lineTitle"));
    EXPECT_FALSE(world.shows("addLine"));
    QTest::mouseClick(world.find<QLabel>("Tax note text"), Qt::LeftButton);
    EXPECT_EQ(popupTexts(),
        std::vector<std::string> {
            "INV-2026-001 is issued and can’t be changed. Make a credit note to correct it." });
    EXPECT_EQ(world.model->undoText(), "Undo Change Name"); // What the invoice isn't concerned by.

    // A PDF is in the way: nothing is issued, and no number used.
    world.model->invoices().makeBlankDraft(id(2));
    world.click("addLine");
    world.type("linePrice", "10");
    ::Test::writeFile(world.library / "Invoices" / "INV-2026-002.pdf", "%PDF of somebody else");
    world.trigger(Command::issue);
    world.click("issue");
    EXPECT_FALSE(world.invoice().isIssued());
    ASSERT_TRUE(world.dialog);
    EXPECT_EQ(world.dialog->error().toStdString(),
        "The invoice wasn’t issued, because its PDF couldn’t be stored: A PDF for INV-2026-002 is already "
        "stored; an issued PDF is never replaced.");
    world.dialog->reject();
    EXPECT_FALSE(world.model->sheet());
    world.trigger(Command::deleteDraft);
    EXPECT_EQ(world.text("invoiceTitle"), "INV-2026-001");
}

TEST(InvoicesPage, paymentsAreListedChangedAndTakenBack)
{
    InvoiceWindow world(::Test::sampleLibrary());
    auto& model = *world.model;
    model.invoices().makeDraft(IDs { id(21) }); // 200.00 USD
    world.issue();
    EXPECT_EQ(
        world.text("rateText"), "No exchange rate for this day yet. You can add one later from the invoice.");
    world.click("addRate");
    world.type("rate", "0.9");
    EXPECT_EQ(world.text("rateText"), "1 USD = 0.900000 EUR · typed, 9 Mar 2026");
    EXPECT_FALSE(world.shows("addRate"));

    world.trigger(Command::recordPayment);
    EXPECT_TRUE(world.commit("paymentReceived", "43.20"));
    EXPECT_EQ(world.text("bankKept"), "The bank kept 136.80\u00A0EUR.");
    world.type("paymentSum", "50");
    ASSERT_EQ(world.invoice().payments.size(), 1u); // Return in a valid field is the button.
    EXPECT_EQ(world.text("stillDue"), "150.00\u00A0USD");
    EXPECT_EQ(world.text("paymentAmount"), "50.00");
    auto* acts = world.find<QToolButton>("paymentActs")->menu();
    acts->actions()[0]->trigger();
    EXPECT_EQ(world.text("bankKept"), "The bank kept 1.80\u00A0EUR.");
    world.type("paymentSum", "60");
    EXPECT_EQ(world.text("stillDue"), "140.00\u00A0USD");
    acts->actions()[1]->trigger();
    EXPECT_TRUE(world.invoice().payments.empty());
    EXPECT_EQ(model.undoText(), "Undo Remove Payment");
    model.undo();
    EXPECT_EQ(world.text("stillDue"), "140.00\u00A0USD");

    // Overdue when midnight has passed, without anybody doing anything.
    EXPECT_EQ(world.text("invoiceState"), "· issued 9 Mar 2026 · due 23 Mar 2026 (in 14 days)");
    world.now = ::Test::instant("2026-03-24T09:00:00.000Z");
    world.timers.advance(std::chrono::minutes(2));
    EXPECT_EQ(world.text("invoiceState"), "· issued 9 Mar 2026 · due 23 Mar 2026 (1 day ago)");
    world.trigger(Command::copyReminder);
    const auto reminder = qApp->clipboard()->text().toStdString();
    EXPECT_NE(reminder.find("invoice INV-2026-001 of 9 Mar 2026 over 200.00\u00A0USD was due on 23 Mar 2026. "
                            "140.00\u00A0USD is still open"),
        std::string::npos)
        << reminder;

    // With another one, both on one day.
    const auto first = world.current();
    model.invoices().makeDraft(IDs { id(11) });
    world.issue();
    const auto second = world.current();
    world.page->list()->selectAll();
    QApplication::processEvents();
    world.trigger(Command::payInFull);
    auto* sheet = world.window->findChild<SheetDialog*>("payInFullSheet");
    ASSERT_TRUE(sheet);
    sheet->findChild<QLineEdit*>("payDay")->setText("20 Mar 2026");
    sheet->findChild<DateEdit*>("payDay")->commit();
    for (auto* button : sheet->findChildren<QPushButton*>()) {
        if (button->text() == "Mark 2 Invoices Paid")
            button->click();
    }
    EXPECT_EQ(sheet->error(), "");
    EXPECT_EQ(world.problem(), "");
    for (const auto& invoice : { first, second }) {
        EXPECT_EQ(model.invoices().status(*model.invoice(invoice)), InvoiceStatus::paid);
        EXPECT_EQ(model.invoice(invoice)->payments.back().date, ::Test::noon("2026-03-20"));
    }
    EXPECT_EQ(world.text("invoiceState"), "· issued 24 Mar 2026 · paid on 20 Mar 2026");
}

TEST(InvoicesPage, creditNotesAreLinkedAndFreeTheJobs)
{
    InvoiceWindow world(::Test::sampleLibrary());
    auto& model = *world.model;
    model.invoices().makeDraft(IDs { id(11) }); // 119.00 with tax.
    world.issue();
    const auto invoice = world.current();
    world.trigger(Command::makeCreditNote);
    EXPECT_EQ(world.text("invoiceTitle"), "Draft credit note for INV-2026-001");
    EXPECT_EQ(world.text("leftToCredit"), "119.00\u00A0EUR is left to credit.");
    EXPECT_FALSE(world.shows("Due date")); // It is the invoice's.
    const auto note = world.current();

    world.type("lineAmount", "-100.01");
    world.trigger(Command::issue);
    EXPECT_EQ(
        world.dialog->error().toStdString(), "The credit note is for more than is left on INV-2026-001.");
    EXPECT_FALSE(world.find<QPushButton>("issue")->isEnabled());
    world.dialog->reject();
    world.type("lineAmount", "-40");
    world.issue();
    EXPECT_EQ(world.text("invoiceTitle"), "CN-2026-001");
    world.click("documentLink");
    EXPECT_EQ(world.current(), invoice);
    EXPECT_EQ(model.invoices().creditNotes(invoice), IDs { note });
    EXPECT_EQ(model.job(id(11))->status, JobStatus::invoiced);

    world.trigger(Command::makeCreditNote);
    EXPECT_EQ(world.text("leftToCredit"), "71.40\u00A0EUR is left to credit.");
    model.select(AppSection::invoices, invoice);
    world.trigger(Command::makeCreditNote); // One draft only.
    EXPECT_EQ(world.problem(), "A draft credit note for INV-2026-001 is already open.");
    model.select(AppSection::invoices, model.problem()->subject);
    world.issue();
    EXPECT_EQ(model.job(id(11))->status, JobStatus::delivered);
    EXPECT_FALSE(model.job(id(11))->invoiceID);
    model.select(AppSection::invoices, invoice);
    EXPECT_EQ(world.text("invoiceState"), "· issued 9 Mar 2026 · credited by CN-2026-001, CN-2026-002");
}

TEST(InvoicesPage, theListIsFilteredCheckedAndTakenElsewhere)
{
    auto library = ::Test::sampleLibrary();
    ::Test::issued(library, { 11 }, ::Test::momentOn("2025-12-30"));
    ::Test::issued(library, { 12 });
    ::Test::issued(library, { 21 });
    library.invoices[1].number = "INV-2026-004"; // By hand.
    library.invoices[1].sequence = 4;
    InvoiceWindow world(library);
    auto& model = *world.model;
    EXPECT_EQ(world.text("numbering"), "Invoices 2026: missing INV-2026-003 (and 1 more)");
    world.trigger(Command::checkNumbering);
    EXPECT_EQ(popupTexts(),
        (std::vector<std::string> { "Numbering", "Invoices 2026: missing INV-2026-003",
            "Invoices 2026: the next number (3) doesn’t follow INV-2026-004" }));

    auto* year = world.find<QComboBox>("yearFilter");
    year->setCurrentIndex(1);
    EXPECT_EQ(year->currentText(), "This year");
    emit year->activated(1);
    EXPECT_EQ(model.invoices().ids().size(), 2u);
    EXPECT_EQ(world.page->countText(), "2 of 3 invoices");
    auto* status = world.find<QComboBox>("statusFilter");
    status->setCurrentIndex(1);
    emit status->activated(1);
    EXPECT_TRUE(model.invoices().ids().empty());
    model.show(AppSection::invoices, library.invoices[0].id); // Clears what hides it.
    QApplication::processEvents();
    EXPECT_EQ(status->currentText(), "All invoices");
    EXPECT_EQ(year->currentText(), "Any year");

    world.page->list()->selectAll();
    world.trigger(Command::copyRows);
    EXPECT_EQ(qApp->clipboard()->text().section('\n', -1).toStdString(),
        "INV-2025-001\tNordlicht Verlag\t30 Dec 2025\t119.00\tEUR\tOverdue 55 days");

    // Its PDF isn't there, which the preview says; nothing is dragged but the text.
    model.select(AppSection::invoices, library.invoices[0].id);
    QApplication::processEvents();
    EXPECT_EQ(world.text("previewSentence"),
        "The stored PDF for INV-2025-001 is missing from the library folder. Restore it from a backup of the "
        "folder; Pallisande doesn’t make a new one, so the issued document stays as issued.");
    EXPECT_EQ(world.problem(), "");
    EXPECT_EQ(world.page->copyOfPDF(library.invoices[0].id), fs::path());
}

TEST(InvoicesPage, thePreviewShowsDraftsAsTheyWillBeAndWhatIsStored)
{
    InvoiceWindow world(::Test::sampleLibrary());
    auto& model = *world.model;
    model.invoices().makeDraft(IDs { id(11) });
    QApplication::processEvents();
    auto* preview = world.preview();
    ASSERT_TRUE(preview->isDrawn());
    EXPECT_EQ(preview->pages(), 1);
    const auto look = [&] { return preview->grab().toImage(); };
    const auto before = look();
    world.type("lineTitle", "Something else");
    EXPECT_FALSE(preview->isDrawn()); // A quarter of a second after the last edit.
    EXPECT_EQ(look(), before);
    world.timers.advance(std::chrono::milliseconds(250));
    EXPECT_TRUE(preview->isDrawn());
    EXPECT_NE(look(), before);
    preview->setZoom(200);
    EXPECT_GT(preview->pane()->findChild<QWidget*>("qt_scrollarea_viewport")->childrenRect().height(), 2000);
    preview->setZoom(0);
    for (int line = 0; line < 60; ++line)
        model.invoices().addLine(world.current());
    world.timers.advance(std::chrono::milliseconds(250));
    EXPECT_GT(preview->pages(), 1);
    preview->setPage(1);
    EXPECT_EQ(world.text("previewPlace"), "2 of " + std::to_string(preview->pages()));

    world.issue();
    EXPECT_TRUE(preview->isDrawn()); // From the file that was stored.
    EXPECT_GT(preview->pages(), 1);
    const auto stored = world.library / "Invoices" / "INV-2026-001.pdf";
    const auto copy = world.page->copyOfPDF(world.current());
    EXPECT_NE(copy, stored);
    EXPECT_EQ(::Test::fileText(copy), ::Test::fileText(stored));

    // Another file in its place isn't shown as if it were the one that was issued.
    const auto invoice = world.current();
    fs::permissions(stored, fs::perms::owner_all);
    ::Test::writeFile(stored, ::Test::fileText(stored) + "\n% altered");
    model.invoices().makeDraft(IDs { id(12) });
    model.select(AppSection::invoices, invoice);
    QApplication::processEvents();
    EXPECT_EQ(world.text("previewSentence"), "The stored PDF opens in your PDF viewer.");

    world.trigger(Command::inspector);
    EXPECT_FALSE(preview->isVisible());
    world.window->resize(740, 600);
    QApplication::processEvents();
    world.trigger(Command::inspector); // Over the cards, where there isn't room for both.
    EXPECT_TRUE(preview->isVisible());
    EXPECT_FALSE(world.page->panes()[1]->isVisible());
}

TEST(InvoicesPage, lettersSayWhatIsAttached)
{
    auto library = ::Test::sampleLibrary();
    library.clients[0].email = "office@nordlicht.example";
    InvoiceWindow world(library);
    world.model->invoices().makeDraft(IDs { id(11) });
    world.issue();
    world.trigger(Command::emailClient);
    ASSERT_EQ(world.openedAddresses.size(), 1u);
    const auto letter = QString::fromStdString(world.openedAddresses[0]).split("&body=");
    EXPECT_EQ(letter[0], "mailto:office@nordlicht.example?subject=Invoice%20INV-2026-001");
    EXPECT_FALSE(letter[1].contains(' '));
    EXPECT_EQ(QUrl::fromPercentEncoding(letter[1].toUtf8()).toStdString(),
        "Dear Ada Ström,\r\n\r\nplease find attached invoice INV-2026-001 over 119.00\u00A0EUR, due on 23 "
        "Mar "
        "2026.\r\n\r\nKind regards\r\nAda Writer");
    world.trigger(Command::copyNumber);
    EXPECT_EQ(qApp->clipboard()->text(), "INV-2026-001");
}

TEST(InvoicesPage, everyStateFitsAndIsNamed)
{
    auto library = ::Test::sampleLibrary();
    library.jobs[0].title = "Annual report, part 2";
    ::Test::issued(library, { 21 });
    ::Test::pay(library, library.invoices[0].id, "60");
    library.invoices[0].payments[0].note = "Bank transfer, less their fee";
    ::Test::issued(library, { 12 });
    ::Test::credit(library, library.invoices[1].id, 10);
    ::Test::draft(library, { 11 });
    for (const auto size : { QSize(1000, 780), QSize(864, 560) }) {
        InvoiceWindow world(library, size);
        for (const int textSize : { 100, 150, 200 }) {
            themeController().setTextSize(textSize);
            for (const auto& invoice : world.model->library().invoices) {
                SCOPED_TRACE(invoice.number.value_or("Draft") + " at " + std::to_string(textSize));
                world.model->select(AppSection::invoices, invoice.id);
                for (int turn = 0; turn < 5; ++turn) // Scroll bars come and go.
                    QApplication::processEvents();
                auto clipped = clippedTexts(*world.page);
                std::erase_if(clipped, [&](const std::string& text) { // Which scrolls in its field.
                    return !invoice.isIssued() && text == invoice.lines[0].detail;
                });
                EXPECT_EQ(clipped, std::vector<std::string>());
                EXPECT_EQ(namelessWidgets(*world.page), std::vector<std::string>());
            }
        }
        themeController().setTextSize(100);
    }
}
