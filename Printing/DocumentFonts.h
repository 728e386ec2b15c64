#pragma once

#include <QFont>
#include <QStringList>

#include <string_view>

namespace Pallisande {

// The families that a document in this language (BCP 47) is set in, the first one that has a character giving
// it.
QStringList fontFamilies(std::string_view language);

// Those for Chinese, Japanese and Korean characters. The three share characters that each of them draws
// differently, so the language decides which comes first.
QStringList eastAsianFamilies(std::string_view language);

// A font of these families whose pixels are tenths of a point.
QFont pageFont(const QStringList& families, double sizeInPoints, bool strong);

} // namespace Pallisande
