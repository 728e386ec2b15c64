#include "Pallisande/Widgets/Chip.h"
#include "Pallisande/Widgets/Painting.h"
#include "Tests/Pallisande/WidgetApplication.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QPainter>
#include <QSet>
#include <QSignalSpy>

using namespace Pallisande;

namespace {

struct NamedColour {
    const char* name;
    QColor colour;
};

void expectContrast(double least, const NamedColour& ink, const NamedColour& surface)
{
    EXPECT_GE(contrast(ink.colour, surface.colour), least) << ink.name << " on " << surface.name;
}

} // namespace

TEST(Theme, everyPairOfColoursCanBeRead)
{
    EXPECT_NEAR(contrast(Qt::black, Qt::white), 21, 0.001);
    for (const auto* colours : { &Colours::light(), &Colours::dark() }) {
        SCOPED_TRACE(colours == &Colours::light() ? "light" : "dark");
        const auto& c = *colours;
        const std::vector<NamedColour> surfaces { { "window", c.window }, { "sidebar", c.sidebar },
            { "content", c.content }, { "card", c.card }, { "inset", c.inset }, { "raised", c.raised },
            { "hover", c.hover }, { "select", c.select }, { "selectInactive", c.selectInactive } };
        for (const auto& surface : surfaces) {
            expectContrast(7, { "text", c.text }, surface);
            expectContrast(5.3, { "muted", c.muted }, surface);
            expectContrast(3, { "disabled", c.disabled }, surface);
            expectContrast(3, { "outline", c.outline }, surface);
            expectContrast(4.5, { "accent", c.accent }, surface);
            for (const auto& tone : c.tones)
                expectContrast(4.5, { "tone", tone.text }, surface);
        }
        for (const auto& tone : c.tones) {
            expectContrast(4.5, { "tone", tone.text }, { "its tint", tone.tint });
            expectContrast(4.5, { "text", c.text }, { "tint", tone.tint });
            expectContrast(4.5, { "accent", c.accent }, { "tint", tone.tint });
        }
        expectContrast(6.3, { "onAccent", c.onAccent }, { "accent", c.accent });
        for (const double state : { 0.1, 0.2 }) // Hovered, pressed.
            expectContrast(4.5, { "onAccent", c.onAccent }, { "button", blend(c.accent, c.text, state) });
        for (const auto& band : c.bands)
            expectContrast(3, { "band", band }, { "card", c.card });
        expectContrast(3, { "secondSeries", c.secondSeries }, { "card", c.card });
    }
    for (const auto& [page, text] : { std::pair(Qt::black, Qt::white), { Qt::white, Qt::black } }) {
        QPalette contrasting(text, page, text, text, text, text, page);
        contrasting.setColor(QPalette::Base, page);
        const auto c = Colours::of(contrasting);
        for (const auto& ink : { c.text, c.muted, c.border, c.outline, c.accent, c.tone(Tone::red).text })
            EXPECT_GE(contrast(ink, c.card), 7);
    }
}

TEST(Theme, changesAtOnceAndFollowsTheDesktop)
{
    auto& controller = themeController();
    QSignalSpy changed(&controller, &ThemeController::changed);
    QWidget window;
    QWidget child(&window);
    window.show();
    window.hide(); // As a window that was closed and will be opened again.
    const auto settle = [] { QApplication::processEvents(); }; // Qt tells widgets a little later.
    controller.setAppearance(Appearance::dark);
    settle();
    EXPECT_EQ(Theme::of(&child).colours.window, Colours::dark().window);
    EXPECT_EQ(child.palette().color(QPalette::Window), Colours::dark().window);
    controller.setAppearance(Appearance::system);
    EXPECT_EQ(Theme::of(&child).colours.window, Colours::light().window);
    systemLook() = { .isDark = true, .avoidsMotion = true };
    controller.refresh();
    settle();
    EXPECT_EQ(child.palette().color(QPalette::Window), Colours::dark().window);
    EXPECT_EQ(QApplication::style()->styleHint(QStyle::SH_Widget_Animation_Duration), 0);
    systemLook() = { .hasHighContrast = true };
    controller.refresh();
    EXPECT_EQ(controller.theme().edge, 2);
    systemLook() = {};
    controller.setTextSize(500);
    settle();
    EXPECT_EQ(controller.textSize(), 200);
    EXPECT_EQ(child.font().pixelSize(), 26);
    EXPECT_EQ(controller.theme().controlHeight(), 60);
    controller.setTextSize(85);
    settle();
    EXPECT_EQ(controller.theme().font(TextStyle::small).pixelSize(), 11); // Never smaller.
    EXPECT_EQ(child.font().pixelSize(), 11);
    controller.setTextSize(100);
    EXPECT_EQ(controller.theme().font(TextStyle::largeNumber).pixelSize(), 26);
    EXPECT_EQ(changed.count(), 7);
}

TEST(Theme, chipsAndIconsDifferWithoutColours)
{
    QSet<QString> shapes;
    for (int icon = 0; icon < iconCount; ++icon) {
        QImage image(24, 24, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        drawIcon(painter, Icon(icon), QRectF(0, 0, 24, 24), Qt::black);
        painter.end();
        shapes.insert(QString::fromLatin1(
            QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()).toBase64()));
        int inked = 0;
        for (int y = 0; y < 24; ++y)
            for (int x = 0; x < 24; ++x)
                inked += qAlpha(image.pixel(x, y)) > 128;
        EXPECT_GT(inked, 15) << icon; // A shape that can't be read draws nothing.
    }
    EXPECT_EQ(shapes.size(), iconCount);
    for (int first = 0; first < 6; ++first)
        for (int second = 0; second < first; ++second)
            EXPECT_NE(Chip::of(JobStatus(first)).mark, Chip::of(JobStatus(second)).mark);
    for (int first = 0; first < 7; ++first)
        for (int second = 0; second < first; ++second)
            EXPECT_NE(Chip::of(InvoiceStatus(first)).mark, Chip::of(InvoiceStatus(second)).mark);
    EXPECT_EQ(Chip::of(InvoiceStatus::partlyPaid).word, QStringLiteral("Part paid"));
}
