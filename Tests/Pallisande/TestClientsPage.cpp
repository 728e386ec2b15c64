#include "Pallisande/Screens/Clients/LinkRow.h"
#include "Pallisande/Screens/ListDetailPage.h"
#include "Pallisande/Widgets/CodeBox.h"
#include "Pallisande/Widgets/NumberEdit.h"
#include "Pallisande/Widgets/TextArea.h"
#include "Tests/Pallisande/Events.h"
#include "Tests/Pallisande/ModelWorld.h"
#include "Tests/Pallisande/PageTexts.h"
#include "Tests/Pallisande/WidgetApplication.h"
#include "Tests/Pallisande/WidgetChecks.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QMenu>
#include <QPushButton>
#include <QTest>

using namespace Pallisande;
using ::Test::decimal;
using ::Test::id;

namespace {

// Clients 1 (EUR, graduated weights) and 2 (USD). Of client 1: the open job 13, quoted as Q-2026-001 at 90.00
// (half of it repetitions), and two delivered ones of new words.
Library clientsLibrary()
{
    auto library = ::Test::sampleLibrary();
    auto open = ::Test::job(13, 1, 500);
    open.title = "Annual report";
    open.status = JobStatus::quote;
    open.deliveredAt.reset();
    open.quoteNumber = "Q-2026-001";
    open.analyses.front().rows.front().counts.words[MatchBand::repetitions] = 500;
    library.jobs.push_back(std::move(open));
    return library;
}

// The page in a window, as the shell has it.
struct ClientsWorld : ::Test::World {
    enum class Used { here, elsewhere };

    explicit ClientsWorld(const Library& holding = clientsLibrary(), Used used = Used::here)
    {
        if (used == Used::elsewhere) {
            LibraryStore(library).save(holding);
            other.emplace(surroundings.open(library));
            start();
        } else {
            start(holding);
        }
        commands = std::make_unique<Commands>(*model, &window);
        view = std::make_unique<ViewState>(preferences);
        page = makeClientsPage({ *model, *commands, *view }, &window);
        QObject::connect(
            commands.get(), &Commands::asked, page, [this](Command command) { page->carryOut(command); });
        auto* box = new QVBoxLayout(&window);
        box->setContentsMargins(0, 0, 0, 0);
        for (auto* filter : page->filters())
            box->addWidget(filter);
        box->addWidget(page);
        window.resize(1000, 780);
        window.show();
        model->setSection(AppSection::clients);
        if (model->client(id(1)))
            model->select(AppSection::clients, id(1));
    }
    ~ClientsWorld()
    {
        delete page; // Before the model that it follows.
        commands.reset();
    }

    const Client& client(std::uint64_t number = 1) const { return *model->client(id(number)); }
    Base::Decimal price(std::uint64_t job) const
    {
        return JobPricing::price(*model->job(id(job)), client()).subtotal;
    }
    template <typename Widget = LineField> Widget& find(const char* name) const
    {
        auto* widget = page->findChild<Widget*>(QLatin1String(name));
        if (!widget)
            throw std::runtime_error(name);
        return *widget;
    }
    LineField& named(const char* accessibleName) const
    {
        for (auto* field : page->findChildren<LineField*>()) {
            if (field->accessibleName() == QLatin1String(accessibleName))
                return *field;
        }
        throw std::runtime_error(accessibleName);
    }
    void type(LineField& field, const QString& text) const
    {
        field.setFocus();
        field.selectAll();
        QTest::keyClicks(&field, text);
        QTest::keyClick(&field, Qt::Key_Return);
    }
    bool says(const std::string& text) const { return textsOf(*page).contains(text); }

    ::Test::Surroundings surroundings;
    std::optional<LibrarySession> other; // Holds the library.
    QWidget window;
    std::unique_ptr<Commands> commands;
    std::unique_ptr<ViewState> view;
    SectionPage* page = nullptr;
};

} // namespace

