#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

// Ends the program, which is how a fuzzing target tells of a fault.
inline void expect(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "%s\n", what);
        std::abort();
    }
}

inline std::string_view textOf(const unsigned char* data, std::size_t size)
{
    return { reinterpret_cast<const char*>(data), size };
}
