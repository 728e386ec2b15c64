#pragma once

#include "TamberlinKit/Markup/Package.h"

#include <stop_token>
#include <string>
#include <string_view>

namespace Tamberlin {

// Opens a document that is a package. Office keeps a document that is protected with a password in an OLE
// compound file instead; the sentence of the ReadError says so then.
Package openPackage(
    std::string_view archive, std::string name, std::string_view kind, const std::stop_token& cancel);

// The path of the part that holds an Office document together, which is nearly always the usual one.
std::string mainPart(const Package& package, std::string_view usual);

} // namespace Tamberlin
