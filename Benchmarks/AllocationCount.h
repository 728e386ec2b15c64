#pragma once

#include <cstddef>

namespace Benchmarks {

// How often the program has asked for memory with `new`. Linking this file in replaces the global operator.
std::size_t allocationCount();

} // namespace Benchmarks
