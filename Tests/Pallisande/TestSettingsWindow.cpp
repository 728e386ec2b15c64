#include "Pallisande/Settings/LogoWell.h"
#include "Pallisande/Settings/SettingsWindow.h"
#include "Pallisande/Widgets/Banner.h"
#include "Pallisande/Widgets/CodeBox.h"
#include "Pallisande/Widgets/LineField.h"
#include "Pallisande/Widgets/TextArea.h"
#include "Tests/Pallisande/Events.h"
#include "Tests/Pallisande/ModelWorld.h"
#include "Tests/Pallisande/PageTexts.h"
#include "Tests/Pallisande/WidgetApplication.h"
#include "Tests/Pallisande/WidgetChecks.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QCheckBox>
#include <QDropEvent>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>

using namespace Pallisande;
using ::Test::fs::path;

namespace {

struct SettingsWorld : ::Test::World {
    explicit SettingsWorld(const Library& holding = ::Test::sampleLibrary())
    {
        start(holding);
        window = std::make_unique<SettingsWindow>(*model, nullptr);
        window->show();
    }

    template <typename Widget = LineField> Widget& find(const QString& name) const
    {
        auto* widget = window->findChild<Widget*>(name);
        if (!widget)
            throw std::runtime_error(name.toStdString());
        return *widget;
    }
    void show(SettingsWindow::Page page) const { window->showPage(page); }
    void type(const QString& name, const QString& text) const
    {
        auto& field = find(name);
        field.setFocus();
        field.selectAll();
        QTest::keyClicks(&field, text);
        QTest::keyClick(&field, Qt::Key_Return);
    }
    void press(const QString& name) const
    {
        QTest::mouseClick(&find<QAbstractButton>(name), Qt::LeftButton, {}, { 8, 8 });
    }
    std::string text(const QString& name) const { return find<QLabel>(name).text().toStdString(); }
    bool says(const std::string& sentence) const { return textsOf(*window).contains(sentence); }
    const Profile& profile() const { return model->library().profile; }

    path picture(const char* name, int padding = 0) const
    {
        QImage image(300, 120, QImage::Format_RGB32);
        image.fill(Qt::darkBlue);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        bytes.append(QByteArray(padding > 0 ? padding - bytes.size() : 0, '\0'));
        const auto file = root / name;
        ::Test::writeFile(file, bytes.toStdString());
        return file;
    }

    std::unique_ptr<SettingsWindow> window;
};

} // namespace

TEST(SettingsWindow, saysWhatWorksAndNothingElse)
{
    SettingsWorld world;
    const auto texts = textsOf(*world.window, true);
    for (const std::string text :
        { "Printed at the top of quotes and invoices", "Currency and paper",
            "Your currency (for yearly totals)", "Remind me 24 hours and 2 hours before a deadline",
            "Defaults printed on invoices", "Quotes valid for", "Year in the number",
            "Start again at 1 each year", "Invoice prefix", "Credit note prefix", "Quote prefix",
            "Moving from another tool? Set the first number before you issue in Pallisande. After that the "
            "series only counts up, so there are no gaps.",
            "Pallisande makes PDF invoices, not structured e-invoices (XRechnung, ZUGFeRD, Factur-X), and "
            "applies only the tax percentage you type.",
            "The folder holds your records, a copy of every imported report, every issued PDF as issued, and "
            "dated backups. Keep it in a folder you already back up or sync; Pallisande itself never uploads "
            "anything.",
            "Move to Another Folder…", "Second Backup Folder…", "Back Up Now", "Check for Updates…" })
        EXPECT_TRUE(texts.contains(text)) << text;
    for (const std::string later :
        { "Export Everything as JSON…", "Show the Welcome Screen Again", "Import from Tamberlin…" })
        EXPECT_FALSE(texts.contains(later)) << later;
}

TEST(SettingsWindow, detailsCountAtOnceAndAreTakenBack)
{
    SettingsWorld world;
    world.type("senderName", "Ada Lovelace");
    EXPECT_EQ(world.profile().sender.name, "Ada Lovelace");
    EXPECT_EQ(world.model->undoText(), "Undo Change Settings");
    emit world.find<CodeBox>("homeCurrency").chosen("CHF");
    world.find<QComboBox>("paper").setCurrentIndex(1);
    emit world.find<QComboBox>("paper").activated(1);
    EXPECT_EQ(world.profile().paper, Tamberlin::Paper::letter);
    world.model->undo();
    world.model->undo();
    EXPECT_EQ(world.profile().homeCurrency, "EUR");
    EXPECT_EQ(world.find<CodeBox>("homeCurrency").code(), "EUR");
    EXPECT_EQ(world.find<QComboBox>("paper").currentText(), "A4");

    world.show(SettingsWindow::Page::invoices);
    auto& terms = world.find<TextArea>("paymentTerms");
    terms.setFocus();
    terms.setPlainText("At once.");
    world.window->close(); // Nothing that was typed is lost.
    EXPECT_EQ(world.profile().defaultPaymentTerms, "At once.");
    world.settle();
    EXPECT_NE(world.document().find("Ada Lovelace"), std::string::npos);
}

