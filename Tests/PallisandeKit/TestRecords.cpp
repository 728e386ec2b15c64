#include "Base/Checked.h"
#include "Base/Json.h"
#include "PallisandeKit/Pricing/JobPricing.h"
#include "PallisandeKit/Records/Library.h"
#include "Tests/Support/Samples.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

using namespace Pallisande;
using namespace Test;

namespace {

const Base::ReadingContext context { .now = instant("2026-03-09T14:05:31.250Z"),
    .timeZone = "Asia/Kathmandu" };

template <typename T> T read(std::string_view text) { return Base::fromJson<T>(text, context); }

template <typename T> std::string refusalOf(std::string_view text)
{
    try {
        read<T>(text);
        return "(not refused)";
    } catch (const Base::DecodingError& error) {
        return error.what();
    }
}

// Fills any record with random values by its list of fields.
class RandomRecords {
public:
    // Of a hundred values that may be absent, `presence` are there.
    RandomRecords(unsigned seed, unsigned presence)
        : m_random(seed)
        , m_presence(presence)
    {
    }

    template <Base::HasFields Record> void fill(Record& record)
    {
        std::apply([&](const auto&... field) { (fill(record.*field.member), ...); }, Record::fields());
    }

private:
    std::uint64_t below(std::uint64_t limit) { return m_random() % limit; }
    bool isThere() { return below(100) < m_presence; }
    std::uint64_t length() { return m_presence == 100 ? 2 : below(4); }

