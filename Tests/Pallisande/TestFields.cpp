#include "Pallisande/Widgets/BandBar.h"
#include "Pallisande/Widgets/Banner.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Card.h"
#include "Pallisande/Widgets/Chip.h"
#include "Pallisande/Widgets/ComboBox.h"
#include "Pallisande/Widgets/DateEdit.h"
#include "Pallisande/Widgets/EmptyPage.h"
#include "Pallisande/Widgets/FormLayout.h"
#include "Pallisande/Widgets/NumberEdit.h"
#include "Pallisande/Widgets/Popup.h"
#include "Pallisande/Widgets/SheetDialog.h"
#include "Pallisande/Widgets/SidebarView.h"
#include "Pallisande/Widgets/TextArea.h"
#include "Pallisande/Widgets/TimeEdit.h"
#include "Pallisande/Widgets/Toast.h"
#include "Tests/Pallisande/WidgetApplication.h"
#include "Tests/Pallisande/WidgetChecks.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QListView>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>

using namespace Pallisande;

namespace {

const QLocale english("en_GB");
constexpr Base::Day today { 2026, 3, 9 };

// What a key does to a field; the focus itself is nothing that a window without a screen can be asked about.
void type(QWidget& field, const QString& text)
{
    for (const auto character : text)
        QTest::keyClick(&field, character.toLatin1());
}
void leave(QWidget& field, Qt::FocusReason reason = Qt::TabFocusReason)
{
    QFocusEvent event(QEvent::FocusOut, reason);
    QApplication::sendEvent(&field, &event);
}
bool claims(QWidget& field, QKeyCombination keys)
{
    QKeyEvent event(QEvent::ShortcutOverride, keys.key(), keys.keyboardModifiers());
    event.ignore();
    QApplication::sendEvent(&field, &event);
    return event.isAccepted();
}
bool takesWheel(QWidget& field)
{
    QWheelEvent event(
        { 5, 5 }, { 5, 5 }, {}, { 0, -120 }, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&field, &event);
    return event.isAccepted();
}

constexpr auto undoKeys = Qt::CTRL | Qt::Key_Z;

// One of everything, as a page has it.
std::unique_ptr<QWidget> everything()
{
    auto page = std::make_unique<QWidget>();
    auto* box = new QVBoxLayout(page.get());
    auto* card = new Card("Details and everything else", page.get());
    box->addWidget(card);
    auto* form = new FormLayout(card);
    card->content()->addWidget(form);
    auto* title = new TextField;
    form->addRow("&Title of this job", title, FormLayout::Width::stretching);
    auto* amount = new DecimalEdit(english);
    amount->setCurrency("EUR");
    amount->setValue(Base::Decimal::ofParts(123456789, -2));
    form->addRow("Amount that arrived in the home currency", amount);
    amount->setText("12,3x");
    amount->commit();
    auto* count = new CountEdit(english);
    count->setCount(4812);
    form->addRow("Words", count);
    form->addBelow("A sentence that explains the field above and is long enough for more lines than one.");
    auto* day = new DateEdit(english, [] { return today; });
    day->setValue(Base::Day { 2026, 9, 30 });
    form->addRow("Due", day);
    auto* time = new TimeEdit(QLocale("en_US"));
    time->setValue(1439);
    form->addRow("Time", time);
    auto* choice = new ComboBox;
    choice->addItems({ "Nordwind GmbH", "Acme" });
    form->addRow("Client", choice);
    form->addRow("Notes", new TextArea, FormLayout::Width::stretching);
    auto* bar = new BandBar;
    BandMap<std::int64_t> counts;
    counts[MatchBand::noMatch] = 3;
    bar->setCounts(counts, "words");
    card->content()->addWidget(bar);
    card->content()->addWidget(new ChipLabel(Chip::of(InvoiceStatus::partlyPaid)));
    card->addToHeading(makeIconButton(Icon::gear, "Settings", card));
    card->addToHeading(makeButton("Open Client", Icon::person, ButtonKind::quiet, card));
    auto* banner = new Banner;
    banner->showProblem(
        "Pallisande couldn’t save your library, and this sentence needs two lines at least, or three.",
        "Try Again");
    box->addWidget(banner);
    auto* sidebar = new SidebarView;
    sidebar->setItems({ { Icon::clock, "Deadlines", 3, true, false, "Deadlines, 1 overdue, 2 due today" } });
    sidebar->setFixedHeight(60);
    box->addWidget(sidebar);
    auto* empty = new EmptyPage(Icon::list, "Select a job to see its price.", page.get());
    empty->addButton("New Job", ButtonKind::primary);
    box->addWidget(empty);
    return page;
}

} // namespace

