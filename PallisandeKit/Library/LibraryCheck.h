#pragma once

#include "PallisandeKit/Library/LibrarySession.h"

#include <string>
#include <vector>

namespace Pallisande {

// What a look through a whole library folder found.
struct LibraryCheck {
    std::int64_t clients = 0;
    std::int64_t jobs = 0;
    std::int64_t documents = 0; // Issued invoices and credit notes.
    std::vector<std::string> numbering; // As the ledger words it.
    std::vector<std::string> findings; // Everything that isn't as it should be, a sentence each.

    bool isClean() const;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("clients", &LibraryCheck::clients),
            Base::field("jobs", &LibraryCheck::jobs),
            Base::field("documents", &LibraryCheck::documents),
            Base::field("numbering", &LibraryCheck::numbering),
            Base::field("findings", &LibraryCheck::findings),
        };
    }
};
static_assert(Base::listsEveryMember<LibraryCheck>);

// Compares records, stored PDFs, report copies and the issue log with each other; changes nothing.
LibraryCheck checkLibrary(const LibrarySession& session);

} // namespace Pallisande
