#include "DocumentReader/Characters.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

namespace Tamberlin {

bool isBlank(char32_t c)
{
    if (c < 0x7F)
        return c <= U' ';
    return c < 0xA0 || c == 0xA0 || (c >= 0x1680 && u_isUWhiteSpace(static_cast<UChar32>(c)));
}

bool isEastAsian(char32_t c)
{
    return (c >= 0x2E80 && c < 0xA4D0) || (c >= 0xAC00 && c < 0xD7B0) || (c >= 0xF900 && c < 0xFB00)
        || (c >= 0xFE30 && c < 0xFE50) || (c >= 0xFF00 && c < 0xFFF0) || (c >= 0x20000 && c < 0x32400);
}

bool breaksAnywhere(char32_t c)
{
    return isEastAsian(c) || (c >= 0xE00 && c < 0xF00) || (c >= 0x1000 && c < 0x10A0)
        || (c >= 0x1780 && c < 0x1800);
}

bool isLeftward(char32_t c)
{
    if (c < 0x590)
        return false;
    const auto direction = u_charDirection(static_cast<UChar32>(c));
    return direction == U_RIGHT_TO_LEFT || direction == U_RIGHT_TO_LEFT_ARABIC;
}

bool isLower(char32_t c)
{
    return c < 0x80 ? c >= U'a' && c <= U'z' : u_islower(static_cast<UChar32>(c)) != 0;
}

bool isMark(char32_t c) { return c >= 0x300 && u_charType(static_cast<UChar32>(c)) == U_NON_SPACING_MARK; }

bool startsWithBullet(std::u32string_view text)
{
    constexpr std::u32string_view bullets = U"•‣⁃∙◦▪▫■□●○◆◇►▸➢➤✓✔✗❖\uF0B7\uF0A7\uF0D8\uF0FC\uF076\uE01E";
    return !text.empty() && bullets.find(text.front()) != bullets.npos
        && (text.size() == 1 || isBlank(text[1]));
}

char32_t combining(char32_t accent)
{
    if (accent < 0x7F) // “^” and “~” are more often themselves.
        return accent == U'`' ? 0x300 : 0;
    switch (accent) {
    case 0xA8:
        return 0x308;
    case 0xAF:
        return 0x304;
    case 0xB4:
    case 0x2CA:
        return 0x301;
    case 0xB8:
        return 0x327;
    case 0x2C6:
        return 0x302;
    case 0x2C7:
        return 0x30C;
    case 0x2CB:
        return 0x300;
    case 0x2D8:
        return 0x306;
    case 0x2D9:
        return 0x307;
    case 0x2DA:
        return 0x30A;
    case 0x2DB:
        return 0x328;
    case 0x2DC:
        return 0x303;
    case 0x2DD:
        return 0x30B;
    default:
        return 0;
    }
}

void appendExpanded(std::u32string& text, std::u32string_view more)
{
    for (const char32_t c : more) {
        const bool isLigature = (c >= 0xFB00 && c <= 0xFB1C) || (c >= 0xFB20 && c <= 0xFDCF && c != 0xFB29)
            || (c >= 0xFE70 && c < 0xFEFF);
        if (isLigature) {
            UErrorCode error = U_ZERO_ERROR;
            icu::UnicodeString resolved(static_cast<UChar32>(c));
            resolved = icu::Normalizer2::getNFKCInstance(error)->normalize(resolved, error);
            for (int32_t place = 0; place < resolved.length(); place = resolved.moveIndex32(place, 1))
                text += static_cast<char32_t>(resolved.char32At(place));
        } else if (isBlank(c)) {
            text += U' ';
        } else if (c < 0xD800 || (c >= 0xE000 && c < 0x110000 && (c & 0xFFFE) != 0xFFFE)) {
            text += c;
        }
    }
}

} // namespace Tamberlin
