#include "PallisandeKit/Analyses/BandAliases.h"

#include <unordered_map>

namespace Pallisande::BandAliases {

namespace {

using Kind = BandLabel::Kind;
using Metric = BandLabel::Metric;

struct Alias {
    std::string_view label; // Normalized.
    BandLabel meaning;
};

constexpr BandLabel band(MatchBand band) { return { Kind::band, band, true }; }
constexpr BandLabel neighbour(MatchBand band) { return { Kind::band, band, false }; }
constexpr BandLabel total { .kind = Kind::total }, ignored { .kind = Kind::ignored },
    other { .kind = Kind::other };

constexpr Alias aliases[] {
    // memoQ and Phrase.
    { "100% matches", band(MatchBand::exact) },
    { "95%-94%", band(MatchBand::fuzzy95) }, // A slip of early versions of memoQ.
    { "x-translated / double context", band(MatchBand::perfect) },
    { "dokumentenbasiert vorubersetzt", band(MatchBand::perfect) },
    { "dokumentenbasiert vorubersetzt / doppelter kontext", band(MatchBand::perfect) },
    { "pretraducido basado en documentos", band(MatchBand::perfect) },
    { "przetłumaczone z wersji", band(MatchBand::perfect) },
    { "powtorzenia", band(MatchBand::repetitions) },
    { "powtorzenie", band(MatchBand::repetitions) },
    { "brak dopasowania", band(MatchBand::noMatch) },
    { "brak trafienia", band(MatchBand::noMatch) },
    { "fragmenty", ignored },
    { "alle", total },
    { "razem", total },
    { "char/word", other },
    { "type", other },
    { "typ", other },
    { "tipo", other },
    // Trados Studio, from its reports for reading.
    { "kontext-match", band(MatchBand::context) },
    { "new/at", band(MatchBand::noMatch) },
    { "neu/mu", band(MatchBand::noMatch) },
    // XTM.
    { "leveraged match", neighbour(MatchBand::exact) },
    { "repeat", band(MatchBand::repetitions) },
    { "no matching", band(MatchBand::noMatch) },
    { "non-translatable", ignored },
    { "total count", total },
    // Déjà Vu.
    { "duplicates", neighbour(MatchBand::repetitions) },
    { "guaranteed matches", neighbour(MatchBand::context) },
    // WorldServer, whose ranges go down and share their ends.
    { "100-95%", neighbour(MatchBand::fuzzy95) },
    { "95-85%", neighbour(MatchBand::fuzzy85) },
    { "85-75%", neighbour(MatchBand::fuzzy75) },
    { "75-50%", neighbour(MatchBand::fuzzy50) },
    { "50-0%", neighbour(MatchBand::noMatch) },
    { "asset", other },
    { "target locale", other },
    // OmegaT.
    { "重复", band(MatchBand::repetitions) },
    { "本文件内重复", band(MatchBand::repetitions) },
    { "与其他文件重复", neighbour(MatchBand::repetitions) },
    { "精确匹配", band(MatchBand::exact) },
    { "无匹配", band(MatchBand::noMatch) },
    { "总共", total },
    { "所有文件", total },
    // Tables that people make themselves.
    { "rep", band(MatchBand::repetitions) },
    { "rep.", band(MatchBand::repetitions) },
    { "sum", total },
    { "suma", total },
    { "somme", total },
    { "somma", total },
};

constexpr std::pair<std::string_view, Metric> metricAliases[] {
    { "ausgangsworter", Metric::words },
    { "słowa w tekscie zrodłowym", Metric::words },
    { "词汇", Metric::words },
    { "segmenty", Metric::segments },
    { "片段", Metric::segments },
    { "ausgangszeichen", Metric::characters },
    { "caracteres de origen", Metric::characters },
    { "znaki w tekscie zrodłowym", Metric::characters },
    { "字符（含空白", Metric::characters }, // With blanks, as rates per character are usually meant.
    { "procent", Metric::percent },
};

// Without the marks of East Asian texts around it, which normalizing leaves.
std::string cleaned(std::string_view label)
{
    auto text = BandLabel::normalized(label);
    for (const std::string_view mark : { "：", "）" }) {
        if (text.ends_with(mark))
            text = BandLabel::normalized(std::string_view(text).substr(0, text.size() - mark.size()));
    }
    return text;
}

} // namespace

BandLabel label(std::string_view label)
{
    if (const auto known = BandLabel::of(label); known.kind != Kind::unknown)
        return known;
    const auto text = cleaned(label);
    static const auto meanings = [] {
        std::unordered_map<std::string_view, BandLabel> made;
        for (const auto& alias : aliases)
            made.emplace(alias.label, alias.meaning);
        return made;
    }();
    if (const auto alias = meanings.find(text); alias != meanings.end())
        return alias->second;
    // "95-99% Fuzzy match"; what XTM calls a fuzzy repeat is like other segments of the same texts.
    for (const std::string_view suffix : { " fuzzy match", " fuzzy repeat" }) {
        if (text.ends_with(suffix)) {
            auto range = BandLabel::of(std::string_view(text).substr(0, text.size() - suffix.size()));
            range.isExact = range.isExact && suffix == " fuzzy match";
            return range;
        }
    }
    constexpr std::string_view fuzzyMatch = "fuzzy match ";
    return BandLabel::of(std::string_view(text).substr(text.starts_with(fuzzyMatch) ? fuzzyMatch.size() : 0));
}

Metric metric(std::string_view header)
{
    if (const auto known = BandLabel::metric(header); known != Metric::other)
        return known;
    const auto text = cleaned(header);
    for (const auto& [alias, metric] : metricAliases) {
        if (alias == text)
            return metric;
    }
    return Metric::other;
}

BandLabel::Split split(std::string_view header)
{
    if (const auto whole = metric(header); whole != Metric::other)
        return { other, whole, {} };
    if (const auto whole = label(header); whole.kind == Kind::other) // "Chars/Word" isn't words of “chars”.
        return { whole, std::nullopt, cleaned(header) };
    auto split = BandLabel::split(header);
    if (split.label.kind == Kind::unknown)
        split.label = label(split.text);
    return split;
}

} // namespace Pallisande::BandAliases