TEST(ClientsPage, weightsAreKeptAndDoubtedAndTakenBackStepByStep)
{
    ClientsWorld world;
    const auto before = world.client();
    const auto sameAs
        = [&](const std::string& preset) { return world.says("Same as the example “" + preset + "”"); };
    EXPECT_TRUE(world.says("There’s no standard table: these are the shares you agreed with this client. The "
                           "presets are only examples."));
    EXPECT_TRUE(sameAs("Graduated by band (example)"));
    const auto* const menu = world.find<QPushButton>("presets").menu();
    ASSERT_EQ(menu->actions().size(), 3);
    EXPECT_EQ(menu->actions()[1]->text().toStdString(), "Repetitions and 100% matches only (example)");

    menu->actions()[0]->trigger();
    EXPECT_TRUE(sameAs("None: every word at the full rate (example)"));
    EXPECT_EQ(world.price(13), 100);
    EXPECT_TRUE(
        world.says("1 job that isn’t invoiced yet has another price now. A quote was given for “Annual "
                   "report”."));

    auto& repetitions = world.find("weight.repetitions");
    world.type(repetitions, "120");
    EXPECT_TRUE(world.says("The weight for Repetitions must be between 0 and 100%."));
    EXPECT_EQ(world.client().weights.percentOf(MatchBand::repetitions), 120);
    EXPECT_EQ(JobPricing::price(*world.model->job(id(13)), world.client()).problems.size(), 1);
    EXPECT_FALSE(sameAs("None: every word at the full rate (example)"));
    world.type(repetitions, "12x"); // What can't be read is said first, and nothing changes.
    EXPECT_TRUE(world.says("“12x” isn’t a number."));
    QTest::keyClick(&repetitions, Qt::Key_Escape);
    EXPECT_EQ(repetitions.text(), "120");
    EXPECT_TRUE(world.says("The weight for Repetitions must be between 0 and 100%."));

    world.find<QCheckBox>("floor").click();
    EXPECT_TRUE(world.client().weights.floor75);
    EXPECT_TRUE(world.says("billed at 100%"));
    EXPECT_EQ(world.find("weight.fuzzy50").text(), "100");

    for (int step = 0; step < 3; ++step) {
        EXPECT_EQ(world.model->undoText(), "Undo Change Weights");
        world.model->undo();
    }
    EXPECT_EQ(world.client(), before);
    EXPECT_EQ(repetitions.text(), "25");
    EXPECT_FALSE(world.says("The weight for Repetitions must be between 0 and 100%."));
    EXPECT_FALSE(world.find<QLabel>("priceEffect").isVisibleTo(world.page));
}

TEST(ClientsPage, aNewRateNamesWhatWasQuotedAndLeavesItTheOldOne)
{
    ClientsWorld world;
    const auto price = world.price(13);
    world.type(world.find("clientRate"), "0,2"); // The other decimal mark.
    EXPECT_EQ(world.client().defaultRate, decimal("0.2"));
    EXPECT_EQ(world.price(13), price * Base::Decimal(2));
    EXPECT_TRUE(
        world.says("3 jobs that aren’t invoiced yet have another price now. A quote was given for “Annual "
                   "report”."));
    world.find<QPushButton>("keepRates").click();
    EXPECT_EQ(world.price(13), price);
    EXPECT_EQ(world.client().defaultRate, decimal("0.2"));
    EXPECT_EQ(world.model->job(id(13))->rateOverride, decimal("0.1"));
    EXPECT_FALSE(world.find<QLabel>("priceEffect").isVisibleTo(world.page));
    world.model->undo();
    EXPECT_EQ(world.price(13), price * Base::Decimal(2));

    // A rate below zero stays in its field; a single mark never groups in a rate, and does in an amount.
    world.model->select(AppSection::clients, id(1));
    world.model->setSection(AppSection::clients);
    world.type(world.find("clientRate"), "-1");
    EXPECT_TRUE(world.says("A rate can’t be below zero."));
    EXPECT_EQ(world.client().defaultRate, decimal("0.2"));
    world.type(world.find("clientRate"), "1,234");
    EXPECT_EQ(world.client().defaultRate, decimal("1.234"));
    world.type(world.find("clientMinimum"), "1,234");
    EXPECT_EQ(world.client().minimumFee, 1234);
    EXPECT_TRUE(world.says("Read as 1,234."));
}

TEST(ClientsPage, theFirstRateOfALanguagePairCounts)
{
    ClientsWorld world;
    auto& add = world.find<QPushButton>("addPairRate");
    add.click();
    world.type(world.named("Source language of rate 1"), "de");
    world.type(world.named("Target language of rate 1"), "en");
    world.type(world.named("Rate 1"), "0.3");
    EXPECT_EQ(world.price(11), 300);
    add.click();
    world.type(world.named("Source language of rate 2"), "DE ");
    EXPECT_FALSE(world.says("This pair is listed above; the first rate is used."));
    world.type(world.named("Target language of rate 2"), "en");
    EXPECT_TRUE(world.says("This pair is listed above; the first rate is used."));
    world.type(world.named("Minimum fee of rate 1"), "400");
    world.type(world.named("Minimum fee of rate 2"), "0");
    ASSERT_EQ(world.client().rates.size(), 2);
    EXPECT_EQ(world.client().rates[0].minimumFee, 400);
    world.type(world.named("Minimum fee of rate 2"), " ");
    EXPECT_FALSE(world.client().rates[1].minimumFee);
    EXPECT_EQ(world.named("Minimum fee of rate 2").placeholderText().toStdString(), "client’s (0.00)");

    const auto removals = [&] {
        QList<QToolButton*> shown;
        for (auto* button : world.page->findChildren<QToolButton*>()) {
            if (button->accessibleName() == "Remove this rate" && button->isVisibleTo(world.page))
                shown += button;
        }
        return shown;
    };
    ASSERT_EQ(removals().size(), 2);
    world.named("Rate 1").setText("9"); // Typed for the rate that goes.
    removals().front()->click();
    ASSERT_EQ(world.client().rates.size(), 1);
    EXPECT_EQ(world.client().rates[0].pair.source, "DE ");
    EXPECT_EQ(world.named("Rate 1").text(), "0.10");
    EXPECT_FALSE(world.says("This pair is listed above; the first rate is used."));
    removals().front()->click();
    EXPECT_FALSE(world.says("Target"));
    world.model->undo();
    world.model->undo();
    EXPECT_EQ(world.named("Source language of rate 1").text(), "de");
}

