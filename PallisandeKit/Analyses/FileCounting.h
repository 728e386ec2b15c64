#pragma once

#include "PallisandeKit/Analyses/Analysis.h"
#include "TamberlinKit/Batch/CountBatch.h"

#include <string>

namespace Pallisande::FileCounting {

// A counted batch as an analysis that can be priced: a row a file, with repeated sentences as repetitions and
// the rest as no match.
Analysis analysis(const Tamberlin::BatchCount& batch, Base::Instant now);

} // namespace Pallisande::FileCounting
