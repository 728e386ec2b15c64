#pragma once

#include <cstdint>

namespace Tamberlin {

// What a character is for the rules of counting; decided by its first code point.
enum class CharacterKind : std::uint8_t {
    symbol,
    letter, // Unicode general category L.
    number, // Has a numeric value.
    dictionaryMark, // Of a script whose words are found with a dictionary.
    dictionaryLetter,
    dictionaryNumber,
    cjk,
    cjkPunctuation,
    space,
    lineBreak,
    invisible,
    invisibleSpace, // U+200B: takes no room, but separates words.
};

// Unicode’s Grapheme_Cluster_Break (UAX #29), with Extended_Pictographic.
enum class ClusterBreak : std::uint8_t {
    other,
    cr,
    lf,
    control,
    extend,
    prepend,
    spacingMark,
    l,
    v,
    t,
    lv,
    lvt,
    regional,
    zwj,
    pictographic,
};

// What a code point does in a conjunct of an Indic script, whose consonants are one character: rule GB9c of
// UAX #29, for the scripts for which CLDR 42 has it.
enum class ConjunctRole : std::uint8_t {
    none,
    consonant,
    virama, // Between two consonants, it links them.
    extension, // May stand beside a virama.
};

struct CharacterProperties {
    std::uint16_t packed;

    CharacterKind kind() const { return static_cast<CharacterKind>(packed >> 4 & 15); }
    ClusterBreak clusterBreak() const { return static_cast<ClusterBreak>(packed & 15); }
    // Text of such code points alone is in Unicode’s form NFC.
    bool isComposed() const { return packed >> 8 & 1; }
    ConjunctRole conjunctRole() const { return static_cast<ConjunctRole>(packed >> 9 & 3); }
    // Between two such code points a character always ends.
    bool standsAlone() const { return packed >> 11 & 1; }
    // It does, is in NFC and no blank: nothing that normalizing a text could change.
    bool isOrdinary() const { return packed >> 12 & 1; }
    // It does, and is a CJK character or CJK punctuation.
    bool isLoneCJK() const { return packed >> 13 & 1; }
};

namespace CharacterTable {

extern const unsigned char* const blockOfCodePoint;
extern const std::uint16_t* const blockData;

} // namespace CharacterTable

// Of any code point up to U+10FFFF.
inline CharacterProperties propertiesOf(char32_t codePoint)
{
    const auto block = CharacterTable::blockOfCodePoint[codePoint >> 8];
    return { CharacterTable::blockData[block << 8 | (codePoint & 0xFF)] };
}

} // namespace Tamberlin
