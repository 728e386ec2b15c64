#pragma once

#include "Base/Calendar.h"
#include "PallisandeKit/Records/Library.h"

#include <cstddef>
#include <cstdint>

namespace Benchmarks {

// How much a made-up library holds. The default is a busy working life: about 54 MB as a document.
struct LibrarySize {
    std::size_t clients = 200;
    std::size_t jobs = 20'000;
    std::size_t invoices = 5'000; // Issued ones at most; one in fifty is credited in full.
    std::size_t rateDays = 300;
};

// The same library for the same seed, as if it had been worked with for years: numbers without gaps, lines
// that are the prices of their jobs, jobs that stand as their invoices say, payments and exchange rates.
// There are no stored PDFs.
Pallisande::Library makeLibrary(const LibrarySize& size = {}, std::uint64_t seed = 1);

// The moment at which the made-up library stands.
Base::Moment libraryMoment();

} // namespace Benchmarks
