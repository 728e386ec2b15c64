#include "PallisandeKit/Samples/SampleRecords.h"

namespace Pallisande::Sample {

using Base::Decimal;

void fillIn(Profile& profile)
{
    profile.sender.name = "Mira Lindqvist Translations";
    profile.sender.address = "Rosenweg 3\n04109 Leipzig\nGermany";
    profile.sender.email = "mira@lindqvist.example";
    profile.sender.taxID = "DE299999999";
    profile.bankDetails = "IBAN DE02 1203 0000 0000 2020 51";
}

Client publisher(Base::Instant created)
{
    return { .id = Base::Uuid::random(),
        .name = "Nordwind Verlag GmbH",
        .contact = "Frauke Albers",
        .email = "albers@nordwind.example",
        .address = "Speicherstraße 14\n20457 Hamburg\nGermany",
        .taxID = "DE811234567",
        .timeZone = "Europe/Berlin",
        .currency = "EUR",
        .defaultRate = Decimal::ofParts(12, -2),
        .rates
        = { { .id = Base::Uuid::random(), .pair = { "de", "en" }, .rate = Decimal::ofParts(135, -3) } },
        .weights = BandWeights::of(BandWeights::Preset::graduated),
        .minimumFee = 40,
        .taxPercent = 19,
        .taxLabel = "VAT",
        .paymentDays = 30,
        .notes = "Style guide of 2024; British spelling.",
        .created = created };
}

Client shipping(Base::Instant created)
{
    return { .id = Base::Uuid::random(),
        .name = "Harbour Line Shipping Ltd",
        .contact = "Accounts payable",
        .email = "accounts@harbourline.example",
        .address = "8 Quay Street\nBristol BS1 4DJ\nUnited Kingdom",
        .taxID = "GB123456789",
        .timeZone = "Europe/London",
        .currency = "GBP",
        .basis = WordBasis::target,
        .defaultRate = Decimal::ofParts(11, -2),
        .minimumFee = 35,
        .taxNote = "Reverse charge: VAT is to be accounted for by the recipient.",
        .paymentDays = 14,
        .created = created };
}

Client software(Base::Instant created)
{
    return { .id = Base::Uuid::random(),
        .name = "Blue Mesa Software, Inc.",
        .contact = "Dana Whitfield",
        .email = "localization@bluemesa.example",
        .address = "1200 Juniper Street\nSanta Fe, NM 87501\nUSA",
        .timeZone = "America/Denver",
        .currency = "USD",
        .defaultRate = Decimal::ofParts(14, -2),
        .weights = BandWeights::of(BandWeights::Preset::repetitionsAnd100),
        .taxNote = "Reverse charge: the service is taxed at the recipient.",
        .paymentDays = 30,
        .created = created };
}

Client museum(Base::Instant created)
{
    return { .id = Base::Uuid::random(),
        .name = "Hoshino Museum of Craft",
        .contact = "Keiko Arai",
        .email = "office@hoshino-museum.example",
        .address = "4-12 Sakuragaoka\nKanazawa 920-0936\nJapan",
        .timeZone = "Asia/Tokyo",
        .currency = "JPY",
        .unit = RateUnit::character,
        .defaultRate = 9,
        .paymentDays = 60,
        .created = created };
}

std::vector<ECBDay> rates(Base::Day today, const Base::Calendar& calendar)
{
    std::vector<ECBDay> days;
    for (int ago = 14; ago > 0; --ago) {
        const auto day = today.plusDays(-ago);
        constexpr std::int64_t millisecondsOfDay = 86'400'000;
        const auto weekday // 0 is Sunday.
            = (Base::Calendar::utc().noon(day).milliseconds / millisecondsOfDay + 4) % 7;
        if (weekday == 0 || weekday == 6)
            continue;
        const int drift = ago * 7 % 10 - 5;
        days.push_back({ .date = calendar.noon(day),
            .perEuro = { { "CHF", Decimal::ofParts(9410 + drift, -4) },
                { "GBP", Decimal::ofParts(85420 + 11 * drift, -5) },
                { "JPY", Decimal::ofParts(16390 + 15 * drift, -2) },
                { "USD", Decimal::ofParts(10830 + 12 * drift, -4) } } });
    }
    return days;
}

} // namespace Pallisande::Sample
