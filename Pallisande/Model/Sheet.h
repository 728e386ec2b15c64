#pragma once

#include "Base/Instant.h"
#include "Base/Uuid.h"

#include <filesystem>
#include <optional>
#include <string>
#include <variant>

namespace Pallisande {

// In the order of the sidebar.
enum class AppSection { deadlines, jobs, clients, invoices };

// The modal sheets; at most one is open.
struct NewJobSheet {
    std::string title; // Proposed.
    std::optional<std::filesystem::path> report; // Imported for the job once it is there.
    bool operator==(const NewJobSheet&) const = default;
};
struct ReviewSheet { // Of `Imports::pending`.
    bool operator==(const ReviewSheet&) const = default;
};
struct ManualSheet {
    Base::Uuid jobID;
    std::optional<Base::Uuid> analysisID; // Typed counts that are changed.
    bool operator==(const ManualSheet&) const = default;
};
struct IssueSheet {
    Base::Uuid invoiceID;
    bool operator==(const IssueSheet&) const = default;
};
struct PaymentSheet {
    Base::Uuid invoiceID;
    std::optional<Base::Uuid> paymentID; // One that is changed.
    bool operator==(const PaymentSheet&) const = default;
};
struct TypedRateSheet {
    std::string from, to;
    Base::Instant day;
    std::optional<Base::Uuid> invoiceID; // The document that lacks it.
    bool operator==(const TypedRateSheet&) const = default;
};
struct MakeJobSheet { // Of `DocumentCounts::finished`.
    bool operator==(const MakeJobSheet&) const = default;
};
using Sheet = std::variant<NewJobSheet, ReviewSheet, ManualSheet, IssueSheet, PaymentSheet, TypedRateSheet,
    MakeJobSheet>;

} // namespace Pallisande
