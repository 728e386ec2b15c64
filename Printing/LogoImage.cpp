#include "Printing/LogoImage.h"

#include "Base/Base64.h"
#include "Printing/PageGeometry.h"
#include "Printing/PrintingError.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImageReader>
#include <QPainter>

#include <algorithm>
#include <string_view>

namespace Pallisande {

namespace {

constexpr qint64 mostPixels = 20'000'000;
constexpr QSizeF room { millimetres(50), millimetres(20) };
constexpr double finestPerPoint = 400.0 / 72; // A photograph adds a megabyte to each invoice at 600.

// The format by the image’s first bytes; Qt’s own recognition would try every reader that is installed.
const char* formatOf(std::string_view bytes)
{
    if (bytes.starts_with("\x89PNG\r\n\x1a\n"))
        return "png";
    return bytes.starts_with("\xff\xd8\xff") ? "jpeg" : nullptr;
}

} // namespace

QImage readLogo(const std::string& base64)
{
    const auto bytes = Base::fromBase64(base64);
    const char* format = bytes ? formatOf(*bytes) : nullptr;
    if (!format)
        throw PrintingError::unreadableLogo();
    auto data = QByteArray::fromRawData(bytes->data(), static_cast<qsizetype>(bytes->size()));
    QBuffer buffer(&data);
    QImageReader reader(&buffer, format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true); // Photographs may be stored lying on their side.
    const QSize size = reader.size();
    if (size.isEmpty() || qint64 { size.width() } * size.height() > mostPixels)
        throw PrintingError::unreadableLogo();
    QImage image = reader.read();
    if (image.isNull())
        throw PrintingError::unreadableLogo();
    if (image.colorSpace().isValid())
        image.convertToColorSpace(QColorSpace::SRgb);

    const QSizeF most = room * (finestPerPoint / points(1));
    if (image.width() > most.width() || image.height() > most.height())
        image = image.scaled(most.toSize(), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QImage opaque(image.size(), QImage::Format_RGB32);
    opaque.fill(Qt::white);
    QPainter(&opaque).drawImage(0, 0, image);
    return opaque;
}

QSizeF logoSize(const QImage& logo)
{
    const QSizeF natural
        = QSizeF(logo.size()) * points(1); // A small one isn’t enlarged beyond a point for a pixel.
    const double scale = std::min({ 1.0, room.width() / natural.width(), room.height() / natural.height() });
    return natural * scale;
}

} // namespace Pallisande
