#pragma once

#include "PallisandeKit/Records/NumberSeries.h"
#include "TamberlinKit/Quotes/Paper.h"
#include "TamberlinKit/Quotes/SenderProfile.h"

#include <cstdint>
#include <string>

namespace Pallisande {

// The user's own business.
struct Profile {
    Tamberlin::SenderProfile sender;
    std::string homeCurrency = "EUR"; // ISO 4217; yearly totals are in it.
    NumberSeries invoiceSeries { .prefix = "INV-" };
    NumberSeries creditSeries { .prefix = "CN-" };
    NumberSeries quoteSeries { .prefix = "Q-" };
    std::string defaultPaymentTerms = "Payment within 30 days of the invoice date, by bank transfer.";
    std::string bankDetails;
    Tamberlin::Paper paper = Tamberlin::Paper::a4;
    std::int64_t quoteValidDays = 30;

    bool operator==(const Profile&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("sender", &Profile::sender),
            Base::field("homeCurrency", &Profile::homeCurrency),
            Base::field("invoiceSeries", &Profile::invoiceSeries),
            Base::field("creditSeries", &Profile::creditSeries),
            Base::field("quoteSeries", &Profile::quoteSeries),
            Base::field("defaultPaymentTerms", &Profile::defaultPaymentTerms),
            Base::field("bankDetails", &Profile::bankDetails),
            Base::field("paper", &Profile::paper),
            Base::field("quoteValidDays", &Profile::quoteValidDays),
        };
    }
};
static_assert(Base::listsEveryMember<Profile>);

} // namespace Pallisande
