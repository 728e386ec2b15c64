#pragma once

#include "Base/Calendar.h"
#include "PallisandeKit/Rates/RateBook.h"
#include "PallisandeKit/Records/Client.h"
#include "PallisandeKit/Records/Profile.h"

#include <vector>

// The people of the sample library and the rates of its days.
namespace Pallisande::Sample {

void fillIn(Profile& profile);

Client publisher(Base::Instant created); // EUR, weights by band, VAT.
Client shipping(Base::Instant created); // GBP, on target words with a minimum fee.
Client software(Base::Instant created); // USD, reverse charge.
Client museum(Base::Instant created); // JPY, per character, in Tokyo.

// The ECB's days of the two weeks before `today`, weekends left out.
std::vector<ECBDay> rates(Base::Day today, const Base::Calendar& calendar);

} // namespace Pallisande::Sample