TEST(ClientsPage, aFirstClientIsNamedAndStandsInTheFile)
{
    ClientsWorld world(Library::makeNew());
    EXPECT_TRUE(
        world.says("No clients yet. A client holds the rates, weights, tax and terms that price its jobs."));
    world.find<QPushButton>("firstClient").click();
    QCoreApplication::processEvents(); // The name is selected once the page is in front.
    ASSERT_EQ(world.model->library().clients.size(), 1);
    EXPECT_EQ(world.model->library().clients[0].name, "New client");
    EXPECT_EQ(world.find("clientName").selectedText(), "New client");
    QTest::keyClicks(&world.find("clientName"), "Nordwind <b>GmbH</b>");
    QTest::keyClick(&world.find("clientName"), Qt::Key_Return);
    EXPECT_EQ(world.find<QLabel>("clientTitle").text(), "Nordwind <b>GmbH</b>");
    const auto* const list = static_cast<ListDetailPage*>(world.page)->list();
    EXPECT_EQ(list->model()->index(0, 0).data().toString(), "Nordwind <b>GmbH</b>");

    world.find<CodeBox>("clientCurrency").setCode("JPY");
    emit world.find<CodeBox>("clientCurrency").chosen("JPY");
    world.find<QComboBox>("clientUnit").setCurrentIndex(1);
    emit world.find<QComboBox>("clientUnit").activated(1);
    EXPECT_TRUE(world.says("JPY per character"));
    EXPECT_EQ(world.find<QComboBox>("clientBasis").itemText(1), "Target characters");
    world.type(world.find("clientMinimum"), "10.5");
    EXPECT_TRUE(world.says("JPY has no decimals."));
    world.settle();
    EXPECT_NE(world.document().find("Nordwind <b>GmbH<"), std::string::npos);
    EXPECT_NE(world.document().find("\"JPY\""), std::string::npos);
}

TEST(ClientsPage, whatIsTypedGoesToTheClientOnShow)
{
    ClientsWorld world;
    auto& email = world.named("Email");
    email.setFocus();
    QTest::keyClicks(&email, "ada@example.org");
    world.model->select(AppSection::clients, id(2));
    EXPECT_EQ(world.client(1).email, "ada@example.org");
    EXPECT_EQ(world.client(2).email, "");
    EXPECT_EQ(email.text(), "");
    // What makes no sense stays behind, and isn't carried over either.
    auto& rate = world.find("clientRate");
    world.type(rate, "cheap");
    world.model->select(AppSection::clients, id(1));
    EXPECT_EQ(rate.text(), "0.10");
    EXPECT_TRUE(rate.problem().isEmpty());
    EXPECT_EQ(world.client(2).defaultRate, decimal("0.10"));
}

TEST(ClientsPage, aClientInUseIsArchivedInstead)
{
    ClientsWorld world;
    world.commands->action(Command::deleteClient)->trigger();
    EXPECT_EQ(world.problem(), "Nordlicht Verlag has jobs or invoices. Archive the client instead.");
    EXPECT_EQ(world.model->problem()->action, Problem::Action::archiveClient);
    EXPECT_FALSE(world.find<QPushButton>("archivedClients").isVisible());
    world.commands->action(Command::archiveClient)->trigger();
    auto& archived = world.find<QPushButton>("archivedClients");
    EXPECT_EQ(archived.text(), "Archived (1)");
    world.model->select(AppSection::clients, id(2));
    const auto* const list = static_cast<ListDetailPage*>(world.page)->list()->model();
    EXPECT_EQ(list->rowCount(), 1);
    archived.click();
    ASSERT_EQ(list->rowCount(), 2);
    EXPECT_EQ(list->index(1, 0).data().toString(), "Nordlicht Verlag"); // After those in use.
    EXPECT_TRUE(ViewState(world.preferences).flag("clients.archived"));
}

