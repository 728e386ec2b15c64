#include "Printing/DocumentFonts.h"

#include "Base/Text.h"
#include "Printing/PageGeometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace Pallisande {

namespace {

// The same design under its names on Debian and from other packagers, then what other systems come with.
struct Face {
    std::string_view language;
    std::array<const char*, 4> families;
};
constexpr std::array<Face, 5> eastAsianFaces { {
    { "ja", { "Noto Sans CJK JP", "Noto Sans JP", "Hiragino Sans", "Yu Gothic" } },
    { "zh-hans", { "Noto Sans CJK SC", "Noto Sans SC", "PingFang SC", "Microsoft YaHei" } },
    { "zh-hant", { "Noto Sans CJK TC", "Noto Sans TC", "PingFang TC", "Microsoft JhengHei" } },
    { "zh-hk", { "Noto Sans CJK HK", "Noto Sans HK", "PingFang HK", "Microsoft JhengHei" } },
    { "ko", { "Noto Sans CJK KR", "Noto Sans KR", "Apple SD Gothic Neo", "Malgun Gothic" } },
} };

// Signs come from fonts that match Noto Sans before the East Asian ones, whose signs are drawn for wide
// characters: Debian’s Noto Sans lacks the minus.
constexpr std::array signFamilies { "Noto Sans Math", "Noto Sans Symbols", "Noto Sans Symbols2" };

// Qt would find these too, but might take a serif face first.
constexpr std::array scriptFamilies { "Noto Sans Thai", "Noto Sans Arabic", "Noto Sans Hebrew",
    "Noto Sans Devanagari", "Noto Sans Bengali", "Noto Sans Tamil", "Noto Sans Telugu", "Noto Sans Kannada",
    "Noto Sans Malayalam", "Noto Sans Gujarati", "Noto Sans Gurmukhi", "Noto Sans Sinhala", "Noto Sans Khmer",
    "Noto Sans Lao", "Noto Sans Myanmar", "Noto Sans Georgian", "Noto Sans Armenian", "Noto Sans Ethiopic",
    "Noto Sans Mongolian", "DejaVu Sans", "Noto Emoji", "Symbola" };

std::string_view eastAsianFace(std::string_view language)
{
    const std::string tag = Base::asciiLowered(language);
    const auto has
        = [&](std::string_view part) { return (tag + '-').find("-" + std::string(part) + "-") != tag.npos; };
    if (tag.starts_with("ko"))
        return "ko";
    if (!tag.starts_with("zh"))
        return "ja";
    if (has("hk") || has("mo"))
        return "zh-hk";
    return has("hant") || has("tw") ? "zh-hant" : "zh-hans";
}

} // namespace

QStringList eastAsianFamilies(std::string_view language)
{
    auto faces = eastAsianFaces;
    const auto preferred = eastAsianFace(language);
    std::stable_partition(
        faces.begin(), faces.end(), [&](const Face& face) { return face.language == preferred; });
    QStringList families;
    for (const auto& face : faces)
        families.append({ face.families.begin(), face.families.end() });
    return families;
}

QStringList fontFamilies(std::string_view language)
{
    QStringList families { "Noto Sans", "Inter" };
    families.append({ signFamilies.begin(), signFamilies.end() });
    families.append(eastAsianFamilies(language));
    families.append({ scriptFamilies.begin(), scriptFamilies.end() });
    return families;
}

QFont pageFont(const QStringList& families, double sizeInPoints, bool strong)
{
    QFont font(families);
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(static_cast<int>(std::lround(points(sizeInPoints))));
    font.setWeight(strong ? QFont::Bold : QFont::Normal);
    font.setHintingPreference(QFont::PreferNoHinting);
    // The least spacing there is turns ligatures off, which a PDF couldn’t be searched or copied through.
    font.setLetterSpacing(QFont::AbsoluteSpacing, 1.0 / 64);
    return font;
}

} // namespace Pallisande
