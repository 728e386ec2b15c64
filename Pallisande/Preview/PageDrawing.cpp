#include "Pallisande/Preview/PageDrawing.h"

#include "Printing/PagePainter.h"
#include "Printing/PrintingError.h"

#include <QPainter>

#ifdef PALLISANDE_HAS_QTPDF
#include <QPdfDocument>
#endif

#include <algorithm>
#include <cmath>

namespace Pallisande {

namespace {

constexpr double pixelsPerPoint = 96.0 / 72; // At 100%.

// The size on the screen of a page that measures so many points.
QSizeF shownSize(const QSizeF& points, const PageScale& scale)
{
    const auto natural = points * pixelsPerPoint;
    if (scale.percent > 0)
        return natural * (scale.percent / 100.0);
    return natural.scaled(QSizeF(scale.room), Qt::KeepAspectRatio);
}

QImage blank(const QSizeF& size, double density)
{
    const QSize pixels(std::max(1, static_cast<int>(std::ceil(size.width() * density))),
        std::max(1, static_cast<int>(std::ceil(size.height() * density))));
    QImage image(pixels, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

DrawnPage draw(const Tamberlin::PrintedDocument& document, int wanted, const PageScale& scale)
{
    const auto layout = layOut(document);
    DrawnPage drawn { .pages = static_cast<int>(layout.pages.size()),
        .missingCharacters = layout.missingCharacters };
    drawn.page = std::clamp(wanted, 0, drawn.pages - 1);
    drawn.size = shownSize(QSizeF(layout.sheet.width, layout.sheet.height) / points(1), scale);
    drawn.image = blank(drawn.size, scale.density);
    QPainter painter(&drawn.image);
    painter.setRenderHints(
        QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
    drawPage(layout, static_cast<std::size_t>(drawn.page), painter, QRectF(drawn.image.rect()));
    return drawn;
}

#ifdef PALLISANDE_HAS_QTPDF
DrawnPage draw(const std::filesystem::path& file, int wanted, const PageScale& scale)
{
    QPdfDocument pdf;
    if (pdf.load(QString::fromStdString(file.string())) != QPdfDocument::Error::None || pdf.pageCount() < 1)
        return { .failure = "The stored PDF couldn’t be drawn." };
    DrawnPage drawn { .pages = pdf.pageCount() };
    drawn.page = std::clamp(wanted, 0, drawn.pages - 1);
    drawn.size = shownSize(pdf.pagePointSize(drawn.page), scale);
    drawn.image = blank(drawn.size, scale.density);
    const auto rendered = pdf.render(drawn.page, drawn.image.size());
    QPainter(&drawn.image).drawImage(drawn.image.rect(), rendered); // Its paper is transparent.
    return drawn;
}
#else
DrawnPage draw(const std::filesystem::path&, int, const PageScale&) { return {}; }
#endif

DrawnPage draw(std::monostate, int, const PageScale&) { return {}; }

} // namespace

DrawnPage drawnPage(const PageSource& source, int page, const PageScale& scale)
{
    try {
        auto drawn = std::visit([&](const auto& shown) { return draw(shown, page, scale); }, source);
        drawn.image.setDevicePixelRatio(scale.density);
        return drawn;
    } catch (const std::exception& error) {
        return { .failure = error.what() };
    }
}

bool canDrawStoredPDFs()
{
#ifdef PALLISANDE_HAS_QTPDF
    return true;
#else
    return false;
#endif
}

} // namespace Pallisande
