#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace Pallisande {

// Between the model's texts and the window's.
inline QString qt(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::string plain(const QString& text) { return text.toStdString(); }

} // namespace Pallisande
