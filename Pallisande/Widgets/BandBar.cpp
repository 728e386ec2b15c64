#include "Pallisande/Widgets/BandBar.h"

#include "Pallisande/Widgets/Accessibility.h"
#include "Pallisande/Widgets/FocusRing.h"
#include "Pallisande/Widgets/Painting.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainterPath>

#include <algorithm>

namespace Pallisande {

namespace {

constexpr int thickness = 14;
constexpr double leastWidth = 2, gap = 1;

constexpr std::array<const char*, 9> spoken { "perfect", "context", "repetitions", "100 percent",
    "95 to 99 percent", "85 to 94 percent", "75 to 84 percent", "50 to 74 percent", "no match" };

void drawPattern(QPainter& painter, const QRectF& area, MatchBand band, const Theme& theme, bool hasFloor)
{
    auto mark = theme.colours.card;
    mark.setAlphaF(0.6f);
    painter.save();
    painter.setClipRect(area, Qt::IntersectClip);
    if (band == MatchBand::repetitions) {
        painter.setPen(QPen(mark, 1));
        for (double left = area.left() - area.height(); left < area.right(); left += 5)
            painter.drawLine(QPointF(left, area.bottom()), QPointF(left + area.height(), area.top()));
    } else if (band == MatchBand::fuzzy50 && hasFloor) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(mark);
        for (double left = area.left() + 3; left < area.right(); left += 5)
            for (double top = area.top() + 3; top < area.bottom(); top += 4)
                painter.drawEllipse(QPointF(left, top), 0.9, 0.9);
    }
    painter.restore();
}

} // namespace

BandBar::BandBar(QWidget* parent)
    : QWidget(parent)
{
    installAccessibility();
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    FocusRing::setCorner(this, thickness / 2);
    setCounts({}, QStringLiteral("words"));
}

void BandBar::setCounts(const BandMap<std::int64_t>& counts, const QString& unit)
{
    m_counts = counts;
    QStringList parts;
    for (const auto band : allMatchBands)
        parts += QStringLiteral("%1 %2")
                     .arg(counts.valueOr(band, 0))
                     .arg(QLatin1String(spoken[static_cast<std::size_t>(band)]));
    setAccessibleName(QStringLiteral("Analysis: %1 %2").arg(parts.join(QStringLiteral(", ")), unit));
    setEnabled(std::any_of(allMatchBands.begin(), allMatchBands.end(),
        [&](auto band) { return counts.valueOr(band, 0) > 0; })); // Nothing to walk along otherwise.
    mark(std::nullopt);
    update();
}

void BandBar::setFloor(bool hasFloor)
{
    m_hasFloor = hasFloor;
    update();
}

QSize BandBar::sizeHint() const { return { 240, thickness }; }

std::vector<BandBar::Segment> BandBar::segments() const
{
    std::vector<Segment> found;
    double total = 0;
    for (const auto band : allMatchBands)
        if (const auto count = m_counts.valueOr(band, 0); count > 0) {
            found.push_back({ band, 0, static_cast<double>(count) });
            total += static_cast<double>(count);
        }
    // Those too thin to be seen are widened; the others share what is left.
    double room = width() - gap * static_cast<double>(found.size() - 1);
    std::vector<bool> isThin(found.size(), false);
    for (bool changed = true; changed && total > 0;) {
        changed = false;
        for (std::size_t at = 0; at < found.size(); ++at)
            if (!isThin[at] && found[at].width / total * room < leastWidth) {
                total -= found[at].width;
                room -= leastWidth;
                isThin[at] = changed = true;
            }
    }
    double left = 0;
    for (std::size_t at = 0; at < found.size(); ++at) {
        auto& segment = found[at];
        segment.left = left;
        segment.width = isThin[at] ? leastWidth : segment.width / total * room;
        left += segment.width + gap;
    }
    return found;
}

void BandBar::drawSwatch(
    QPainter& painter, const QRectF& area, MatchBand band, const Theme& theme, bool hasFloor)
{
    drawSurface(painter, area, 2, theme.colours.band(band));
    drawPattern(painter, area, band, theme, hasFloor);
}

void BandBar::paintEvent(QPaintEvent*)
{
    const auto& theme = Theme::of(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath shape;
    shape.addRoundedRect(rect(), thickness / 2.0, thickness / 2.0);
    painter.setClipPath(shape);
    const auto all = segments();
    if (all.empty())
        painter.fillRect(rect(), theme.colours.selectInactive);
    for (const auto& [band, left, size] : all) {
        const QRectF area(left, 0, size, height());
        auto colour = theme.colours.band(band);
        if (m_marked && m_marked != band)
            colour.setAlphaF(0.45f);
        painter.fillRect(area, colour);
        drawPattern(painter, area, band, theme, m_hasFloor);
    }
}

void BandBar::mark(std::optional<MatchBand> band)
{
    if (band == m_marked)
        return;
    m_marked = band;
    update();
    emit bandMarked(band);
}

void BandBar::mouseMoveEvent(QMouseEvent* event)
{
    std::optional<MatchBand> found;
    for (const auto& [band, left, size] : segments())
        if (event->position().x() >= left && event->position().x() < left + size + gap)
            found = band;
    mark(found);
}

void BandBar::leaveEvent(QEvent*)
{
    if (!hasFocus())
        mark(std::nullopt);
}

void BandBar::keyPressEvent(QKeyEvent* event)
{
    const auto all = segments();
    const bool isLeft = event->key() == Qt::Key_Left;
    if (all.empty() || (!isLeft && event->key() != Qt::Key_Right))
        return QWidget::keyPressEvent(event);
    auto at
        = std::find_if(all.begin(), all.end(), [&](const auto& segment) { return segment.band == m_marked; });
    if (at == all.end())
        at = isLeft ? all.end() - 1 : all.begin();
    else if (isLeft && at != all.begin())
        --at;
    else if (!isLeft && at + 1 != all.end())
        ++at;
    mark(at->band);
}

void BandBar::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    mark(std::nullopt);
}

} // namespace Pallisande
