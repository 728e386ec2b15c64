#include "TamberlinKit/Text/Brand.h"

#include <utility>

namespace Tamberlin::Brand {

namespace {

std::string& current()
{
    static std::string name = "Tamberlin";
    return name;
}

} // namespace

const std::string& name() { return current(); }
void setName(std::string name) { current() = std::move(name); }

} // namespace Tamberlin::Brand