TEST(Fields, commitWhatMakesSenseAndKeepTheRest)
{
    DecimalEdit field(english);
    field.setCurrency("EUR");
    field.setCheck([](const Base::Decimal& value) {
        return value.isNegative() ? QStringLiteral("A rate can’t be below zero.") : QString();
    });
    field.setValue(5);
    QSignalSpy committed(&field, &LineField::committed), hints(&field, &LineField::hintChanged);
    EXPECT_EQ(field.text(), "5.00");
    const struct {
        const char *typed, *shown, *problem, *value;
        int commits;
    } steps[] {
        { "12,50", "12.50", "", "12.5", 1 },
        { "12.5", "12.50", "", "12.5", 1 }, // The same value is no change.
        { "12,3x", "12,3x", "“12,3x” isn’t a number.", "12.5", 1 },
        { "0.005", "0.005", "EUR has 2 decimals.", "12.5", 1 },
        { "-3", "-3", "A rate can’t be below zero.", "12.5", 1 },
        { "", "", "A number is needed here.", "12.5", 1 },
        { "12.50", "12.50", "", "12.5", 1 }, // The committed text typed again.
        { "1,234", "1234.00", "", "1234", 2 },
    };
    for (const auto& [typed, shown, problem, value, commits] : steps) {
        SCOPED_TRACE(typed);
        field.setText(typed);
        EXPECT_EQ(field.commit(), *problem == 0);
        EXPECT_EQ(field.text(), shown);
        EXPECT_EQ(field.problem(), problem);
        EXPECT_EQ(field.value()->toString(), value);
        EXPECT_EQ(committed.count(), commits);
    }
    EXPECT_EQ(hints.last().first(), "Read as 1,234.");

    field.setText("half ty");
    field.setValue(1234); // A refresh of what it has already doesn't…
    EXPECT_EQ(field.text(), field.hasFocus() ? "half ty" : "1234.00");
    field.setText("nonsense");
    EXPECT_FALSE(field.commit());
    field.setValue(1234);
    EXPECT_EQ(field.text(), "nonsense"); // …throw away what was typed,
    field.setValue(7); // but another value, after an undo, does.
    EXPECT_EQ(field.text(), "7.00");
    EXPECT_EQ(field.problem(), "");
    field.setProblem("The invoice was issued meanwhile.");
    EXPECT_FALSE(field.commit()); // Losing the focus doesn't make a refusal from elsewhere vanish.

    CountEdit count(english);
    count.setOptional(true);
    count.setCount(4812);
    count.setText("1.5");
    EXPECT_FALSE(count.commit());
    EXPECT_EQ(count.problem(), "“1.5” isn’t a whole number.");
    count.clear();
    EXPECT_TRUE(count.commit());
    EXPECT_EQ(count.count(), std::nullopt);
    count.setText("9,007,199,254,740,992");
    EXPECT_FALSE(count.commit());
}

TEST(Fields, keysCommitRestoreAndPassOn)
{
    QWidget window;
    QVBoxLayout box(&window);
    TextField title;
    box.addWidget(&title);
    title.setValue("Leaflet");
    QSignalSpy committed(&title, &LineField::committed);
    type(title, "s");
    QTest::keyClick(&title, Qt::Key_Escape);
    EXPECT_EQ(title.text(), "Leaflet");
    EXPECT_FALSE(claims(title, undoKeys)); // Goes to the library.
    type(title, "x");
    EXPECT_TRUE(claims(title, undoKeys)); // Its own typing first.
    leave(title, Qt::PopupFocusReason);
    EXPECT_EQ(committed.count(), 0); // Its own menu.
    QTest::keyClick(&title, Qt::Key_Return);
    EXPECT_EQ(title.value(), "Leafletx");
    leave(title);
    EXPECT_EQ(committed.count(), 1);

    TextArea notes(&window);
    notes.setValue("a");
    EXPECT_FALSE(claims(notes, undoKeys));
    QSignalSpy noted(&notes, &TextArea::committed);
    type(notes, "b");
    EXPECT_TRUE(claims(notes, undoKeys));
    QTest::keyClick(&notes, Qt::Key_Escape);
    EXPECT_EQ(notes.value(), "ba"); // Esc commits here.
    EXPECT_EQ(noted.count(), 1);
    EXPECT_TRUE(notes.tabChangesFocus());
    const int three = notes.sizeHint().height();
    notes.resize(300, three);
    notes.setValue(QString("line\n").repeated(5));
    const int six = notes.sizeHint().height();
    notes.setValue(QString("line\n").repeated(30));
    EXPECT_GT(six, three);
    EXPECT_NEAR(notes.sizeHint().height() - three, (six - three) / 3.0 * 7, 8); // Ten lines at most.

    DecimalEdit german(QLocale("de_DE"));
    QTest::keyClick(&german, Qt::Key_Period, Qt::KeypadModifier);
    EXPECT_EQ(german.text(), ",");

    ComboBox choice;
    choice.addItems({ "EUR", "USD" });
    DateEdit day(english, [] { return today; });
    EXPECT_FALSE(takesWheel(choice));
    EXPECT_FALSE(takesWheel(day));
    EXPECT_EQ(choice.currentIndex(), 0);
}

