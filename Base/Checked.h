#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>

// Arithmetic on counts that stops the program instead of wrapping. Readers bound what comes from outside
// before it gets here, so a stop is always a mistake of ours.
namespace Base::Checked {

// The largest total of any count that is let in from outside (2^53 − 1): sums of what passed it can't
// overflow.
inline constexpr std::int64_t largestCount = 9'007'199'254'740'991;

[[noreturn]] inline void fault(const char* operation)
{
    std::fprintf(stderr, "A count overflowed (%s).\n", operation);
    std::abort();
}

inline std::int64_t add(std::int64_t left, std::int64_t right)
{
    std::int64_t sum = 0;
    if (__builtin_add_overflow(left, right, &sum))
        fault("addition");
    return sum;
}

inline std::int64_t subtract(std::int64_t left, std::int64_t right)
{
    std::int64_t difference = 0;
    if (__builtin_sub_overflow(left, right, &difference))
        fault("subtraction");
    return difference;
}

} // namespace Base::Checked
