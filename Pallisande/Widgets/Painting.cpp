#include "Pallisande/Widgets/Painting.h"

#include <QFontMetricsF>

#include <algorithm>

namespace Pallisande {

namespace {

double digitWidth(const QFontMetricsF& metrics)
{
    double widest = 0;
    for (char digit = '0'; digit <= '9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
    return widest;
}

// Whether digits are drawn one by one, which costs their kerning with other characters.
bool hasUnevenDigits(const QFontMetricsF& metrics)
{
    const double widest = digitWidth(metrics);
    return metrics.horizontalAdvance(QLatin1Char('1')) < widest - 0.01
        || metrics.horizontalAdvance(QLatin1Char('7')) < widest - 0.01;
}

} // namespace

double hairline(const QPainter& painter) { return 1 / painter.device()->devicePixelRatioF(); }

void drawSurface(QPainter& painter, const QRectF& area, double radius, const QColor& fill, const QColor& edge,
    double edgeWidth)
{
    const double inset = edgeWidth / 2;
    const auto shape = area.adjusted(inset, inset, -inset, -inset);
    const double corner = std::min({ radius - inset, shape.width() / 2, shape.height() / 2 });
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(fill);
    painter.setPen(edgeWidth > 0 ? QPen(edge, edgeWidth) : QPen(Qt::NoPen));
    painter.drawRoundedRect(shape, corner, corner);
    painter.restore();
}

void drawLineBelow(QPainter& painter, const QRectF& area, const QColor& colour)
{
    const double width = hairline(painter);
    painter.fillRect(QRectF(area.left(), area.bottom() - width, area.width(), width), colour);
}

void drawShadow(QPainter& painter, const QRectF& area, double radius, const QColor& colour)
{
    constexpr int steps = 12, drop = 8;
    auto layer = colour;
    layer.setAlphaF(static_cast<float>(colour.alphaF() / steps));
    for (int step = 0; step < steps; ++step) {
        const double rest = 1 - static_cast<double>(step) / steps;
        const double spread = (shadowMargin - drop) * rest * rest; // Denser near the edge.

        const auto shape = area.translated(0, drop * 0.5).adjusted(-spread, -spread, spread, spread);
        drawSurface(painter, shape, radius + spread, layer);
    }
}

double figuresWidth(const QFont& font, const QString& text)
{
    const QFontMetricsF metrics(font);
    if (!hasUnevenDigits(metrics))
        return metrics.horizontalAdvance(text);
    double width = 0;
    for (const auto character : text)
        width += character.isDigit() ? digitWidth(metrics) : metrics.horizontalAdvance(character);
    return width;
}

void drawFigures(QPainter& painter, const QRectF& area, Qt::Alignment alignment, const QString& text)
{
    const QFontMetricsF metrics(painter.font());
    if (!hasUnevenDigits(metrics)) {
        painter.drawText(area, static_cast<int>(alignment) | Qt::TextSingleLine, text);
        return;
    }
    const double cell = digitWidth(metrics), width = figuresWidth(painter.font(), text);
    double left = alignment & Qt::AlignRight ? area.right() - width
        : alignment & Qt::AlignHCenter       ? area.center().x() - width / 2
                                             : area.left();
    const double baseline = area.center().y() + (metrics.ascent() - metrics.descent()) / 2;
    for (const auto character : text) {
        const double own = metrics.horizontalAdvance(character), step = character.isDigit() ? cell : own;
        painter.drawText(QPointF(left + (step - own) / 2, baseline), QString(character));
        left += step;
    }
}

void drawLine(QPainter& painter, const QRectF& area, const QString& text, Qt::Alignment alignment,
    Qt::TextElideMode elide)
{
    const auto shown = QFontMetricsF(painter.font()).elidedText(text, elide, area.width());
    painter.drawText(area, static_cast<int>(alignment) | Qt::TextSingleLine, shown);
}

} // namespace Pallisande