TEST(Fields, datesStepByPart)
{
    DateEdit day(english, [] { return today; });
    day.setOptional(true);
    day.setText("soon");
    EXPECT_FALSE(day.commit());
    EXPECT_EQ(day.problem(), "“soon” isn’t a date.");
    day.clear();
    EXPECT_TRUE(day.commit());
    const auto press = [&](int key, int caret = -1) {
        if (caret < 0)
            day.selectAll();
        else
            day.setCursorPosition(caret);
        QTest::keyClick(&day, Qt::Key(key));
        EXPECT_TRUE(day.commit());
        return day.text().toStdString();
    };
    EXPECT_EQ(press(Qt::Key_T), "Mon 9 Mar 2026");
    EXPECT_EQ(press(Qt::Key_Plus), "Tue 10 Mar 2026");
    EXPECT_EQ(press(Qt::Key_Minus), "Mon 9 Mar 2026");
    EXPECT_EQ(press(Qt::Key_Up), "Tue 10 Mar 2026");
    EXPECT_EQ(press(Qt::Key_Down, 9), "Tue 10 Feb 2026");
    EXPECT_EQ(press(Qt::Key_Up, 15), "Wed 10 Feb 2027");
    day.setText("2026-03");
    QTest::keyClick(&day, Qt::Key_Minus); // In the midst of typing it is a character.
    EXPECT_EQ(day.text(), "2026-03-");
    EXPECT_TRUE((type(day, "06"), day.commit()));
    EXPECT_EQ(day.value(), (Base::Day { 2026, 3, 6 }));

    TimeEdit time(english);
    time.setValue(23 * 60 + 50);
    time.setCursorPosition(4);
    QTest::keyClick(&time, Qt::Key_Up);
    EXPECT_TRUE(time.commit());
    EXPECT_EQ(time.value(), 5); // Over midnight.
}

TEST(Fields, longListsAreSearched)
{
    ComboBox zones;
    zones.setSearchable(true);
    zones.addItems({ "Europe/Berlin", "Europe/Zürich", "America/New_York" });
    QSignalSpy activated(&zones, &QComboBox::activated);
    zones.show();
    QTest::keyClick(&zones, 'z');
    auto* popup = zones.findChild<Popup*>();
    ASSERT_TRUE(popup);
    auto* list = popup->findChild<QListView*>();
    auto* search = popup->findChild<QLineEdit*>();
    ASSERT_TRUE(list && search);
    EXPECT_EQ(search->text(), "z");
    search->setText("zur eur");
    EXPECT_EQ(list->model()->rowCount(), 1);
    QTest::keyClick(search, Qt::Key_Return);
    EXPECT_EQ(zones.currentText(), QStringLiteral("Europe/Zürich"));
    EXPECT_EQ(activated.count(), 1);
    EXPECT_EQ(searchForm(QStringLiteral("ÉCOLE Ｅ")), QStringLiteral("ecole e"));
}

TEST(SheetDialog, returnAndEscDoWhatTheSheetSays)
{
    for (const auto atReturn : { SheetDialog::Return::pressesDefault, SheetDialog::Return::onlyCommits }) {
        QWidget window;
        window.resize(900, 700);
        window.show();
        SheetDialog sheet(
            "Issue Invoice", "The number is taken when it is issued.", SheetDialog::Width::medium, &window);
        auto* field = new TextField;
        sheet.content()->addWidget(field);
        sheet.setFirstField(field);
        int acts = 0;
        QString refusal = "Add at least one line before issuing.";
        auto* issue = sheet.setDefault(
            "Issue", [&] { return ++acts, refusal; }, atReturn);
        sheet.openSheet();
        EXPECT_EQ(sheet.windowModality(), Qt::WindowModal);
        type(*field, "abc");
        QTest::keyClick(field, Qt::Key_Return);
        EXPECT_EQ(field->value(), "abc");
        const bool presses = atReturn == SheetDialog::Return::pressesDefault;
        EXPECT_EQ(acts, presses ? 1 : 0);
        QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, {}, {}, true);
        QApplication::sendEvent(&sheet, &held);
        EXPECT_EQ(acts, presses ? 1 : 0);
        issue->click();
        EXPECT_EQ(sheet.error(), refusal);
        EXPECT_TRUE(sheet.isVisible());
        type(*field, "d");
        QTest::keyClick(field, Qt::Key_Escape); // Cancel at once, and what was typed can be kept.
        EXPECT_FALSE(sheet.isVisible());
        EXPECT_EQ(field->value(), "abcd");
        refusal.clear();
        sheet.openSheet();
        issue->click();
        EXPECT_EQ(sheet.result(), QDialog::Accepted);
    }
}

