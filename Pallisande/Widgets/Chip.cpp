#include "Pallisande/Widgets/Chip.h"

#include "Pallisande/Widgets/Painting.h"

#include <array>

namespace Pallisande {

namespace {

struct Look {
    Tone tone;
    Icon mark;
};

} // namespace

Chip Chip::of(JobStatus status)
{
    constexpr std::array<Look, 6> looks { {
        { Tone::purple, Icon::diamond },
        { Tone::blue, Icon::halfCircle },
        { Tone::green, Icon::check },
        { Tone::teal, Icon::page },
        { Tone::green, Icon::dot },
        { Tone::grey, Icon::barred },
    } };
    const auto [tone, mark] = looks[static_cast<std::size_t>(status)];
    const auto word = title(status);
    return { tone, mark, QString::fromUtf8(word.data(), static_cast<qsizetype>(word.size())) };
}

Chip Chip::of(InvoiceStatus status)
{
    constexpr std::array<Look, 7> looks { {
        { Tone::grey, Icon::dottedCircle },
        { Tone::blue, Icon::circle },
        { Tone::red, Icon::exclamation },
        { Tone::amber, Icon::halfCircle },
        { Tone::green, Icon::dot },
        { Tone::grey, Icon::returning },
        { Tone::teal, Icon::minus },
    } };
    const auto [tone, mark] = looks[static_cast<std::size_t>(status)];
    const auto word = label(status);
    return { tone, mark, QString::fromUtf8(word.data(), static_cast<qsizetype>(word.size())) };
}

Chip Chip::of(Verification verification)
{
    constexpr std::array<Look, 5> looks { {
        { Tone::green, Icon::check },
        { Tone::amber, Icon::halfCircle },
        { Tone::blue, Icon::pencil },
        { Tone::green, Icon::sigma },
        { Tone::grey, Icon::pencil },
    } };
    const auto [tone, mark] = looks[static_cast<std::size_t>(verification)];
    const auto word = label(verification);
    return { tone, mark, QString::fromUtf8(word.data(), static_cast<qsizetype>(word.size())) };
}

QSize Chip::size(const Theme& theme) const
{
    const QFontMetrics metrics(theme.font(TextStyle::small));
    const int height = std::max(theme.scaled(20), metrics.height() + 4);
    return { metrics.horizontalAdvance(word) + theme.scaled(12) + Space::tiny + 2 * Space::small, height };
}

void Chip::paint(QPainter& painter, const QPointF& topLeft, const Theme& theme) const
{
    const QRectF area(topLeft, QSizeF(size(theme)));
    const auto& [ink, tint] = theme.colours.tone(tone);
    painter.save();
    drawSurface(painter, area, area.height() / 2, tint, ink, theme.edge > 1 ? theme.edge : 0);
    const double side = theme.scaled(12);
    drawIcon(
        painter, mark, QRectF(area.left() + Space::small, area.center().y() - side / 2, side, side), ink);
    painter.setFont(theme.font(TextStyle::small));
    painter.setPen(ink);
    painter.drawText(area.adjusted(Space::small + side + Space::tiny, 0, 0, 0),
        Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, word);
    painter.restore();
}

ChipLabel::ChipLabel(const Chip& chip, QWidget* parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setChip(chip);
}

void ChipLabel::setChip(const Chip& chip)
{
    m_chip = chip;
    setAccessibleName(chip.word);
    updateGeometry();
    update();
}

QSize ChipLabel::sizeHint() const { return m_chip.size(Theme::of(this)); }

void ChipLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    m_chip.paint(painter, QPointF(0, 0), Theme::of(this));
}

} // namespace Pallisande
