#include "Pallisande/Widgets/Icons.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace Pallisande {

namespace {

// Large icons don't get fatter strokes.
constexpr double strokeWidth = 1.75, growsTo = 24;

QPixmap rendered(Icon icon, const QSize& pixels, const QColor& colour, double stroke = strokeWidth)
{
    const auto key = QStringLiteral("icon/%1/%2/%3/%4/%5")
                         .arg(static_cast<int>(icon))
                         .arg(pixels.width())
                         .arg(pixels.height())
                         .arg(colour.rgba())
                         .arg(stroke);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    const QByteArray drawing
        = "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 24 24'><g fill='none' stroke='"
        + colour.name().toLatin1() + "' stroke-width='" + QByteArray::number(stroke)
        + "' stroke-linecap='round' stroke-linejoin='round'>" + iconShape(icon) + "</g></svg>";
    pixmap = QPixmap(pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setOpacity(colour.alphaF());
    QSvgRenderer(drawing).render(&painter);
    painter.end();
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

class ThemedIconEngine : public QIconEngine {
public:
    explicit ThemedIconEngine(Icon icon)
        : m_icon(icon)
    {
    }

    void paint(QPainter* painter, const QRect& area, QIcon::Mode mode, QIcon::State) override
    {
        drawIcon(*painter, m_icon, area, colour(mode));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override
    {
        return rendered(m_icon, size, colour(mode));
    }
    QIconEngine* clone() const override { return new ThemedIconEngine(m_icon); }
    QString key() const override { return QStringLiteral("PallisandeIcon"); }

private:
    // Asked whenever it is drawn, so that a change of theme needs no new icons.
    static QColor colour(QIcon::Mode mode)
    {
        return QGuiApplication::palette().color(
            mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active, QPalette::ButtonText);
    }

    Icon m_icon;
};

constexpr const char* applicationDrawing = R"(<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 64 64'>
<path d='M14 4h26c11 0 18 8 18 18v24c0 8-6 14-14 14H18C10 60 6 54 6 46V12c0-5 3-8 8-8z'
 fill='#FCFBF7' stroke='#3E4757' stroke-width='2'/>
<g stroke-width='3' stroke-linecap='round'>
<path d='M15 14h20' stroke='#0B5F66'/><path d='M15 19h27' stroke='#16808A'/><path d='M15 24h33' stroke='#3B979E'/>
<path d='M15 29h25' stroke='#3A8A4B'/><path d='M15 34h31' stroke='#AA7F00'/><path d='M15 39h22' stroke='#B26A00'/>
<path d='M15 44h28' stroke='#B0500A'/><path d='M15 49h19' stroke='#8C330F'/><path d='M15 54h26' stroke='#3E4757'/>
</g></svg>)";

} // namespace

void drawIcon(QPainter& painter, Icon icon, const QRectF& area, const QColor& colour)
{
    // Drawn in whole pixels of the device, square and centred: half ones would blur the strokes.
    const double ratio = painter.device()->devicePixelRatioF();
    const int side = qRound(std::min(area.width(), area.height()) * ratio);
    if (side <= 0)
        return;
    const double size = side / ratio;
    const auto toPixel = [ratio](double at) { return qRound(at * ratio) / ratio; };
    painter.drawPixmap(
        QRectF(toPixel(area.center().x() - size / 2), toPixel(area.center().y() - size / 2), size, size),
        rendered(icon, { side, side }, colour, strokeWidth * std::min(1.0, growsTo / size)),
        QRectF(0, 0, side, side));
}

QIcon themedIcon(Icon icon) { return QIcon(new ThemedIconEngine(icon)); }

QIcon applicationIcon()
{
    QIcon icon;
    QSvgRenderer renderer((QByteArray(applicationDrawing)));
    for (const int side : { 16, 24, 32, 48, 64, 128, 256, 512 }) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        renderer.render(&painter);
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace Pallisande
