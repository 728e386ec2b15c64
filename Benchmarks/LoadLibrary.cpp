// Opens a library for reading and does nothing else; `start-up` looks at how much memory that takes:
//
//     load-library FOLDER

#include "PallisandeKit/Library/LibrarySession.h"

#include <fmt/format.h>

#include <cstdio>

int main(int argumentCount, char** arguments)
{
    using Pallisande::LibrarySession;
    if (argumentCount != 2) {
        fmt::print(stderr, "load-library FOLDER\n");
        return 2;
    }
    try {
        const auto session = LibrarySession::open(arguments[1], LibrarySession::Access::reading,
            { .now = &Base::Instant::now, .calendar = Base::Calendar::utc() });
        fmt::print("{} jobs\n", session.library().jobs.size());
    } catch (const std::exception& error) {
        fmt::print(stderr, "{}\n", error.what());
        return 1;
    }
}