TEST(SettingsWindow, takesALogoUnderTwoMegabytes)
{
    SettingsWorld world;
    constexpr int limit = 2'097'152;
    const std::string refusal = "Choose a PNG or JPEG under 2 MB for the logo.";
    const auto words = world.root / "words.png";
    ::Test::writeFile(words, "not a picture");
    for (const auto& file : { world.picture("large.png", limit), words }) {
        world.answer = { file };
        world.press("chooseLogo");
        EXPECT_TRUE(world.says(refusal)) << file;
        EXPECT_EQ(world.problem(), ""); // Said there, not in the banner.
        EXPECT_FALSE(world.profile().sender.logo);
    }
    world.answer = { world.picture("logo.png", limit - 1) };
    world.press("chooseLogo");
    EXPECT_EQ(world.asked.kind, ChooserRequest::Kind::image);
    EXPECT_TRUE(world.profile().sender.logo);
    EXPECT_FALSE(world.says(refusal));
    world.press("removeLogo");
    EXPECT_FALSE(world.profile().sender.logo);
    EXPECT_FALSE(world.find<QPushButton>("removeLogo").isEnabled());

    QMimeData data;
    data.setUrls({ QUrl::fromLocalFile(QString::fromStdString(world.picture("dropped.png").string())) });
    auto& well = *world.window->findChild<LogoWell*>();
    QDragEnterEvent enter({ 5, 5 }, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&well, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({ 5, 5 }, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&well, &drop);
    EXPECT_TRUE(world.profile().sender.logo);
}

TEST(SettingsWindow, aSeriesCountsUpWithoutGaps)
{
    SettingsWorld world;
    world.show(SettingsWindow::Page::invoices);
    EXPECT_EQ(world.text("preview.invoices"), "Next: INV-2026-001");
    world.type("next.invoices", "0");
    EXPECT_TRUE(world.says("Numbers start at 1."));
    EXPECT_EQ(world.problem(), "");
    world.type("next.invoices", "41");
    EXPECT_EQ(world.text("preview.invoices"), "Next: INV-2026-041");
    EXPECT_FALSE(world.says("Numbers start at 1."));
    world.type("prefix.invoices", "R");
    world.type("digits.invoices", "5");
    EXPECT_EQ(world.text("preview.invoices"), "Next: R2026-00041");
    world.type("digits.invoices", "0");
    EXPECT_EQ(world.profile().invoiceSeries.digits, 5);

    world.press("year.quotes");
    EXPECT_EQ(world.text("preview.quotes"), "Next: Q-001");
    EXPECT_TRUE(world.says("A series without the year never starts again."));
    EXPECT_FALSE(world.find<QCheckBox>("reset.quotes").isEnabled());
    world.model->undo();
    EXPECT_TRUE(world.find<QCheckBox>("reset.quotes").isChecked());
    EXPECT_EQ(world.text("preview.quotes"), "Next: Q-2026-001");
}

TEST(SettingsWindow, aSeriesInUseCantGoBack)
{
    auto library = ::Test::sampleLibrary();
    ::Test::issued(library, { 11 });
    SettingsWorld world(library);
    world.show(SettingsWindow::Page::invoices);
    const auto before = world.profile();
    for (const auto* typed : { "1", "7" }) {
        world.type("next.invoices", typed);
        EXPECT_TRUE(
            world.says("Numbers were already issued in this series, so it continues from the last one."));
        EXPECT_EQ(world.find("next.invoices").text(), typed); // Stays as typed.
        EXPECT_EQ(world.profile(), before);
    }
    QTest::keyClick(&world.find("next.invoices"), Qt::Key_Z, Qt::ControlModifier);
    world.type("next.invoices", "2");
    EXPECT_FALSE(
        world.says("Numbers were already issued in this series, so it continues from the last one."));
}

TEST(SettingsWindow, remindersFollowWhatTheSystemAllows)
{
    SettingsWorld world;
    world.notifications.isAllowed = false;
    world.press("reminders");
    EXPECT_FALSE(world.find<QCheckBox>("reminders").isChecked());
    EXPECT_EQ(world.window->findChild<Banner*>()->sentence().toStdString(), std::string(Reminders::refusal));
    world.notifications.isAllowed = true;
    world.press("reminders");
    EXPECT_TRUE(world.find<QCheckBox>("reminders").isChecked());
    EXPECT_TRUE(world.settings().remindersOn);
    world.press("reminders");
    EXPECT_FALSE(world.settings().remindersOn);
}

TEST(SettingsWindow, movesTheLibraryOrSaysWhyNot)
{
    SettingsWorld world;
    world.show(SettingsWindow::Page::library);
    EXPECT_EQ(world.text("folder"), world.library.string());
    const auto file = world.root / "file";
    ::Test::writeFile(file, "in the way");
    world.answer = { file / "below" };
    world.press("moveLibrary");
    EXPECT_EQ(world.asked.message,
        "Choose a folder for your Pallisande library. Your records, report copies, issued PDFs and backups "
        "move "
        "there.");
    EXPECT_EQ(world.asked.prompt, "Use This Folder");
    EXPECT_EQ(world.problem().find("The library couldn’t be moved: "), 0);
    EXPECT_EQ(world.window->findChild<Banner*>()->sentence().toStdString(), world.problem());
    EXPECT_EQ(world.text("folder"), world.library.string());

    const auto moved = world.root / "Moved";
    ::Test::fs::create_directory(moved);
    world.answer = { moved };
    world.press("moveLibrary");
    EXPECT_EQ(world.notice(),
        "The library is now in “" + moved.string() + "”. The old copy was left where it was.");
    EXPECT_EQ(world.text("folder"), moved.string());
    EXPECT_EQ(LibraryStore(moved).load(::Test::moment()).library, world.model->library());

    const auto other = world.root / "Other"; // Holds a library: that one is opened.
    ::Test::fs::create_directory(other);
    auto there = Library::makeNew();
    there.profile.sender.name = "Someone else";
    LibraryStore(other).save(there);
    world.answer = { other };
    world.press("moveLibrary");
    EXPECT_EQ(world.find("senderName").text(), "Someone else");
}

TEST(SettingsWindow, keepsASecondCopyUntilToldOtherwise)
{
    SettingsWorld world;
    world.show(SettingsWindow::Page::library);
    EXPECT_FALSE(world.find<QPushButton>("stopSecond").isVisible());
    const auto second = world.root / "Second";
    ::Test::fs::create_directory(second);
    world.answer = { second };
    world.press("chooseSecond");
    EXPECT_EQ(world.text("secondFolder"), second.string());
    EXPECT_EQ(world.text("lastCopy"), "Last copy: 9 Mar 2026");
    EXPECT_FALSE(::Test::fs::is_empty(second));
    world.press("backUpNow");
    EXPECT_EQ(world.notice().find("Backed up as “Pallisande Library 2026-03-09"), 0);
    ::Test::fs::remove_all(second);
    world.window->close();
    world.window->show();
    world.model->changeSettings([](AppSettings& settings) { settings.lastSecondBackup = "2026-03-08"; });
    EXPECT_TRUE(world.says("The second backup folder couldn’t be found. Its disk may not be connected."));
    EXPECT_EQ(world.text("lastCopy"), "Last copy: 8 Mar 2026");
    world.press("stopSecond");
    EXPECT_FALSE(world.settings().secondBookmark);
    EXPECT_FALSE(world.find<QLabel>("lastCopy").isVisible());

    const QSignalSpy updates(world.window.get(), &SettingsWindow::updateCheckWanted),
        backups(world.window.get(), &SettingsWindow::backupsWanted);
    world.press("checkForUpdates");
    world.press("showBackups");
    EXPECT_EQ(updates.size() + backups.size(), 2);
}

TEST(SettingsWindow, nothingIsClippedOrNameless)
{
    auto library = ::Test::sampleLibrary();
    library.profile.quoteSeries.includeYear = false;
    SettingsWorld world(library);
    auto* pages = world.window->findChild<QTabWidget*>();
    for (const auto appearance : { Appearance::light, Appearance::dark }) {
        themeController().setAppearance(appearance);
        for (const int size : { 100, 150, 200 }) {
            themeController().setTextSize(size);
            for (int page = 0; page < pages->count(); ++page) {
                SCOPED_TRACE(pages->tabText(page).toStdString() + " " + std::to_string(size));
                QTest::keyClick(world.window.get(), Qt::Key(Qt::Key_1 + page), Qt::ControlModifier);
                pages->setCurrentIndex(page);
                world.window->resize(size == 100 ? 640 : 800, 560);
                const auto* const area = qobject_cast<QScrollArea*>(pages->currentWidget());
                const auto fits = [&] { return area->widget()->width() <= area->viewport()->width(); };
                // Layouts settle in a few rounds.
                ::Test::waitUntil(
                    [&] { return fits() && clippedTexts(*world.window).empty(); }, std::chrono::seconds(1));
                EXPECT_EQ(clippedTexts(*world.window), std::vector<std::string>());
                EXPECT_TRUE(fits());
                EXPECT_EQ(namelessWidgets(*world.window), std::vector<std::string>());
            }
        }
    }
    themeController().setTextSize(100);
    themeController().setAppearance(Appearance::system);
}
