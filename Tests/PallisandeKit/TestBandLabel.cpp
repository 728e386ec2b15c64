#include "PallisandeKit/Analyses/BandLabel.h"

#include "PallisandeKit/Analyses/BandAliases.h"

#include <gtest/gtest.h>

#include <string>

using namespace Pallisande;
using namespace std::string_literals;

namespace {

std::string shown(const BandLabel& label)
{
    switch (label.kind) {
    case BandLabel::Kind::band:
        return std::string(Base::caseName(label.band)) + (label.isExact ? "" : "?");
    case BandLabel::Kind::total:
        return "total";
    case BandLabel::Kind::ignored:
        return "ignored";
    case BandLabel::Kind::other:
        return "other";
    case BandLabel::Kind::unknown:
        break;
    }
    return "unknown";
}

std::string shown(std::optional<BandLabel::Metric> metric)
{
    constexpr std::string_view names[] { "words", "segments", "characters", "percent", "other" };
    return metric ? std::string(names[static_cast<std::size_t>(*metric)]) : "none";
}

std::string shown(const BandLabel::Split& split) { return shown(split.label) + " " + shown(split.metric); }

TEST(BandLabel, knowsBandsInManySpellings)
{
    const struct {
        std::string label, meaning;
    } cases[] {
        { " Répétitions internes : ", "repetitions" },
        { "RÉPÉTITIONS\tINTERNES", "repetitions" },
        { "Re\u0301pe\u0301titions internes", "repetitions" }, // Accents as characters of their own.
        { "Fuzzy 75%–84%", "fuzzy75" },
        { "75 - 84 %", "fuzzy75" },
        { "75 — 84", "fuzzy75" },
        { "75\u00A0\u2212\u00A084\u00A0%", "fuzzy75" },
        { "(75‒84%)*", "fuzzy75" },
        { "50-74%", "fuzzy50" },
        { "95%-99%", "fuzzy95" },
        { "treffer 85-94", "fuzzy85" },
        { "Match95-99%", "fuzzy95" },
        { "0-49%", "noMatch" },
        { "No Match (0–49%)", "noMatch" },
        { "0-49", "noMatch?" },
        { "80-89%", "fuzzy75?" },
        { "95-100%", "fuzzy95?" },
        { "100%-100%", "exact" },
        { "100-100", "exact?" },
        { "100%-101%", "unknown" },
        { "85-84%", "unknown" },
        { "90-120%", "unknown" },
        { "75-84-85", "unknown" },
        { "1075-84%", "unknown" },
        { "75%%-84%", "unknown" },
        { "-84%", "unknown" },
        { "75-", "unknown" },
        { "Fuzzy match 75-84%", "unknown" },
        { "100%", "exact" },
        { "101%", "context" },
        { "ICE", "context" },
        { "Context_TM", "context" },
        { "X - translated", "perfect" },
        { "Perfect\u3000Match", "perfect" },
        { "Locked", "perfect?" },
        { "Verrouillé", "perfect?" },
        { "Cross-file  repetitions", "repetitions?" },
        { "Dateiübergreifende Wiederholungen", "repetitions?" },
        { "Keine Übereinstimmung", "noMatch" },
        { "Aucune correspondance", "noMatch" },
        { "New words", "noMatch" },
        { "\"Grand Total\"", "total" },
        { "Insgesamt:", "total" },
        { "MT", "ignored" },
        { "Non-translatables", "ignored" },
        { "File name", "other" },
        { "Chars / Word", "unknown" }, // Blanks around a slash stay.
        { "Chars/Word", "other" },
        { "", "other" },
        { " [ ] ", "other" },
        { "Comments", "unknown" },
        { "ПОВТОРЫ", "unknown" },
        { "\xFF\xFE", "unknown" },
        { std::string(100'000, '('), "other" },
        { std::string(100'000, '-'), "unknown" },
    };
    for (const auto& [label, meaning] : cases)
        EXPECT_EQ(shown(BandLabel::of(label)), meaning) << label.substr(0, 100);
}

TEST(BandLabel, normalizingChangesOnlyLatinLetters)
{
    EXPECT_EQ(BandLabel::normalized("ÀÉÎÕÜ Ñ Ł Ø İ"), "aeiou n ł ø i");
    EXPECT_EQ(BandLabel::normalized("Й Ё Ά が"), "й ё ά が");
    EXPECT_EQ(BandLabel::normalized(" a _ b\u00A0- c %\u2003d: "), "a b-c% d");
}

TEST(BandLabel, takesCombinedHeadersApart)
{
    const struct {
        std::string header, metric, parts;
    } cases[] {
        { "Words", "words", "other words" },
        { "Source Words", "words", "other words" },
        { "Wörter", "words", "other words" },
        { "Quellwörter", "words", "unknown words" },
        { "Segs", "segments", "other segments" },
        { "Segmenti", "segments", "unknown none" },
        { "Zeichen", "characters", "other characters" },
        { "%", "percent", "other percent" },
        { "Prozent", "percent", "unknown none" },
        { "Perfect Match Words", "other", "perfect words" },
        { "Perfect Match Source Chars", "other", "perfect characters" },
        { "95%-99% - Characters", "other", "fuzzy95 characters" },
        { "95-99% (Segments)", "other", "fuzzy95 segments" },
        { "95-99%: words", "other", "fuzzy95 words" },
        { "Context Segs", "other", "context segments" },
        { "Total – Wörter", "other", "total words" },
        { "New words", "other", "noMatch words" },
        { "No Match %", "other", "noMatch percent" },
        { "100%", "other", "exact none" },
        { "100 %", "other", "exact none" },
        { "100% %", "other", "exact percent" },
        { "Words (source)", "other", "unknown none" },
        { "Tags", "other", "unknown none" },
    };
    for (const auto& [header, metric, parts] : cases) {
        EXPECT_EQ(shown(BandLabel::metric(header)), metric) << header;
        EXPECT_EQ(shown(BandLabel::split(header)), parts) << header;
    }
}

TEST(BandAliases, knowRealExportsWhereBandLabelDoesNot)
{
    const struct {
        std::string label, meaning;
    } cases[] {
        { "100% Matches", "exact" },
        { "95% - 94%", "fuzzy95" },
        { "X-translated / double context", "perfect" },
        { "Dokumentenbasiert vorübersetzt / doppelter Kontext", "perfect" },
        { "Przetłumaczone z wersji", "perfect" },
        { "Powtórzenia", "repetitions" },
        { "Brak dopasowania", "noMatch" },
        { "Fragmenty", "ignored" },
        { "Alle", "total" },
        { "Char/Word", "other" },
        { "Neu/MÜ", "noMatch" },
        { "95-99% Fuzzy match", "fuzzy95" },
        { "95-99% Fuzzy repeat", "fuzzy95?" },
        { "80-89% Fuzzy match", "fuzzy75?" },
        { "Fuzzy match 75–84%", "fuzzy75" },
        { "Leveraged match", "exact?" },
        { "Leveraged", "unknown" },
        { "100-95%", "fuzzy95?" },
        { "50-0%", "noMatch?" },
        { "95%-100%：", "fuzzy95?" },
        { "95 %—100 %:", "fuzzy95?" },
        { "无匹配：", "noMatch" },
        { "Locked", "perfect?" }, // As BandLabel has it.
        { "fuzzy match", "unknown" },
        { "Comments", "unknown" },
    };
    for (const auto& [label, meaning] : cases)
        EXPECT_EQ(shown(BandAliases::label(label)), meaning) << label;

    const struct {
        std::string header, parts;
    } headers[] {
        { "Ausgangswörter", "other words" },
        { "Słowa w tekście źródłowym", "other words" },
        { "字符（含空白）", "other characters" },
        { "100% Matches Words", "exact words" },
        { "Chars/Word", "other none" },
        { "Total count words", "total words" },
        { "Golden Words", "unknown words" },
    };
    for (const auto& [header, parts] : headers)
        EXPECT_EQ(shown(BandAliases::split(header)), parts) << header;
}

} // namespace
