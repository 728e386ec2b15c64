#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace Benchmarks {

// A report of Trados Studio of about `bytes` bytes, whose files add up to what they state. The same for the
// same seed.
std::string makeReport(std::size_t bytes, std::uint64_t seed = 1);

} // namespace Benchmarks
