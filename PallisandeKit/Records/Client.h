#pragma once

#include "Base/Decimal.h"
#include "Base/Instant.h"
#include "Base/Uuid.h"
#include "PallisandeKit/Analyses/BandCounts.h"
#include "PallisandeKit/Analyses/BandWeights.h"
#include "PallisandeKit/Records/LanguagePair.h"

#include <optional>
#include <string>
#include <vector>

namespace Pallisande {

// A client's special rate for one language pair.
struct ClientRate {
    Base::Uuid id;
    LanguagePair pair;
    Base::Decimal rate; // Per the client's unit.
    std::optional<Base::Decimal> minimumFee; // Absent: the client's own minimum applies.

    bool operator==(const ClientRate&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("id", &ClientRate::id, Base::Missing::makesId),
            Base::field("pair", &ClientRate::pair),
            Base::field("rate", &ClientRate::rate, Base::Missing::fails),
            Base::field("minimumFee", &ClientRate::minimumFee),
        };
    }
};
static_assert(Base::listsEveryMember<ClientRate>);

struct Client {
    Base::Uuid id;
    std::string name;
    std::string contact;
    std::string email;
    std::string address; // Several lines.
    std::string taxID;
    std::string timeZone; // IANA identifier; deadlines are shown in this zone.
    std::string currency = "EUR"; // ISO 4217.
    RateUnit unit = RateUnit::word;
    WordBasis basis = WordBasis::source;
    Base::Decimal defaultRate = Base::Decimal::ofParts(10, -2);
    std::vector<ClientRate> rates;
    BandWeights weights = BandWeights::of(BandWeights::Preset::none);
    Base::Decimal minimumFee;
    Base::Decimal taxPercent;
    std::string taxLabel;
    std::string taxNote; // For example a reverse-charge remark.
    std::int64_t paymentDays = 30; // From the issue day to the due day.
    std::string paymentTerms; // Empty: the profile's.
    std::string notes;
    bool archived = false; // Hidden from pickers, but kept.
    Base::Instant created;

    bool operator==(const Client&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("id", &Client::id, Base::Missing::makesId),
            Base::field("name", &Client::name),
            Base::field("contact", &Client::contact),
            Base::field("email", &Client::email),
            Base::field("address", &Client::address),
            Base::field("taxID", &Client::taxID),
            Base::field("timeZone", &Client::timeZone, Base::Missing::takesZone),
            Base::field("currency", &Client::currency),
            Base::lenientField("unit", &Client::unit),
            Base::lenientField("basis", &Client::basis),
            Base::field("defaultRate", &Client::defaultRate),
            Base::field("rates", &Client::rates),
            Base::field("weights", &Client::weights),
            Base::field("minimumFee", &Client::minimumFee),
            Base::field("taxPercent", &Client::taxPercent),
            Base::field("taxLabel", &Client::taxLabel),
            Base::field("taxNote", &Client::taxNote),
            Base::field("paymentDays", &Client::paymentDays),
            Base::field("paymentTerms", &Client::paymentTerms),
            Base::field("notes", &Client::notes),
            Base::field("archived", &Client::archived),
            Base::field("created", &Client::created, Base::Missing::takesNow),
        };
    }
};
static_assert(Base::listsEveryMember<Client>);

} // namespace Pallisande
