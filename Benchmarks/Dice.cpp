#include "Benchmarks/Dice.h"

namespace Benchmarks {

namespace {

constexpr std::string_view vocabulary[] { "annual", "report", "user", "manual", "contract", "chapter",
    "patent", "press", "release", "website", "brochure", "safety", "data", "sheet", "terms", "of", "delivery",
    "and", "service", "for", "medical", "device", "software", "interface", "strings", "subtitles",
    "catalogue", "spring", "collection", "minutes", "board", "meeting", "appendix", "quality", "handbook",
    "training", "course", "questionnaire", "court", "ruling", "Bedienungsanleitung", "Geschäftsbericht",
    "Übersetzung", "Prüfbericht", "für", "Maßnahmen", "contrôle", "qualité", "procédure", "sécurité",
    "données", "équipement", "contrato", "año", "información", "señal", "naïve", "façade", "取扱説明書",
    "報告書", "договор", "приложение", "umowa", "załącznik" };

} // namespace

std::uint64_t Dice::next()
{
    m_state += 0x9E3779B97F4A7C15u;
    auto mixed = (m_state ^ m_state >> 30) * 0xBF58476D1CE4E5B9u;
    mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EBu;
    return mixed ^ mixed >> 31;
}

std::int64_t Dice::between(std::int64_t low, std::int64_t high)
{
    return low + static_cast<std::int64_t>(next() % static_cast<std::uint64_t>(high - low + 1));
}

std::string Dice::words(std::size_t count)
{
    std::string text;
    for (std::size_t word = 0; word < count; ++word)
        text.append(word == 0 ? "" : " ").append(pick(vocabulary));
    return text;
}

} // namespace Benchmarks
