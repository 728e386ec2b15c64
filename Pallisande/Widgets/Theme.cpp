#include "Pallisande/Widgets/Theme.h"

#include "Pallisande/Widgets/ThemeStyle.h"

#include <QApplication>
#include <QFontInfo>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace Pallisande {

namespace {

constexpr int smallestBody = 13, smallestSmall = 11; // Pixels.

double luminance(const QColor& colour)
{
    const auto linear = [](double share) {
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

QColor translucentBlack(int percent) { return QColor(0, 0, 0, 255 * percent / 100); }

} // namespace

const Colours& Colours::light()
{
    static const Colours colours {
        .window = "#F5F5F3",
        .sidebar = "#ECECE8",
        .content = "#FFFFFF",
        .card = "#FFFFFF",
        .inset = "#F7F7F5",
        .raised = "#FFFFFF",
        .hover = "#F0F0ED",
        .select = "#DCE9FB",
        .selectInactive = "#E4E4E1",
        .border = "#DEDEDA",
        .outline = "#82827C",
        .text = "#1D1D1F",
        .muted = "#5A5A5F",
        .disabled = "#7C7C80",
        .accent = "#0A5CC0",
        .onAccent = "#FFFFFF",
        .tones { { { "#B3261E", "#FBE9E7" }, { "#8A5300", "#FDF1DC" }, { "#1B6E3C", "#E4F4E9" },
            { "#0B57B5", "#E5EFFC" }, { "#6A3FA0", "#F0E9F9" }, { "#55555A", "#EDEDEB" },
            { "#0F6668", "#E0F2F1" } } },
        .bands { "#0B5F66", "#16808A", "#3B979E", "#3A8A4B", "#AA7F00", "#B26A00", "#B0500A", "#8C330F",
            "#3E4757" },
        .secondSeries = "#B26A00",
        .shadow = translucentBlack(18),
    };
    return colours;
}

const Colours& Colours::dark()
{
    static const Colours colours {
        .window = "#1E1E20",
        .sidebar = "#262629",
        .content = "#1B1B1D",
        .card = "#242427",
        .inset = "#202023",
        .raised = "#2C2C30",
        .hover = "#2B2B2F",
        .select = "#1F3D63",
        .selectInactive = "#37373B",
        .border = "#3A3A3E",
        .outline = "#8A8A91",
        .text = "#F2F2F3",
        .muted = "#B4B4BA",
        .disabled = "#8E8E95",
        .accent = "#6AAEFF",
        .onAccent = "#0A1B30",
        .tones { { { "#FF8A80", "#43211F" }, { "#F5BE63", "#3D2F16" }, { "#7BD69A", "#1C3826" },
            { "#8FC2FF", "#1C324F" }, { "#CBA8F5", "#352749" }, { "#C2C2C8", "#333337" },
            { "#79D3D0", "#16383A" } } },
        .bands { "#3FA3AC", "#63C2C9", "#98DCE0", "#7CCB8B", "#F2D06B", "#EDB24A", "#E8954A", "#DE7A55",
            "#A9B4C6" },
        .secondSeries = "#EDB24A",
        .shadow = translucentBlack(40),
    };
    return colours;
}

Colours Colours::of(const QPalette& palette)
{
    const auto page = palette.color(QPalette::Window), text = palette.color(QPalette::WindowText);
    const auto base = palette.color(QPalette::Base), accent = palette.color(QPalette::Highlight);
    auto colours = luminance(page) < luminance(text) ? dark() : light();
    for (auto* surface :
        { &colours.window, &colours.sidebar, &colours.inset, &colours.raised, &colours.card })
        *surface = page;
    for (auto* ink : { &colours.text, &colours.muted, &colours.border, &colours.outline })
        *ink = text;
    for (auto& tone : colours.tones)
        tone = { text, page };
    colours.content = base;
    colours.hover = colours.select = colours.selectInactive = blend(base, text, 0.15);
    colours.disabled = palette.color(QPalette::Disabled, QPalette::WindowText);
    colours.accent = contrast(accent, page) < 4.5 ? text : accent;
    colours.onAccent = contrast(accent, page) < 4.5 ? page : palette.color(QPalette::HighlightedText);
    return colours;
}

QColor Colours::ink(Ink ink) const
{
    switch (ink) {
    case Ink::muted:
        return muted;
    case Ink::accent:
        return accent;
    case Ink::red:
        return tone(Tone::red).text;
    case Ink::amber:
        return tone(Tone::amber).text;
    case Ink::green:
        return tone(Tone::green).text;
    case Ink::text:
        break;
    }
    return text;
}

Theme::Theme(const Colours& ofWhat, const QFont& systemFont, int textSize)
    : colours(ofWhat)
    , m_font(systemFont)
    , m_bodySize(std::max(smallestBody, QFontInfo(systemFont).pixelSize()))
    , m_textSize(std::clamp(textSize, smallestTextSize, largestTextSize))
{
}

const Theme& Theme::of(const QWidget* widget)
{
    const auto* style = widget ? widget->style() : QApplication::style();
    if (const auto* ours = qobject_cast<const ThemeStyle*>(style))
        return ours->theme();
    static const Theme plain(Colours::light(), QFont()); // For a widget shown without our style.
    return plain;
}

QFont Theme::font(TextStyle style) const
{
    struct {
        double scale;
        bool isStrong;
    } constexpr steps[] { { 2.0, true }, { 1.7, true }, { 1.3, true }, { 1.0, false }, { 1.0, true },
        { 0.88, false }, { 0.88, true } };
    const auto [scale, isStrong] = steps[static_cast<std::size_t>(style)];
    const double size = scale * m_bodySize * m_textSize / 100;
    auto font = m_font;
    font.setPixelSize(std::max(static_cast<int>(std::lround(size)), smallestSmall));
    font.setWeight(isStrong ? QFont::DemiBold : QFont::Normal);
    return font;
}

int Theme::lineHeight(TextStyle style) const
{
    return static_cast<int>(std::ceil(font(style).pixelSize() * 1.4));
}

QPalette Theme::palette() const { return palette(colours.window); }

QPalette Theme::palette(const QColor& page) const
{
    QPalette palette(colours.text, colours.raised, colours.raised, colours.outline, colours.border,
        colours.text, colours.onAccent, colours.content, page);
    palette.setColor(QPalette::AlternateBase, colours.inset);
    palette.setColor(QPalette::ToolTipBase, colours.raised);
    palette.setColor(QPalette::ToolTipText, colours.text);
    palette.setColor(QPalette::PlaceholderText, colours.disabled);
    palette.setColor(QPalette::Midlight, colours.hover);
    palette.setColor(QPalette::Shadow, colours.shadow);
    palette.setColor(QPalette::Link, colours.accent);
    palette.setColor(QPalette::LinkVisited, colours.accent);
    palette.setColor(QPalette::Highlight, colours.select);
    palette.setColor(QPalette::Inactive, QPalette::Highlight, colours.selectInactive);
    palette.setColor(QPalette::HighlightedText, colours.text); // Never white on the accent.
    for (const auto role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText })
        palette.setColor(QPalette::Disabled, role, colours.disabled);
    palette.setColor(QPalette::Disabled, QPalette::Base, page);
    return palette;
}

double contrast(const QColor& first, const QColor& second)
{
    const auto [darker, lighter] = std::minmax({ luminance(first), luminance(second) });
    return (lighter + 0.05) / (darker + 0.05);
}

QColor blend(const QColor& under, const QColor& over, double amount)
{
    const auto mix
        = [amount](double from, double to) { return static_cast<float>(from + (to - from) * amount); };
    return QColor::fromRgbF(
        mix(under.redF(), over.redF()), mix(under.greenF(), over.greenF()), mix(under.blueF(), over.blueF()));
}

} // namespace Pallisande
