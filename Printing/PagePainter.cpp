#include "Printing/PagePainter.h"

#include <QPainter>

namespace Pallisande {

void drawPage(const DocumentLayout& layout, std::size_t page, QPainter& painter, const QRectF& paper)
{
    painter.save();
    painter.translate(paper.topLeft());
    painter.scale(paper.width() / layout.sheet.width, paper.height() / layout.sheet.height);
    painter.setRenderHints(
        QPainter::Antialiasing | QPainter::SmoothPixmapTransform | QPainter::LosslessImageRendering);

    const Page& content = layout.pages.at(page);
    if (content.logo)
        painter.drawImage(*content.logo, layout.logo);
    for (const auto& line : content.lines) {
        const auto set = line.set();
        painter.setPen(QColor::fromRgb(line.colour));
        set.draw(&painter, { line.left, line.baseline - set.ascent() });
    }
    for (const auto& rule : content.rules)
        painter.fillRect(rule.area, QColor::fromRgb(rule.colour));
    painter.restore();
}

} // namespace Pallisande
