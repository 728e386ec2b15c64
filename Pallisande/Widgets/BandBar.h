#pragma once

#include "Pallisande/Widgets/Theme.h"

#include <QWidget>

#include <optional>

namespace Pallisande {

// The counts of an analysis as a bar, in the order of the bands. The grid below it is its legend: what is
// hovered or reached with Left and Right here marks a row there.
class BandBar : public QWidget {
    Q_OBJECT

public:
    explicit BandBar(QWidget* parent = nullptr);

    // `unit` as the sentence for screen readers says it: “words”.
    void setCounts(const BandMap<std::int64_t>& counts, const QString& unit);
    // Matches under 75% are billed as new words: dotted.
    void setFloor(bool hasFloor);
    std::optional<MatchBand> marked() const { return m_marked; }

    // The square before the band's label in the grid, with the same pattern.
    static void drawSwatch(
        QPainter& painter, const QRectF& area, MatchBand band, const Theme& theme, bool hasFloor);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return { 80, sizeHint().height() }; }

signals:
    void bandMarked(std::optional<Pallisande::MatchBand> band);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    struct Segment {
        MatchBand band;
        double left, width;
    };
    std::vector<Segment> segments() const;
    void mark(std::optional<MatchBand> band);

    BandMap<std::int64_t> m_counts;
    bool m_hasFloor = false;
    std::optional<MatchBand> m_marked;
};

} // namespace Pallisande
