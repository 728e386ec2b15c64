#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>
#include <QString>

namespace Pallisande {

// The width of one pixel of the device.
double hairline(const QPainter& painter);

// A rounded area; its edge, when it has one, lies inside it.
void drawSurface(QPainter& painter, const QRectF& area, double radius, const QColor& fill,
    const QColor& edge = Qt::transparent, double edgeWidth = 0);

// One device pixel high, at the bottom of the area.
void drawLineBelow(QPainter& painter, const QRectF& area, const QColor& colour);

// The soft shadow of a floating surface: 8 down, 24 wide.
void drawShadow(QPainter& painter, const QRectF& area, double radius, const QColor& colour);
inline constexpr int shadowMargin = 24; // What a widget must leave around such a surface.

// Text whose digits all take the width of the widest, so that columns line up in every font.
double figuresWidth(const QFont& font, const QString& text);
void drawFigures(QPainter& painter, const QRectF& area, Qt::Alignment alignment, const QString& text);

// A single line, elided where it doesn't fit.
void drawLine(QPainter& painter, const QRectF& area, const QString& text,
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter, Qt::TextElideMode elide = Qt::ElideMiddle);

} // namespace Pallisande
