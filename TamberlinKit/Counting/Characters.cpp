#include "TamberlinKit/Counting/Characters.h"

namespace Tamberlin {

namespace {

constexpr CodePoint replacement { 0xFFFD, 1 };

bool isControl(ClusterBreak value)
{
    return value == ClusterBreak::cr || value == ClusterBreak::lf || value == ClusterBreak::control;
}

// Decides from one code point to the next whether a character goes on (UAX #29, rules GB3 to GB13).
class ClusterRules {
public:
    explicit ClusterRules(CharacterProperties first)
        : m_before(first.clusterBreak())
        , m_isPicture(m_before == ClusterBreak::pictographic)
        , m_isOddRegional(m_before == ClusterBreak::regional)
        , m_isConjunct(first.conjunctRole() == ConjunctRole::consonant)
    {
    }

    bool goOnWith(CharacterProperties properties)
    {
        const auto next = properties.clusterBreak();
        const auto role = properties.conjunctRole();
        const bool isLinked = m_isLinked && role == ConjunctRole::consonant;
        if (!isLinked && !joins(next))
            return false;
        m_isLinked = m_isConjunct
            && (role == ConjunctRole::virama || (m_isLinked && role == ConjunctRole::extension));
        m_isConjunct = role == ConjunctRole::consonant || (m_isConjunct && role != ConjunctRole::none);
        m_joinsPicture = m_isPicture && next == ClusterBreak::zwj;
        m_isPicture = next == ClusterBreak::pictographic || (m_isPicture && next == ClusterBreak::extend);
        m_isOddRegional = next == ClusterBreak::regional && !m_isOddRegional;
        m_before = next;
        return true;
    }

private:
    bool joins(ClusterBreak next) const
    {
        using enum ClusterBreak;
        if (isControl(m_before) || isControl(next))
            return m_before == cr && next == lf;
        if (next == extend || next == zwj || next == spacingMark || m_before == prepend)
            return true;
        switch (m_before) {
        case l:
            return next == l || next == v || next == lv || next == lvt;
        case lv:
        case v:
            return next == v || next == t;
        case lvt:
        case t:
            return next == t;
        case zwj:
            return m_joinsPicture && next == pictographic;
        case regional:
            return m_isOddRegional && next == regional;
        default:
            return false;
        }
    }

    ClusterBreak m_before;
    bool m_isPicture; // A picture, perhaps with extensions, is what was last.
    bool m_joinsPicture = false; // And then a joiner.
    bool m_isOddRegional; // Flags are pairs of regional indicators.
    bool m_isConjunct; // A consonant of an Indic script, perhaps with extensions, is what was last.
    bool m_isLinked = false; // And a virama among them.
};

} // namespace

CodePoint longCodePointAt(std::string_view text, std::size_t at)
{
    const auto byte = [&](std::size_t place) { return static_cast<unsigned char>(text[place]); };
    const unsigned first = byte(at);
    const unsigned size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() - at < size)
        return replacement;
    char32_t value = first & (0xFFu >> (size + 1));
    for (unsigned place = 1; place < size; ++place) {
        if ((byte(at + place) & 0xC0) != 0x80)
            return replacement;
        value = value << 6 | (byte(at + place) & 0x3Fu);
    }
    constexpr char32_t smallest[] { 0, 0, 0x80, 0x800, 0x10000 };
    const bool isValid
        = value >= smallest[size] && value <= 0x10FFFF && !(value >= 0xD800 && value <= 0xDFFF);
    return isValid ? CodePoint { value, size } : replacement;
}

void CharacterReader::extend(Character& character, CharacterProperties first)
{
    ClusterRules rules(first);
    while (!isAtEnd() && rules.goOnWith(m_properties)) {
        const auto kind = m_properties.kind();
        character.isInvisible = character.isInvisible
            && (kind == CharacterKind::invisible || kind == CharacterKind::invisibleSpace);
        character.isSingle = false;
        m_at += m_codePoint.size;
        character.end = m_at;
        lookAhead();
    }
}

} // namespace Tamberlin
