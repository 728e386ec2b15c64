#pragma once

#include "Base/Calendar.h"
#include "Base/Decimal.h"
#include "Base/Uuid.h"
#include "PallisandeKit/Analyses/Analysis.h"
#include "PallisandeKit/Records/LanguagePair.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Pallisande {

enum class JobStatus { quote, inProgress, delivered, invoiced, paid, cancelled };
constexpr std::array<std::string_view, 6> caseNames(JobStatus)
{
    return { "quote", "inProgress", "delivered", "invoiced", "paid", "cancelled" };
}
std::string_view title(JobStatus status); // "In progress"

// One extra priced line of a job: hours of review, a formatting fee.
struct ExtraLine {
    Base::Uuid id;
    std::string title;
    Base::Decimal quantity;
    std::string unit; // "hours"
    Base::Decimal unitPrice; // In the client's currency.

    bool operator==(const ExtraLine&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("id", &ExtraLine::id, Base::Missing::makesId),
            Base::field("title", &ExtraLine::title),
            Base::field("quantity", &ExtraLine::quantity, Base::Missing::fails),
            Base::field("unit", &ExtraLine::unit),
            Base::field("unitPrice", &ExtraLine::unitPrice, Base::Missing::fails),
        };
    }
};
static_assert(Base::listsEveryMember<ExtraLine>);

struct Job {
    Base::Uuid id;
    std::string title;
    Base::Uuid clientID;
    LanguagePair pair;
    std::string reference; // The client's purchase order or project.
    JobStatus status = JobStatus::quote;
    Base::Instant received;
    std::optional<Base::Instant> deadline;
    std::optional<Base::Instant> deliveredAt;
    std::vector<Analysis> analyses;
    std::vector<ExtraLine> extras;
    std::optional<std::int64_t> targetUnits; // Counted on the target side, for clients billed on it.
    std::optional<Base::Decimal> rateOverride; // For this job only.
    Base::Decimal surchargePercent;
    std::string notes;
    std::optional<Base::Uuid> invoiceID;
    std::optional<std::string> quoteNumber;
    Base::Instant created;
    Base::Instant modified; // Every change of the job sets it.

    bool operator==(const Job&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("id", &Job::id, Base::Missing::makesId),
            Base::field("title", &Job::title),
            Base::field("clientID", &Job::clientID, Base::Missing::fails),
            Base::field("pair", &Job::pair),
            Base::field("reference", &Job::reference),
            Base::lenientField("status", &Job::status),
            Base::field("received", &Job::received, Base::Missing::takesNow),
            Base::field("deadline", &Job::deadline),
            Base::field("deliveredAt", &Job::deliveredAt),
            Base::field("analyses", &Job::analyses),
            Base::field("extras", &Job::extras),
            Base::field("targetUnits", &Job::targetUnits),
            Base::field("rateOverride", &Job::rateOverride),
            Base::field("surchargePercent", &Job::surchargePercent),
            Base::field("notes", &Job::notes),
            Base::field("invoiceID", &Job::invoiceID),
            Base::field("quoteNumber", &Job::quoteNumber),
            Base::field("created", &Job::created, Base::Missing::takesNow),
            Base::field("modified", &Job::modified, Base::Missing::takesNow),
        };
    }
};
static_assert(Base::listsEveryMember<Job>);

} // namespace Pallisande