    void fill(bool& value) { value = below(2) == 0; }
    void fill(std::int64_t& value)
    {
        constexpr auto largest = Base::Checked::largestCount;
        value = below(4) == 0 ? (below(2) ? largest : -largest)
                              : static_cast<std::int64_t>(below(2'000)) - 1'000;
    }
    void fill(Base::Decimal& value)
    {
        std::string text = below(3) == 0 ? "-" : "";
        for (auto digits = 1 + below(below(4) ? 6 : 38); digits > 0; --digits)
            text += static_cast<char>('0' + below(10));
        const auto exponent = below(4) ? -static_cast<int>(below(5)) : static_cast<int>(below(200)) - 120;
        value = decimal(text + "e" + std::to_string(exponent));
    }
    void fill(std::string& text)
    {
        static const std::vector<std::string> pieces { "Nordlicht ", "\"", "\\", "\n", "\t", "\x01", "\x7F",
            "€", "日本", "😀", "/", "{[", "", "0", std::string(1, '\0'), "\u2028", "İı" };
        text.clear();
        for (auto count = below(5); count > 0; --count)
            text += pieces[below(pieces.size())];
    }
    void fill(Base::Instant& value)
    {
        const auto span = static_cast<std::uint64_t>(
            Base::latestInstant.milliseconds - Base::earliestInstant.milliseconds);
        value = { Base::earliestInstant.milliseconds + static_cast<std::int64_t>(below(span + 1)) };
    }
    void fill(Base::Uuid& value) { value = { m_random(), m_random() }; }
    template <Base::HasCaseNames Case> void fill(Case& value)
    {
        value = static_cast<Case>(below(caseNames(Case {}).size()));
    }
    template <typename Value> void fill(std::optional<Value>& value)
    {
        value.reset();
        if (isThere())
            fill(value.emplace());
    }
    template <typename Value> void fill(std::vector<Value>& values)
    {
        values.resize(length());
        for (auto& value : values)
            fill(value);
    }
    template <typename Case> void fill(std::set<Case>& values)
    {
        values.clear();
        for (auto count = length(); count > 0; --count) {
            Case value {};
            fill(value);
            values.insert(value);
        }
    }
    template <typename Key, typename Value> void fill(std::map<Key, Value>& values)
    {
        values.clear();
        for (auto count = length(); count > 0; --count) {
            Key key {};
            fill(key);
            fill(values[key]);
        }
    }
    template <typename Case, typename Value> void fill(Base::EnumMap<Case, Value>& values)
    {
        values.clear();
        for (std::size_t place = 0; place < caseNames(Case {}).size(); ++place) {
            if (isThere())
                fill(values[static_cast<Case>(place)]);
        }
    }
    template <typename... Cases> void fill(std::variant<Cases...>& value)
    {
        auto wanted = below(sizeof...(Cases));
        const auto take = [&]<typename Case>() {
            if (wanted-- == 0)
                fill(value.template emplace<Case>());
        };
        (take.template operator()<Cases>(), ...);
    }

    std::mt19937_64 m_random;
    unsigned m_presence;
};

template <typename Record> std::string keys()
{
    std::string keys;
    std::apply([&](const auto&... field) { ((keys.append(keys.empty() ? "" : " ").append(field.key)), ...); },
        Record::fields());
    return keys;
}

TEST(Records, everyLibraryReadsBackEqualAndIsWrittenTheSameAgain)
{
    std::size_t longest = 0;
    for (unsigned seed = 1; seed <= 400; ++seed) {
        Library library;
        RandomRecords(seed, seed % 4 == 0 ? 100 : seed % 4 * 30).fill(library);
        const auto text = Base::toJson(library);
        const auto again = read<Library>(text);
        ASSERT_EQ(again, library) << "seed " << seed;
        ASSERT_EQ(Base::toJson(again), text) << "seed " << seed;
        longest = std::max(longest, text.size());
    }
    EXPECT_GT(longest, 30'000u); // The records were really filled.
}

TEST(Records, keepTheKeysOfTheDocument)
{
    const std::pair<std::string, std::string> cases[] {
        { keys<Library>(), "version profile clients jobs invoices rates counting" },
        { keys<Profile>(),
            "sender homeCurrency invoiceSeries creditSeries quoteSeries defaultPaymentTerms bankDetails "
            "paper "
            "quoteValidDays" },
        { keys<Client>(),
            "id name contact email address taxID timeZone currency unit basis defaultRate rates weights "
            "minimumFee "
            "taxPercent taxLabel taxNote paymentDays paymentTerms notes archived created" },
        { keys<ClientRate>(), "id pair rate minimumFee" },
        { keys<BandWeights>(), "percent floor75" },
        { keys<Job>(),
            "id title clientID pair reference status received deadline deliveredAt analyses extras "
            "targetUnits "
            "rateOverride surchargePercent notes invoiceID quoteNumber created modified" },
        { keys<LanguagePair>(), "source target" },
        { keys<ExtraLine>(), "id title quantity unit unitPrice" },
        { keys<Analysis>(),
            "id source name importedAt sourceLanguage targetLanguage rows statedTotalWords notes "
            "storedCopy" },
        { keys<AnalysisRow>(), "id file counts statedWords statedSegments statedCharacters" },
        { keys<BandCounts>(), "words segments characters" },
        { keys<Invoice>(),
            "id kind number sequence clientID client issueDate dueDate currency lines taxPercent taxLabel "
            "taxNote "
            "paymentTerms notes homeCurrency homeRate creditsInvoiceID creditsNumber pdfFile issuedAt "
            "payments created" },
        { keys<InvoiceLine>(), "id jobID title detail quantity unit unitPrice amount" },
        { keys<PartySnapshot>(), "name contact address email taxID" },
        { keys<Payment>(), "id date amount receivedHome rate note" },
        { keys<NumberSeries>(), "prefix includeYear resetEachYear digits next" },
        { keys<ExchangeRate>(), "id from to rate date source recordedAt" },
        { keys<ECBDay>(), "date perEuro" },
        { keys<RateBook>(), "ecb typed lastFetched" },
        { keys<CountingSetup>(), "options rateCards rateCardID cardClients importedFromTamberlin" },
        { keys<PriceTerms>(),
            "currency rate unit basis weights minimumFee surchargePercent taxPercent taxLabel" },
    };
    for (const auto& [found, expected] : cases)
        EXPECT_EQ(found, expected);
}

TEST(Records, aClientOfNoKeysHasTheDefaults)
{
    const auto client = read<Client>("{}");
    EXPECT_FALSE(client.id.isNil());
    EXPECT_EQ(client.timeZone, "Asia/Kathmandu");
    EXPECT_EQ(client.currency, "EUR");
    EXPECT_EQ(client.unit, RateUnit::word);
    EXPECT_EQ(client.basis, WordBasis::source);
    EXPECT_EQ(client.defaultRate, decimal("0.10"));
    EXPECT_EQ(client.weights.matchingPreset(), BandWeights::Preset::none);
    EXPECT_TRUE(client.minimumFee.isZero() && client.taxPercent.isZero() && client.rates.empty());
    EXPECT_EQ(client.paymentDays, 30);
    EXPECT_FALSE(client.archived);
    EXPECT_EQ(client.created, context.now);
    EXPECT_EQ(client.name + client.paymentTerms + client.taxLabel + client.notes, "");
}

TEST(Records, aNewLibraryHasItsProfileAndOneRateCard)
{
    const auto made = Library::makeNew();
    const auto empty = read<Library>("{}");
    EXPECT_EQ(empty.profile, made.profile);
    EXPECT_EQ(empty.counting.options, made.counting.options);
    EXPECT_FALSE(made.holdsRecords());
    EXPECT_EQ(made.version, 1);
    EXPECT_EQ(Base::toJson(made.profile, Base::JsonStyle::compact),
        R"({"bankDetails":"","creditSeries":{"digits":3,"includeYear":true,"next":{},"prefix":"CN-","resetEachYear":true},)"
        R"("defaultPaymentTerms":"Payment within 30 days of the invoice date, by bank transfer.","homeCurrency":"EUR",)"
        R"("invoiceSeries":{"digits":3,"includeYear":true,"next":{},"prefix":"INV-","resetEachYear":true},"paper":"a4",)"
        R"("quoteSeries":{"digits":3,"includeYear":true,"next":{},"prefix":"Q-","resetEachYear":true},"quoteValidDays":30,)"
        R"("sender":{"address":"","email":"","name":"","phone":"","taxID":"","website":""}})");
    ASSERT_EQ(made.counting.rateCards.size(), 1u);
    EXPECT_EQ(made.counting.rateCards[0].name, "Standard rate");
    EXPECT_FALSE(made.counting.rateCards[0].id.isNil());
}

// A document that has nothing but what each record can't do without.
const std::string leastDocument = R"({
    "clients": [{"rates": [{"rate": 0.5}], "weights": {"percent": {}, "floor75": true}}],
    "jobs": [
        {"clientID": "A0000000-0000-4000-8000-000000000001"},
        {"clientID": "a0000000-0000-4000-8000-000000000001", "analyses": [
            {"source": "tradosXML", "rows": [{"counts": {"words": {"exact": 5}, "segments": {}, "characters": {}}}]}
        ], "extras": [{"quantity": 2, "unitPrice": 3.5}]}
    ],
    "invoices": [{"kind": "creditNote", "clientID": "A0000000-0000-4000-8000-000000000001", "currency": "USD",
        "lines": [{"amount": -5}], "payments": [{"date": "2026-03-09T11:00:00Z", "amount": 1}]}],
    "rates": {"ecb": [{"date": "2026-03-09T11:00:00Z", "perEuro": {"USD": 1.1}}],
        "typed": [{"from": "EUR", "to": "USD", "rate": 1.1, "date": "2026-03-09T11:00:00Z", "source": {"typed": {}}}]},
    "counting": {"rateCards": [{}]}
})";

TEST(Records, theLeastDocumentReadsWithDefaults)
{
    const auto library = read<Library>(leastDocument);
    EXPECT_EQ(library.version, 1);
    EXPECT_TRUE(library.clients[0].weights.floor75);
    EXPECT_EQ(library.clients[0].weights.percentOf(MatchBand::exact), Base::Decimal(100));
    EXPECT_EQ(library.clients[0].rates[0].minimumFee, std::nullopt);

    auto job = library.jobs[0];
    EXPECT_FALSE(job.id.isNil());
    const Job expected { .id = job.id,
        .clientID = id(1),
        .status = JobStatus::quote,
        .received = context.now,
        .created = context.now,
        .modified = context.now };
    EXPECT_EQ(job, expected);
    EXPECT_TRUE(job.surchargePercent.isZero() && job.title.empty() && job.analyses.empty());

    const auto& analysis = library.jobs[1].analyses[0];
    EXPECT_EQ(library.jobs[1].clientID, id(1)); // Read in either case.
    EXPECT_EQ(analysis.importedAt, context.now);
    EXPECT_FALSE(analysis.rows[0].id.isNil() || analysis.id.isNil() || library.jobs[1].extras[0].id.isNil());
    EXPECT_EQ(analysis.statedTotalWords, std::nullopt);

    const auto& invoice = library.invoices[0];
    EXPECT_FALSE(invoice.isIssued() || invoice.issueDate || invoice.homeRate);
    EXPECT_EQ(invoice.created, context.now);
    EXPECT_EQ(invoice.lines[0].jobID, std::nullopt);
    EXPECT_EQ(library.rates.typed[0].recordedAt, context.now);
    EXPECT_EQ(library.rates.lastFetched, std::nullopt);
    EXPECT_EQ(library.counting.rateCards[0].name, "Standard rate");
    EXPECT_EQ(read<Library>(Base::toJson(library)), library);
}

TEST(Records, aRequiredKeyThatIsMissingIsNamedWithItsWay)
{
    const struct {
        std::string key, sentence;
    } cases[] {
        { R"("rate": 0.5)", "clients[0].rates[0]: The key “rate” is missing." },
        { R"("percent": {}, )", "clients[0].weights: The key “percent” is missing." },
        { R"(, "floor75": true)", "clients[0].weights: The key “floor75” is missing." },
        { R"("clientID": "A0000000-0000-4000-8000-000000000001")",
            "jobs[0]: The key “clientID” is missing." },
        { R"("source": "tradosXML", )", "jobs[1].analyses[0]: The key “source” is missing." },
        { R"("words": {"exact": 5}, )", "jobs[1].analyses[0].rows[0].counts: The key “words” is missing." },
        { R"("segments": {}, )", "jobs[1].analyses[0].rows[0].counts: The key “segments” is missing." },
        { R"("quantity": 2, )", "jobs[1].extras[0]: The key “quantity” is missing." },
        { R"(, "unitPrice": 3.5)", "jobs[1].extras[0]: The key “unitPrice” is missing." },
        { R"("kind": "creditNote", )", "invoices[0]: The key “kind” is missing." },
        { R"("amount": -5)", "invoices[0].lines[0]: The key “amount” is missing." },
        { R"(, "amount": 1)", "invoices[0].payments[0]: The key “amount” is missing." },
        { R"(, "perEuro": {"USD": 1.1})", "rates.ecb[0]: The key “perEuro” is missing." },
        { R"("from": "EUR", )", "rates.typed[0]: The key “from” is missing." },
        { R"(, "source": {"typed": {}})", "rates.typed[0]: The key “source” is missing." },
    };
    for (const auto& [key, sentence] : cases) {
        auto text = leastDocument;
        ASSERT_NE(text.find(key), std::string::npos) << key;
        text.erase(text.find(key), key.size());
        EXPECT_EQ(refusalOf<Library>(text), sentence);
    }
}

TEST(Records, onlyStatusUnitAndBasisAreRepairedWhenTheyCannotBeRead)
{
    for (const auto* value : { R"("lost")", R"("Paid")", "7", "null", "{}", R"(["paid"])", "true" }) {
        const auto job = read<Job>(
            R"({"clientID": "A0000000-0000-4000-8000-000000000001", "status": )" + std::string(value) + "}");
        EXPECT_EQ(job.status, JobStatus::quote) << value;
        const auto client
            = read<Client>(R"({"unit": )" + std::string(value) + R"(, "basis": )" + value + "}");
        EXPECT_EQ(client.unit, RateUnit::word) << value;
        EXPECT_EQ(client.basis, WordBasis::source) << value;
    }
    EXPECT_EQ(read<Client>(R"({"unit": "character", "basis": "target"})").unit, RateUnit::character);
    const struct {
        std::string text, sentence;
    } refused[] {
        { R"({"invoices": [{"kind": "bill"}]})", "invoices[0].kind: “bill” is not one of its values." },
        { R"({"profile": {"paper": "a5"}})", "profile.paper: “a5” is not one of its values." },
        { R"({"clients": [{}, {"name": 5}]})", "clients[1].name: Unexpected number." },
        { R"({"clients": [{"weights": {"percent": {"best": 1}, "floor75": false}}]})",
            "clients[0].weights.percent: The key “best” is not one of its values." },
        { R"({"jobs": [{"clientID": "1"}]})", "jobs[0].clientID: Not a UUID: 1" },
        { R"({"jobs": [{"deadline": "tomorrow"}]})", "jobs[0].deadline: Not an ISO 8601 date: tomorrow" },
        { R"({"version": "1"})", "version: Unexpected text." },
        { R"({"profile": {"invoiceSeries": {"next": {"2026": 1.5}}}})",
            "profile.invoiceSeries.next[“2026”]: The number 1.5 is not a whole number that fits." },
        { R"({"counting": {"options": {"included": ["body", "margin"], "countNumbers": true}}})",
            "counting.options.included[1]: “margin” is not one of its values." },
    };
    for (const auto& [text, sentence] : refused)
        EXPECT_EQ(refusalOf<Library>(text), sentence);
}

TEST(Records, datesAreTextOrSecondsSince2001)
{
    const struct {
        std::string value, date;
    } cases[] {
        { R"("2026-03-09T14:05:31Z")", "2026-03-09T14:05:31.000Z" },
        { R"("2026-03-09T14:05:31.25Z")", "2026-03-09T14:05:31.250Z" },
        { R"("2026-03-09T15:05:31.250+01:00")", "2026-03-09T14:05:31.250Z" },
        { "794757931.25", "2026-03-09T14:05:31.250Z" },
        { "7.94757931e8", "2026-03-09T14:05:31.000Z" },
        { "0", "2001-01-01T00:00:00.000Z" },
        { "-0.5", "2000-12-31T23:59:59.500Z" },
        { "1.0004999", "2001-01-01T00:00:01.000Z" },
    };
    for (const auto& [value, date] : cases)
        EXPECT_EQ(read<Client>(R"({"created": )" + value + "}").created.toString(), date) << value;
    for (const auto* value : { "1e300", "999999999999", "-99999999999", "true", R"("2026-03-09")", "{}" })
        EXPECT_NE(refusalOf<Client>(R"({"created": )" + std::string(value) + "}"), "(not refused)") << value;
}

TEST(Records, enumerationsWithPayloadsAreObjectsOfOneMember)
{
    const std::pair<ImportNote, std::string> notes[] {
        { InternalFuzzyAsNew { 3 }, R"({"internalFuzzyAsNew":{"words":3}})" },
        { InternalFuzzyOutsideTotal { 4 }, R"({"internalFuzzyOutsideTotal":{"words":4}})" },
        { MergedCategory { "Locked", MatchBand::perfect, 5 },
            R"({"merged":{"into":"perfect","label":"Locked","words":5}})" },
        { IgnoredCategory { "Tags", 6 }, R"({"ignored":{"label":"Tags","words":6}})" },
        { NoCharacters {}, R"({"noCharacters":{}})" },
        { UnverifiedLayout { "Trados Studio" }, R"({"unverifiedLayout":{"_0":"Trados Studio"}})" },
        { UnreadableFile { "a", "b" }, R"({"unreadable":{"file":"a","reason":"b"}})" },
        { TextNote { "t" }, R"({"text":{"_0":"t"}})" },
    };
    for (const auto& [note, text] : notes) {
        EXPECT_EQ(Base::toJson(note, Base::JsonStyle::compact), text);
        EXPECT_EQ(read<ImportNote>(text), note);
    }
    const std::pair<RateSource, std::string> sources[] { { FromECB {}, R"({"ecb":{}})" },
        { TypedByUser { "bank" }, R"({"typed":{"note":"bank"}})" } };
    for (const auto& [source, text] : sources) {
        EXPECT_EQ(Base::toJson(source, Base::JsonStyle::compact), text);
        EXPECT_EQ(read<RateSource>(text), source);
    }
    const std::string wrongCount = "Invalid number of keys found, expected one.";
    EXPECT_EQ(refusalOf<ImportNote>("{}"), wrongCount);
    EXPECT_EQ(refusalOf<ImportNote>(R"({"noCharacters": {}, "text": {"_0": "x"}})"), wrongCount);
    EXPECT_EQ(
        refusalOf<ImportNote>(R"({"merged": {"label": "x", "words": 1}})"), "The key “into” is missing.");
}

TEST(Records, aDocumentCutShortIsNeverRead)
{
    Library library;
    RandomRecords(4, 100).fill(library);
    const auto text = Base::toJson(library);
    for (std::size_t length = 0; length + 2 < text.size(); length += 37)
        ASSERT_NE(refusalOf<Library>(std::string_view(text).substr(0, length)), "(not refused)") << length;
}

} // namespace
