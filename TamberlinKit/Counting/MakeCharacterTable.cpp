#include "TamberlinKit/Counting/CharacterKinds.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/uscript.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>
#include <vector>

// Writes the table of CharacterKinds.h from the Unicode data of ICU, while the project is built: making it at
// every start would take longer than counting most documents.
namespace {

using namespace Tamberlin;

constexpr int codePointCount = 0x110000;
constexpr int blockSize = 256;

using Range = std::pair<UChar32, UChar32>;

template <std::size_t Size> bool isIn(const std::array<Range, Size>& ranges, UChar32 c)
{
    return std::any_of(ranges.begin(), ranges.end(),
        [c](const Range& range) { return c >= range.first && c <= range.second; });
}

constexpr std::array<Range, 16> cjk { { { 0x1100, 0x11FF }, { 0x2E80, 0x2FDF }, { 0x3005, 0x3005 },
    { 0x3007, 0x3007 }, { 0x3021, 0x3029 }, { 0x3038, 0x303B }, { 0x3040, 0x30FA }, { 0x30FC, 0x30FF },
    { 0x3130, 0x318F }, { 0x31F0, 0x31FF }, { 0x3400, 0x4DBF }, { 0x4E00, 0x9FFF }, { 0xAC00, 0xD7AF },
    { 0xF900, 0xFAFF }, { 0xFF66, 0xFF9F }, { 0x20000, 0x323AF } } };
constexpr std::array<Range, 7> cjkPunctuation { { { 0x3000, 0x303F }, { 0x30FB, 0x30FB }, { 0xFE30, 0xFE4F },
    { 0xFF01, 0xFF0F }, { 0xFF1A, 0xFF20 }, { 0xFF3B, 0xFF40 }, { 0xFF5B, 0xFF65 } } };
// Thai and Lao, Khmer, Myanmar: words are found with a dictionary.
constexpr std::array<Range, 3> dictionary { { { 0x0E00, 0x0EFF }, { 0x1780, 0x17FF }, { 0x1000, 0x109F } } };
constexpr std::array<Range, 3> lineBreaks { { { 0x0A, 0x0D }, { 0x85, 0x85 }, { 0x2028, 0x2029 } } };
constexpr std::array<Range, 4> invisible { { { 0xAD, 0xAD }, { 0x200B, 0x200D }, { 0x2060, 0x2060 },
    { 0xFEFF, 0xFEFF } } };

CharacterKind kind(UChar32 c)
{
    if (isIn(lineBreaks, c))
        return CharacterKind::lineBreak;
    if (isIn(invisible, c))
        return c == 0x200B ? CharacterKind::invisibleSpace : CharacterKind::invisible;
    if (u_isUWhiteSpace(c))
        return CharacterKind::space;
    if (isIn(cjk, c))
        return CharacterKind::cjk;
    if (isIn(cjkPunctuation, c))
        return CharacterKind::cjkPunctuation;
    const bool isDictionary = isIn(dictionary, c);
    if (U_GET_GC_MASK(c) & U_GC_L_MASK)
        return isDictionary ? CharacterKind::dictionaryLetter : CharacterKind::letter;
    if (u_getIntPropertyValue(c, UCHAR_NUMERIC_TYPE) != U_NT_NONE)
        return isDictionary ? CharacterKind::dictionaryNumber : CharacterKind::number;
    return isDictionary ? CharacterKind::dictionaryMark : CharacterKind::symbol;
}

ClusterBreak clusterBreak(UChar32 c)
{
    switch (u_getIntPropertyValue(c, UCHAR_GRAPHEME_CLUSTER_BREAK)) {
    case U_GCB_CR:
        return ClusterBreak::cr;
    case U_GCB_LF:
        return ClusterBreak::lf;
    case U_GCB_CONTROL:
        return ClusterBreak::control;
    case U_GCB_EXTEND:
        return ClusterBreak::extend;
    case U_GCB_PREPEND:
        return ClusterBreak::prepend;
    case U_GCB_SPACING_MARK:
        return ClusterBreak::spacingMark;
    case U_GCB_L:
        return ClusterBreak::l;
    case U_GCB_V:
        return ClusterBreak::v;
    case U_GCB_T:
        return ClusterBreak::t;
    case U_GCB_LV:
        return ClusterBreak::lv;
    case U_GCB_LVT:
        return ClusterBreak::lvt;
    case U_GCB_REGIONAL_INDICATOR:
        return ClusterBreak::regional;
    case U_GCB_ZWJ:
        return ClusterBreak::zwj;
    default:
        return u_hasBinaryProperty(c, UCHAR_EXTENDED_PICTOGRAPHIC) ? ClusterBreak::pictographic
                                                                   : ClusterBreak::other;
    }
}

bool isComposed(UChar32 c)
{
    return u_getIntPropertyValue(c, UCHAR_NFC_QUICK_CHECK) == UNORM_YES && u_getCombiningClass(c) == 0;
}

ConjunctRole conjunctRole(UChar32 c)
{
    UErrorCode status = U_ZERO_ERROR;
    constexpr std::array scripts { USCRIPT_GUJARATI, USCRIPT_TELUGU, USCRIPT_MALAYALAM, USCRIPT_ORIYA,
        USCRIPT_BENGALI, USCRIPT_DEVANAGARI };
    const bool hasConjuncts
        = std::find(scripts.begin(), scripts.end(), uscript_getScript(c, &status)) != scripts.end();
    const auto syllabic = u_getIntPropertyValue(c, UCHAR_INDIC_SYLLABIC_CATEGORY);
    if (hasConjuncts && syllabic == U_INSC_CONSONANT)
        return ConjunctRole::consonant;
    if (hasConjuncts && syllabic == U_INSC_VIRAMA)
        return ConjunctRole::virama;
    const bool isExtension = clusterBreak(c) == ClusterBreak::zwj
        || (clusterBreak(c) == ClusterBreak::extend && u_getCombiningClass(c) != 0);
    return isExtension ? ConjunctRole::extension : ConjunctRole::none;
}

bool standsAlone(UChar32 c)
{
    switch (clusterBreak(c)) {
    case ClusterBreak::other:
    case ClusterBreak::control:
    case ClusterBreak::lf:
    case ClusterBreak::lv:
    case ClusterBreak::lvt:
    case ClusterBreak::pictographic:
        return conjunctRole(c) == ConjunctRole::none;
    default:
        return false;
    }
}

bool isOrdinary(UChar32 c)
{
    const auto isBlank = kind(c) == CharacterKind::space || kind(c) == CharacterKind::lineBreak;
    return standsAlone(c) && isComposed(c) && !isBlank;
}

std::uint16_t packed(UChar32 c)
{
    const bool isCJK = kind(c) == CharacterKind::cjk || kind(c) == CharacterKind::cjkPunctuation;
    return static_cast<std::uint16_t>((isCJK && standsAlone(c) ? 1 << 13 : 0) | (isOrdinary(c) ? 1 << 12 : 0)
        | (standsAlone(c) ? 1 << 11 : 0) | static_cast<int>(conjunctRole(c)) << 9
        | (isComposed(c) ? 1 << 8 : 0) | static_cast<int>(kind(c)) << 4 | static_cast<int>(clusterBreak(c)));
}

template <typename Values> void write(const char* declaration, const Values& values)
{
    std::printf("%s {", declaration);
    for (std::size_t place = 0; place < values.size(); ++place)
        std::printf("%s%d,", place % 32 == 0 ? "\n    " : " ", int { values[place] });
    std::printf("\n};\n");
}

} // namespace

int main()
{
    std::vector<std::vector<std::uint16_t>> blocks;
    std::vector<int> places;
    for (int start = 0; start < codePointCount; start += blockSize) {
        std::vector<std::uint16_t> block;
        for (int c = start; c < start + blockSize; ++c)
            block.push_back(packed(c));
        auto found = std::find(blocks.begin(), blocks.end(), block);
        if (found == blocks.end())
            found = blocks.insert(blocks.end(), std::move(block));
        places.push_back(static_cast<int>(found - blocks.begin()));
    }
    std::vector<std::uint16_t> all;
    for (const auto& block : blocks)
        all.insert(all.end(), block.begin(), block.end());
    write("constexpr unsigned char blocks[]", places);
    write("constexpr std::uint16_t data[]", all);
    return blocks.size() <= 256 ? 0 : 1;
}
