#include "Benchmarks/MakeLibrary.h"
#include "Pallisande/Model/SearchKey.h"
#include "Tests/Pallisande/ModelWorld.h"

#include <gtest/gtest.h>

#include <set>

using namespace Pallisande;
using ::Test::decimal;
using ::Test::id;
using ::Test::World;

namespace {

using IDs = std::vector<Base::Uuid>;
constexpr std::int64_t hour = 3'600'000;

} // namespace

TEST(AppModelLists, wordsAreFoundWhateverTheirCaseAccentsAndWidth)
{
    const struct {
        std::string text, search;
        bool isFound;
    } cases[] {
        { "Ada Ström", "STROM ada", true },
        { "Straße", "strasse", true },
        { "ＡＢＣ 株式会社", "abc 株式", true },
        { "ﾃｽﾄ", "テスト", true },
        { "Łódź", "łodz", true },
        { "한국어", "한국", true },
        { "Nordwind", "nord sued", false },
        { "anything", "  ", true },
    };
    for (const auto& [text, search, isFound] : cases) {
        const auto words = searchWords(search);
        const auto key = searchKey(text);
        EXPECT_EQ(std::all_of(words.begin(), words.end(),
                      [&](const auto& word) { return key.find(word) != std::string::npos; }),
            isFound)
            << text;
    }
    EXPECT_LT(sortKey("Part 9"), sortKey("part 10"));
    EXPECT_LT(sortKey("Émile"), sortKey("Frank"));
}