TEST(ClientsPage, tellsOfZonesDraftsAndRecordsElsewhere)
{
    auto library = clientsLibrary();
    ::Test::issued(library, { 11 });
    ::Test::draft(library, { 12 });
    library.clients[0].timeZone = "Asia/Tokyo";
    library.clients[1].timeZone = "Mars/Olympus";
    ClientsWorld world(library);
    // 15:05 in Berlin.
    EXPECT_EQ(world.find<QLabel>("clientTime").text(), "now 23:05 there");
    world.now = ::Test::instant("2026-03-09T18:30:00.000Z");
    world.timers.advance(std::chrono::minutes(1));
    EXPECT_EQ(world.find<QLabel>("clientTime").text(), "now 03:30 there, on Tue 10 Mar");
    const auto& zones = world.find<CodeBox>("clientZone");
    EXPECT_EQ(zones.currentText(), "Tokyo (Asia/Tokyo)");
    EXPECT_GE(zones.findText("New York (America/New_York)"), 0);

    EXPECT_EQ(world.find<QLabel>("outstanding").text().toStdString(), "Outstanding: 119.00\u00A0EUR");
    emit world.find<CodeBox>("clientCurrency").chosen("GBP");
    EXPECT_EQ(world.client().currency, "GBP");
    EXPECT_TRUE(world.says("1 draft stays in EUR."));
    std::vector<LinkRow*> rows;
    for (auto* row : world.page->findChildren<LinkRow*>()) {
        if (row->isVisibleTo(world.page))
            rows.push_back(row);
    }
    ASSERT_EQ(rows.size(), 5); // Three jobs, two documents.
    EXPECT_NE(rows[0]->accessibleName().indexOf("Annual report"), -1);
    rows[4]->click();
    EXPECT_EQ(world.model->section(), AppSection::invoices);
    EXPECT_EQ(world.model->selection(AppSection::invoices), world.model->clients().recentInvoices(id(1))[1]);

    world.model->show(AppSection::clients, id(2));
    EXPECT_TRUE(world.says("“Mars/Olympus” isn’t a known time zone; this computer’s is used."));
    EXPECT_FALSE(world.find<QLabel>("clientTime").isVisibleTo(world.page));
    EXPECT_TRUE(world.says("No invoices yet."));
    EXPECT_EQ(world.model->jobs().proposal().clientID, id(2)); // For New Job.
}

TEST(ClientsPage, canBeReadButNotChangedWhileTheLibraryIsInUseElsewhere)
{
    ClientsWorld world(clientsLibrary(), ClientsWorld::Used::elsewhere);
    ASSERT_FALSE(world.model->canEdit());
    world.type(world.find("clientName"), "Other");
    EXPECT_EQ(world.find("clientName").text(), "Nordlicht Verlag");
    EXPECT_EQ(world.find("clientName").toolTip().toStdString(), world.model->readOnlyText());
    EXPECT_FALSE(world.find<QComboBox>("clientCurrency").isEnabled());
    EXPECT_FALSE(world.find<QCheckBox>("floor").isEnabled());
    EXPECT_FALSE(world.find<QPushButton>("presets").isEnabled());
    EXPECT_FALSE(world.find<QPushButton>("addPairRate").isEnabled());
}

TEST(ClientsPage, nothingIsClippedOrNameless)
{
    auto library = clientsLibrary();
    ::Test::issued(library, { 11 });
    library.clients[0].weights.percent[MatchBand::perfect] = 120;
    library.clients[0].weights.floor75 = true;
    library.clients[0].timeZone = "Mars/Olympus";
    library.clients[0].rates = { { .id = id(50), .pair = { "German", "English" }, .rate = decimal("0.12") },
        { .id = id(51), .pair = { "German", "English" }, .rate = decimal("0.1375"), .minimumFee = 45 } };
    ClientsWorld world(library);
    world.type(world.find("clientRate"), "0.2");
    for (const auto appearance : { Appearance::light, Appearance::dark }) {
        themeController().setAppearance(appearance);
        for (const int size : { 100, 150, 200 }) {
            SCOPED_TRACE(size);
            themeController().setTextSize(size);
            world.window.resize(size == 200 ? 1300 : 864, 600);
            const auto* const detail = world.page->findChild<DetailPage*>();
            const auto fits = [&] { return detail->widget()->width() <= detail->viewport()->width(); };
            // Layouts settle in a few rounds.
            ::Test::waitUntil(
                [&] { return fits() && clippedTexts(world.window).empty(); }, std::chrono::seconds(1));
            EXPECT_EQ(clippedTexts(world.window), std::vector<std::string>());
            EXPECT_TRUE(fits());
        }
    }
    EXPECT_EQ(namelessWidgets(world.window), std::vector<std::string>());
    themeController().setTextSize(100);
    themeController().setAppearance(Appearance::system);
}
