#pragma once

#include "Base/Descriptor.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace Base {

struct ChildLimits {
    std::chrono::milliseconds time { 30'000 };
    std::size_t outputBytes = 64 * 1024 * 1024;
    std::stop_token cancel; // A child is killed at once when a stop is asked for.
};

struct ChildResult {
    enum class End { exited, killedBySignal, tookTooLong, wroteTooMuch, cancelled, couldNotStart };
    End end = End::couldNotStart;
    int code = 0; // Exit code, signal number or errno.
    std::string output;
    std::string errors; // What it wrote to standard error, at most 64 kB of it.
};

// Runs `program` with `arguments` (no shell), hands it `input` on standard input and gathers what it writes.
// A child that passes a limit is killed; none is left behind. Other descriptors of ours aren't handed on.
ChildResult runChild(const std::filesystem::path& program, const std::vector<std::string>& arguments,
    std::string_view input, const ChildLimits& limits = {});
// The same with an open file as its standard input.
ChildResult runChild(const std::filesystem::path& program, const std::vector<std::string>& arguments,
    const Descriptor& input, const ChildLimits& limits = {});

// The folder in which the running program's file lies; helper programs stand beside it.
std::filesystem::path programFolder();

} // namespace Base