TEST(AppModelLists, figuresAndDaysAsTheyAreShown)
{
    const Formats english(QLocale("en_GB")), german(QLocale("de_DE")), american(QLocale("en_US"));
    EXPECT_EQ(english.money(decimal("-1234567.5"), "EUR"), "−1,234,567.50\u00A0EUR");
    EXPECT_EQ(german.money(decimal("1234.5"), "EUR"), "1.234,50\u00A0EUR");
    EXPECT_EQ(english.money(decimal("999"), "JPY"), "999\u00A0JPY");
    EXPECT_EQ(english.rate(decimal("0.1")), "0.10");
    EXPECT_EQ(english.rate(decimal("0.08351239")), "0.083512");
    EXPECT_EQ(english.exchangeRate(decimal("1.1712")), "1.171200");
    EXPECT_EQ(english.number(decimal("0.5")), "0.5");
    EXPECT_EQ(english.percent(decimal("12.5")), "12.5%");
    EXPECT_EQ(german.percent(decimal("12.5")), "12,5\u00A0%");
    EXPECT_EQ(Formats(QLocale("tr_TR")).percent(decimal("75")), "%75");
    EXPECT_EQ(Formats(QLocale::c()).percent(decimal("75")), "75%");
    EXPECT_EQ(spokenPair({ "de", "en-US" }), "German to English (United States)");
    EXPECT_EQ(spokenPair({ "Swiss German", "zh-Hant" }), "Swiss German to Chinese (Traditional)");
    EXPECT_EQ(spokenPair({ "", "Klingon" }), "to Klingon");
    EXPECT_EQ(english.time({ .hour = 17, .minute = 5 }), "17:05");
    EXPECT_EQ(american.time({ .hour = 17, .minute = 5 }), "5:05 PM");
    EXPECT_EQ(american.time({ .hour = 0, .minute = 30 }), "12:30 AM");
    EXPECT_EQ(Formats::weekDay(::Test::day("2026-03-06"), ::Test::day("2026-03-09")), "Fri 6 Mar");
    EXPECT_EQ(Formats::weekDay(::Test::day("2024-02-29"), ::Test::day("2026-03-09")), "Thu 29 Feb 2024");

    const auto moment = ::Test::moment(); // 15:05 in Berlin
    const struct {
        std::int64_t minutes;
        std::string text;
    } nearness[] { { 40, "in 40 minutes" }, { 120, "in 2 hours" }, { 600, "in 10 hours" },
        { 24 * 60, "tomorrow" }, { 3 * 24 * 60, "in 3 days" }, { -1, "1 minute late" },
        { -90, "1 hour late" }, { -24 * 60, "1 day late" }, { -72 * 60, "3 days late" } };
    for (const auto& [minutes, text] : nearness)
        EXPECT_EQ(Formats::nearness(moment.now.plusMilliseconds(minutes * 60'000), moment), text);
}

TEST(AppModelLists, jobsAreFilteredSearchedAndSorted)
{
    World world;
    auto library = ::Test::sampleLibrary();
    library.jobs[0].status = JobStatus::inProgress;
    library.jobs[0].title = "Leaflet 10";
    library.jobs[0].deadline = world.now.plusMilliseconds(24 * hour);
    library.jobs[1].title = "Leaflet 9";
    library.jobs[1].status = JobStatus::cancelled;
    library.jobs[2].notes = "Überprüfung";
    auto& model = world.start(library);
    auto& jobs = model.jobs();
    EXPECT_EQ(jobs.ids(), (IDs { id(11), id(21) }));
    EXPECT_EQ(jobs.countText(), "2 of 3 jobs");
    jobs.setFilter(JobFilter::all);
    jobs.setSort(JobSort::title);
    EXPECT_EQ(jobs.ids(), (IDs { id(21), id(12), id(11) }));
    jobs.setSort(JobSort::price);
    EXPECT_EQ(jobs.ids(), (IDs { id(21), id(11), id(12) }));
    jobs.setClientFilter(id(1));
    EXPECT_EQ(jobs.ids(), (IDs { id(11), id(12) }));
    jobs.setClientFilter(std::nullopt);
    model.setSearch(AppSection::jobs, "harbor UBER"); // The client's name and the notes.
    EXPECT_EQ(jobs.ids(), IDs { id(21) });
    model.clients().edit(id(2), "Change Name", [](Client& client) { client.name = "Hafen"; });
    EXPECT_EQ(jobs.ids(), IDs {});

    const auto row = jobs.row(id(11));
    EXPECT_EQ(row.subtitle, "Nordlicht Verlag · de → en · due tomorrow 15:05");
    EXPECT_EQ(row.price, "100.00\u00A0EUR");
    EXPECT_EQ(row.spoken,
        "Leaflet 10, Nordlicht Verlag, German to English, in progress, due Tue 10 Mar, 15:05, "
        "100.00\u00A0EUR before tax");
    EXPECT_EQ(jobs.row(id(21)).subtitle, "Hafen · de → en · delivered 6 Mar");
    model.clients().edit(
        id(1), "Change Time Zone", [](Client& client) { client.timeZone = "Pacific/Auckland"; });
    EXPECT_EQ(jobs.row(id(11)).subtitle, "Nordlicht Verlag · de → en · due Wed 11 Mar 03:05");
    EXPECT_EQ(jobs.selectionText(IDs { id(11), id(12) }), "2 jobs selected, 150.00\u00A0EUR before tax");
}

TEST(AppModelLists, aChangedRowStaysUntilTheSelectionMovesAndANewOneIsAlwaysShown)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    auto& jobs = model.jobs();
    jobs.setFilter(JobFilter::delivered);
    ASSERT_EQ(jobs.ids().size(), 3u);
    model.select(AppSection::jobs, id(11));
    jobs.setStatus(IDs { id(11) }, JobStatus::cancelled);
    EXPECT_EQ(jobs.ids().size(), 3u);
    model.select(AppSection::jobs, id(12));
    EXPECT_EQ(jobs.ids(), (IDs { id(12), id(21) }));

    model.setSearch(AppSection::jobs, "something else");
    ASSERT_TRUE(jobs.add({ .title = "New one", .clientID = id(1) }));
    EXPECT_EQ(model.search(AppSection::jobs), "");
    EXPECT_EQ(jobs.filter(), JobFilter::all);
    EXPECT_EQ(jobs.ids().size(), 4u);

    model.invoices().setFilter(InvoiceFilter::paid);
    model.invoices().setYearFilter({ YearFilter::Kind::year, 2020 });
    ASSERT_TRUE(model.invoices().makeDraft(IDs { id(12) }));
    EXPECT_EQ(model.invoices().ids().size(), 1u);
}

TEST(AppModelLists, backAndForwardWalkWhatWasOnShow)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    model.show(AppSection::jobs, id(11));
    model.show(AppSection::clients, id(2)); // As a link does.
    model.goBack();
    EXPECT_EQ(model.section(), AppSection::jobs);
    EXPECT_EQ(model.selection(AppSection::jobs), id(11));
    model.goForward();
    EXPECT_EQ(model.section(), AppSection::clients);
    EXPECT_EQ(model.selection(AppSection::clients), id(2));
    EXPECT_FALSE(model.canGoForward());
}

TEST(AppModelLists, theBoardAndBadgesFollowTheClock)
{
    World world;
    auto library = ::Test::sampleLibrary();
    library.jobs[0].status = JobStatus::inProgress;
    library.jobs[0].deadline = world.now.plusMilliseconds(2 * hour);
    library.clients[0].timeZone = "Asia/Tokyo";
    library.jobs.push_back(library.jobs[2]);
    library.jobs.back().id = id(22);
    auto& model = world.start(library);
    const auto card = [&](DeadlineLane lane) {
        const auto& cards = model.deadlines().board().lanes[static_cast<std::size_t>(lane)];
        return cards.size() == 1 ? cards.front() : DeadlineCard {};
    };
    auto due = card(DeadlineLane::today);
    EXPECT_EQ(due.clientAndPair, "Nordlicht Verlag · de → en");
    EXPECT_EQ(due.due, "Tue 10 Mar, 01:05 · Tokyo");
    EXPECT_EQ(due.dueHere, "Mon 9 Mar, 17:05 here");
    EXPECT_EQ(due.nearness, "in 2 hours");
    EXPECT_EQ(model.badges(), (AppModel::Badges { .jobsDueToday = 1, .openJobs = 1 }));

    int ticks = 0;
    QObject::connect(&model, &AppModel::timePassed, &model, [&] { ++ticks; });
    world.now = world.now.plusMilliseconds(3 * hour);
    world.timers.advance(std::chrono::minutes(2));
    EXPECT_EQ(ticks, 2);
    EXPECT_EQ(card(DeadlineLane::overdue).nearness, "1 hour late");
    EXPECT_EQ(model.badges(), (AppModel::Badges { .overdueJobs = 1, .openJobs = 1 }));

    const auto& board = model.deadlines().board();
    ASSERT_EQ(board.delivered.size(), 2u);
    EXPECT_EQ(board.deliveredTotal, "50.00\u00A0EUR, 400.00\u00A0USD in 2 clients");
    EXPECT_EQ(board.delivered[0].client + ": " + board.delivered[0].summary,
        "Nordlicht Verlag: 1 job, delivered 6 Mar");
    EXPECT_EQ(board.delivered[1].summary, "2 jobs, oldest delivered 6 Mar");
    EXPECT_EQ(model.invoices().offers()[1].text, "Harbor Books: 2 jobs, 400.00\u00A0USD");
    ASSERT_TRUE(model.deadlines().makeInvoice(id(2)));
    EXPECT_EQ(model.invoice(*model.selection(AppSection::invoices))->lines.size(), 2u);
    EXPECT_EQ(model.deadlines().board().forgottenDrafts, "1 draft not issued");

    const auto invoice = *model.selection(AppSection::invoices);
    model.invoices().issue(invoice, world.now, std::nullopt);
    model.invoices().setFilter(InvoiceFilter::overdue);
    EXPECT_TRUE(model.invoices().ids().empty());
    world.now = world.now.plusMilliseconds(19 * 24 * hour); // It was due after 14 days.
    world.timers.advance(std::chrono::minutes(1));
    EXPECT_EQ(model.invoices().ids(), IDs { invoice });
    EXPECT_EQ(model.invoices().row(invoice).chip, "Overdue 5 days");
    EXPECT_EQ(model.badges().overdueInvoices, 1);
}

TEST(AppModelLists, daysAndRemindersFollowAUserWhoTravels)
{
    World world;
    auto library = ::Test::sampleLibrary();
    library.jobs[0].status = JobStatus::inProgress;
    library.jobs[0].deadline = world.now.plusMilliseconds(10 * hour);
    auto& model = world.start(library);
    model.setRemindersOn(true);
    const auto dueHere = [&] {
        for (const auto& lane : model.deadlines().board().lanes) {
            if (!lane.empty())
                return lane.front().dueHere + ", " + lane.front().due;
        }
        return std::string();
    };
    const auto before = world.notifications.pending.at(0).trigger.hour;
    world.systemCalendar = *Base::Calendar::named("America/Los_Angeles");
    world.timers.advance(std::chrono::minutes(1));
    EXPECT_EQ(dueHere(), "Mon 9 Mar, 17:05 here, Tue 10 Mar, 01:05 · Berlin");
    EXPECT_EQ(world.notifications.pending.at(0).trigger.hour, before - 8);
    EXPECT_EQ(model.session()->moment().calendar.zone(), "America/Los_Angeles");
}

TEST(AppModelLists, clientsShowWhatTheirRecordsComeTo)
{
    World world;
    auto library = ::Test::sampleLibrary();
    library.jobs[0].status = JobStatus::quote;
    ::Test::issued(library, { 21 });
    auto& model = world.start(library);
    auto& clients = model.clients();
    EXPECT_EQ(clients.ids(), (IDs { id(2), id(1) }));
    clients.setSort(ClientSort::openJobs);
    EXPECT_EQ(clients.ids(), (IDs { id(1), id(2) }));
    clients.setSort(ClientSort::outstanding);
    EXPECT_EQ(clients.ids(), (IDs { id(2), id(1) }));
    EXPECT_EQ(clients.figures(id(2)).outstanding, (std::map<std::string, Base::Decimal> { { "USD", 200 } }));
    EXPECT_EQ(clients.row(id(1)).spoken, "Nordlicht Verlag, 1 open job, 0.10 EUR per word");
    clients.setArchived(id(2), true);
    EXPECT_EQ(clients.ids().size(), 2u); // A changed row stays.
    model.select(AppSection::clients, id(1));
    EXPECT_EQ(clients.ids(), IDs { id(1) });
    clients.setShowsArchived(true);
    EXPECT_EQ(clients.ids(), (IDs { id(1), id(2) }));
}

// No times are asserted: the lists of a large library must hold what a plain walk through it finds.
TEST(AppModelLists, aLargeLibraryIsListedRight)
{
    World world;
    world.now = Benchmarks::libraryMoment().now;
    const auto library
        = Benchmarks::makeLibrary({ .clients = 40, .jobs = 4'000, .invoices = 1'000, .rateDays = 5 });
    auto& model = world.start(library);
    auto& jobs = model.jobs();
    const auto wanted = library.clients[7].name;
    jobs.setFilter(JobFilter::all);
    jobs.setSort(JobSort::price);
    model.setSearch(AppSection::jobs, wanted);
    std::set<Base::Uuid> expected;
    const auto words = searchWords(wanted);
    for (const auto& job : library.jobs) {
        const auto* const client = library.client(job.clientID);
        auto text = client->name + "\n" + job.title + "\n" + job.reference + "\n" + job.notes + "\n"
            + job.pair.text() + "\n" + job.quoteNumber.value_or("");
        for (const auto& analysis : job.analyses) {
            text += "\n" + analysis.name;
            for (const auto& row : analysis.rows)
                text += "\n" + row.file;
        }
        const auto key = searchKey(text);
        if (std::all_of(words.begin(), words.end(),
                [&](const auto& word) { return key.find(word) != std::string::npos; }))
            expected.insert(job.id);
    }
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(std::set(jobs.ids().begin(), jobs.ids().end()), expected);
    Base::Decimal last = jobs.price(*model.job(jobs.ids().front())).subtotal * 1000;
    for (const auto& id : jobs.ids()) {
        const auto price = jobs.price(*model.job(id));
        EXPECT_LE(price.subtotal + price.minimumAdjustment, last);
        last = price.subtotal + price.minimumAdjustment;
    }
    std::int64_t overdue = 0;
    for (const auto& invoice : library.invoices)
        overdue += Ledger::status(library, invoice, model.moment()) == InvoiceStatus::overdue;
    EXPECT_EQ(model.badges().overdueInvoices, overdue);
    const auto id = jobs.ids()[jobs.ids().size() / 2];
    model.endMerging();
    model.jobs().edit(id, "Change Title", [](Job& job) { job.title = "Edited"; });
    model.undo();
    EXPECT_EQ(model.library(), library);
}
