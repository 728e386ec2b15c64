#pragma once

#include "Base/Calendar.h"
#include "PallisandeKit/Rates/RateBook.h"

#include <stdexcept>
#include <string_view>
#include <vector>

namespace Pallisande {

// The ECB's rates can't be had; `what()` is the sentence for the user.
class ECBError : public std::runtime_error {
public:
    explicit ECBError(const std::string& sentence)
        : std::runtime_error(sentence)
    {
    }
};

namespace ECBFeed {

// The largest file that is read; the 90-day file has about 100 kB, the whole history since 1999 about 7 MB.
inline constexpr std::int64_t largestFile = 8 * 1024 * 1024;

// The days of one of the ECB's euro reference-rate files (XML: a gesmes envelope of nested Cube elements).
std::vector<ECBDay> parse(std::string_view xml, const Base::Calendar& calendar);

} // namespace ECBFeed

} // namespace Pallisande
