#pragma once

#include "Pallisande/Widgets/Theme.h"

#include <QProxyStyle>

namespace Pallisande {

// Draws controls from a Theme; what it doesn't know is left to Fusion and the palette. Style sheets would
// hide it from Theme::of(), so there are none.
class ThemeStyle : public QProxyStyle {
    Q_OBJECT

public:
    explicit ThemeStyle(const Theme& theme);
    ~ThemeStyle() override;

    const Theme& theme() const { return m_theme; }
    void setTheme(const Theme& theme) { m_theme = theme; }

    bool eventFilter(QObject* watched, QEvent* event) override;
    using QProxyStyle::polish;
    void polish(QWidget* widget) override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
        QStyleHintReturn* result) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
        const QWidget* widget) const override;
    QRect subElementRect(
        SubElement element, const QStyleOption* option, const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
        const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
        const QWidget* widget) const override;

private:
    struct Button;
    void drawButton(QPainter& painter, const QStyleOption& option, const Button& button) const;
    QSize buttonSize(const QString& text, bool hasIcon, bool hasMenu, const QWidget* widget) const;
    void drawField(QPainter& painter, const QStyleOption& option, const QWidget* widget) const;
    void drawTick(QPainter& painter, const QStyleOption& option, bool isRound) const;
    void drawRow(QPainter& painter, const QStyleOptionViewItem& option, const QWidget* widget) const;
    void drawScrollBar(QPainter& painter, const QStyleOptionSlider& option, const QWidget* widget) const;
    void drawProgress(QPainter& painter, const QStyleOption& option) const;
    void drawTab(QPainter& painter, const QStyleOption& option) const;
    void drawHeaderSection(QPainter& painter, const QStyleOption& option) const;

    Theme m_theme;
    bool m_showsMnemonics = false; // While Alt is held.
};

// Fields say that their text isn't valid; they are drawn with a red edge.
void setInvalid(QWidget* field, bool isInvalid);

} // namespace Pallisande
