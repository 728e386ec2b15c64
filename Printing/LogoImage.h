#pragma once

#include <QImage>

#include <string>

namespace Pallisande {

// The sender’s logo, from a PNG or JPEG image in Base64: opaque on white, in the colours of the page (sRGB),
// and no finer than print shows. Throws PrintingError::unreadableLogo.
QImage readLogo(const std::string& base64);

// The room for it on the page.
QSizeF logoSize(const QImage& logo);

} // namespace Pallisande
