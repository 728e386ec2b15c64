#include "PallisandeKit/Analyses/BandLabel.h"

#include "Base/Text.h"

#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/uscript.h>

#include <algorithm>
#include <initializer_list>
#include <unordered_map>

namespace Pallisande {

namespace {

using Kind = BandLabel::Kind;
using Metric = BandLabel::Metric;

constexpr BandLabel band(MatchBand band) { return { Kind::band, band, true }; }
constexpr BandLabel neighbour(MatchBand band) { return { Kind::band, band, false }; }

template <typename Meaning> struct Set {
    Meaning meaning;
    std::initializer_list<std::string_view> labels;
};

const Set<BandLabel> labelSets[] {
    { band(MatchBand::perfect),
        { "perfect match", "perfect", "perfectmatch", "pm", "x-translated", "xtranslated", "x translated",
            "perfect matches" } },
    { neighbour(MatchBand::perfect),
        { "locked", "locked segments", "gesperrt", "bloqueado", "bloqueados", "verrouille", "verrouilles",
            "bloccato" } },
    { band(MatchBand::context),
        { "context match", "context matches", "context", "context tm", "101%", "101", "in context exact",
            "incontextexact", "ice", "ice match", "kontexttreffer", "kontext", "coincidencia de contexto",
            "correspondance contextuelle", "contesto", "correspondencia de contexto", "contexto" } },
    { band(MatchBand::repetitions),
        { "repetitions", "repetition", "reps", "repeated", "repetitions within job", "wiederholungen",
            "wiederholung", "repeticiones", "repeticion", "repetitions internes", "repetizioni",
            "repeticoes" } },
    { neighbour(MatchBand::repetitions),
        { "cross-file repetitions", "crossfile repetitions", "cross file repetitions", "crossfilerepeated",
            "cross-file repeated", "dateiubergreifende wiederholungen", "repeticiones entre archivos" } },
    { band(MatchBand::exact),
        { "100%", "100", "exact", "exact match", "exact matches", "100% match", "match 100%", "100%-100%" } },
    { band(MatchBand::noMatch),
        { "no match", "nomatch", "no matches", "new", "new words", "new segments", "0%", "0-49%",
            "no match (0-49%)", "keine ubereinstimmung", "kein treffer", "neu", "sin coincidencia",
            "sin coincidencias", "nuevo", "nuevas", "pas de correspondance", "aucune correspondance",
            "nouveau", "nessuna corrispondenza", "nuovo", "nenhuma correspondencia", "sem correspondencia",
            "novo" } },
    { { .kind = Kind::total },
        { "total", "totals", "all", "grand total", "summe", "gesamt", "insgesamt", "total general", "totale",
            "totaal", "totales", "somme", "tous", "todos" } },
    { { .kind = Kind::ignored },
        { "tagging errors", "fragments", "fragment", "mt", "machine translation", "nt", "non-translatables",
            "non translatables", "nontranslatable", "auto-propagated", "autopropagated", "fragmente",
            "fragmentos", "ai", "lqa" } },
    { { .kind = Kind::other },
        { "file", "file name", "filename", "name", "document", "documents", "datei", "dateiname", "archivo",
            "nombre", "fichier", "documento", "chars/word", "characters/word", "chars per word", "language",
            "languages", "target language", "source language", "job", "jobs", "" } },
};

const Set<Metric> metricSets[] {
    { Metric::words,
        { "words", "word", "source words", "wordcount", "word count", "worter", "wort", "palabras",
            "palabras de origen", "mots", "mots source", "parole", "palavras", "quellworter" } },
    { Metric::segments, { "segments", "segment", "segs", "segmente", "segmentos", "segmenti" } },
    { Metric::characters,
        { "characters", "chars", "source chars", "source characters", "zeichen", "caracteres",
            "caratteri" } },
    { Metric::percent,
        { "percent", "%", "percentage", "prozent", "porcentaje", "pourcentage", "percentuale" } },
};

// The ends of combined headers, in the order in which they are tried.
constexpr std::pair<std::string_view, Metric> suffixes[] {
    { "source words", Metric::words },
    { "source chars", Metric::characters },
    { "source characters", Metric::characters },
    { "words", Metric::words },
    { "word", Metric::words },
    { "segments", Metric::segments },
    { "segs", Metric::segments },
    { "characters", Metric::characters },
    { "chars", Metric::characters },
    { "percent", Metric::percent },
    { "%", Metric::percent },
    { "worter", Metric::words },
    { "palabras", Metric::words },
    { "mots", Metric::words },
    { "segmente", Metric::segments },
    { "segmentos", Metric::segments },
    { "zeichen", Metric::characters },
    { "caracteres", Metric::characters },
};

// What may stand before a range. The first that fits is taken, which is why "fuzzy match" needs no line.
constexpr std::string_view rangePrefixes[] { "fuzzy", "match", "treffer", "coincidencia", "correspondance" };

template <typename Meaning, std::size_t Count>
std::unordered_map<std::string, Meaning> dictionary(const Set<Meaning> (&sets)[Count])
{
    std::unordered_map<std::string, Meaning> meanings;
    for (const auto& [meaning, labels] : sets) {
        for (const auto label : labels) // Normalizing takes the last parenthesis of "no match (0-49%)" too.
            meanings.emplace(BandLabel::normalized(label), meaning); // The first set that holds a label wins.
    }
    return meanings;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Lower case, and Latin letters lose their diacritics; other scripts keep theirs.
icu::UnicodeString folded(std::string_view label)
{
    auto text = icu::UnicodeString::fromUTF8(
        icu::StringPiece(label.data(), static_cast<std::int32_t>(label.size())));
    text.toLower(icu::Locale::getUS());
    UErrorCode status = U_ZERO_ERROR;
    const auto decomposed = icu::Normalizer2::getNFDInstance(status)->normalize(text, status);
    icu::UnicodeString kept;
    bool isLatin = false;
    for (std::int32_t at = 0; at < decomposed.length(); at = decomposed.moveIndex32(at, 1)) {
        const UChar32 c = decomposed.char32At(at);
        if (u_charType(c) != U_NON_SPACING_MARK)
            isLatin = uscript_hasScript(c, USCRIPT_LATIN);
        else if (isLatin)
            continue;
        kept.append(c);
    }
    return icu::Normalizer2::getNFCInstance(status)->normalize(kept, status);
}

// Puts a label together from its folded characters, in single blanks where blanks stay at all.
class Spacing {
public:
    void add(char32_t point)
    {
        const auto c = plain(point);
        if (c == ' ') {
            m_isBlank = true;
            return;
        }
        if (m_isBlank && c != '-' && c != '%' && !m_text.ends_with('-'))
            m_text += ' ';
        m_isBlank = false;
        Base::appendUtf8(m_text, c);
    }

    const std::string& text() const { return m_text; }

private:
    static char32_t plain(char32_t c)
    {
        if (c > ' ' && c < 0x7F)
            return c == '_' ? ' ' : c;
        if (c == 0x2012 || c == 0x2013 || c == 0x2014 || c == 0x2212)
            return '-';
        return u_isUWhiteSpace(static_cast<UChar32>(c)) ? ' ' : c;
    }

    std::string m_text;
    bool m_isBlank = false; // Written when what follows shows that it stays.
};

std::string_view trimmedOf(std::string_view text, std::string_view marks)
{
    const auto from = text.find_first_not_of(marks);
    return from == text.npos ? "" : text.substr(from, text.find_last_not_of(marks) + 1 - from);
}

// One to three digits and perhaps a percent sign, taken off the front.
std::optional<int> takePercent(std::string_view& text)
{
    int value = 0;
    std::size_t digits = 0;
    for (; digits < text.size() && digits < 3 && isDigit(text[digits]); ++digits)
        value = value * 10 + (text[digits] - '0');
    if (digits == 0)
        return std::nullopt;
    text.remove_prefix(digits);
    if (text.starts_with('%'))
        text.remove_prefix(1);
    return value;
}

BandLabel range(std::string_view label)
{
    for (const auto prefix : rangePrefixes) {
        if (label.starts_with(prefix)) {
            label = trimmedOf(label.substr(prefix.size()), " ");
            break;
        }
    }
    const auto minimum = takePercent(label);
    if (!minimum || !label.starts_with('-'))
        return {};
    label.remove_prefix(1);
    const auto maximum = takePercent(label);
    if (!maximum || !label.empty() || *maximum < *minimum || *maximum > 100)
        return {};
    const auto band = bandForPercent(*minimum);
    return { Kind::band, band, isStandardRange(band, *minimum, *maximum) };
}

BandLabel classified(const std::string& normalized)
{
    static const auto meanings = dictionary(labelSets);
    const auto found = meanings.find(normalized);
    return found != meanings.end() ? found->second : range(normalized);
}

} // namespace

std::string BandLabel::normalized(std::string_view label)
{
    Spacing spaced;
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    if (std::all_of(label.begin(), label.end(), isAscii)) {
        for (const char c : label)
            spaced.add(static_cast<char32_t>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c));
    } else {
        const auto text = folded(label);
        for (std::int32_t at = 0; at < text.length(); at = text.moveIndex32(at, 1))
            spaced.add(static_cast<char32_t>(text.char32At(at)));
    }
    return std::string(trimmedOf(spaced.text(), " :()[]*\""));
}

BandLabel BandLabel::of(std::string_view label) { return classified(normalized(label)); }

Metric BandLabel::metric(std::string_view header)
{
    static const auto meanings = dictionary(metricSets);
    const auto found = meanings.find(normalized(header));
    return found != meanings.end() ? found->second : Metric::other;
}

BandLabel::Split BandLabel::split(std::string_view header)
{
    const auto whole = normalized(header);
    for (const auto& [suffix, metric] : suffixes) {
        if (!whole.ends_with(suffix))
            continue;
        const auto before = std::string_view(whole).substr(0, whole.size() - suffix.size());
        if (suffix == "%" && !before.empty() && isDigit(before.back()))
            continue;
        auto text = normalized(trimmedOf(before, " -:/|,;."));
        return { classified(text), metric, std::move(text) };
    }
    return { classified(whole), std::nullopt, whole };
}

} // namespace Pallisande