TEST(Toast, pausesAndIsReplaced)
{
    QWidget over;
    over.resize(800, 600);
    Toast toast(&over);
    toast.showNotice("“Leaflet” was deleted.", "Undo");
    over.show();
    over.resize(900, 500);
    EXPECT_LE(toast.geometry().bottom(), 500);
    EXPECT_NEAR(toast.geometry().center().x(), 450, 1);
    QSignalSpy acted(&toast, &Toast::acted), ended(&toast, &Toast::ended);
    toast.showNotice("Exported everything.", "");
    EXPECT_EQ(toast.accessibleName(), "Exported everything.");
    toast.showNotice("“Leaflet” was deleted.", "Undo");
    toast.findChild<QPushButton*>()->click();
    EXPECT_EQ(acted.count(), 1);
    EXPECT_EQ(ended.count(), 1);
    EXPECT_TRUE(toast.isHidden());
}

TEST(BandBar, isSaidInWordsAndWalked)
{
    BandBar bar;
    bar.resize(200, 14);
    BandMap<std::int64_t> counts;
    counts[MatchBand::perfect] = 1;
    counts[MatchBand::repetitions] = 300;
    counts[MatchBand::noMatch] = 9'000'000;
    bar.setCounts(counts, "words");
    EXPECT_EQ(bar.accessibleName().toStdString(),
        "Analysis: 1 perfect, 0 context, 300 repetitions, 0 100 percent, 0 95 to 99 percent, 0 85 to 94 "
        "percent, "
        "0 75 to 84 percent, 0 50 to 74 percent, 9000000 no match words");
    std::vector<std::optional<MatchBand>> marks;
    QObject::connect(&bar, &BandBar::bandMarked, [&](auto band) { marks.push_back(band); });
    for (const auto key : { Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Left })
        QTest::keyClick(&bar, key);
    EXPECT_EQ(marks,
        (std::vector<std::optional<MatchBand>> {
            MatchBand::perfect, MatchBand::repetitions, MatchBand::noMatch, MatchBand::repetitions }));
    QMouseEvent move(
        QEvent::MouseMove, QPointF(1, 5), QPointF(1, 5), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&bar, &move); // However small its share, a band can be pointed at.
    EXPECT_EQ(bar.marked(), MatchBand::perfect);
}

TEST(Widgets, fitTheirTextAndHaveNamesAtEverySize)
{
    for (const int percent : { 85, 100, 150, 200 }) {
        SCOPED_TRACE(percent);
        themeController().setTextSize(percent);
        const auto page = everything();
        page->resize(620, 10);
        const auto fit = [&] { // As in a scroll area.
            QApplication::processEvents();
            page->resize(620, page->heightForWidth(620));
            QApplication::processEvents();
        };
        page->show();
        fit();
        EXPECT_EQ(clippedTexts(*page), std::vector<std::string> {});
        EXPECT_EQ(namelessWidgets(*page), std::vector<std::string> {});
        themeController().setTextSize(200); // On show, too.
        fit();
        EXPECT_EQ(clippedTexts(*page), std::vector<std::string> {});

        QWidget window;
        window.resize(920, 600);
        SheetDialog sheet("New Job",
            "A job holds the counts, the deadline and the price of one piece of work.",
            SheetDialog::Width::medium, &window);
        sheet.content()->addWidget(everything().release());
        sheet.setDefault("Add Job", [] { return QString(); });
        sheet.showError("A job belongs to a client, whose rates and weights price it, so add one first.");
        sheet.show();
        QApplication::processEvents();
        EXPECT_LE(sheet.height(), 540);
        EXPECT_EQ(clippedTexts(sheet), std::vector<std::string> {});
        EXPECT_EQ(namelessWidgets(sheet), std::vector<std::string> {});
        themeController().setTextSize(100);
    }
}
