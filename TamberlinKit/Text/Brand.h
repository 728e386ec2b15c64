#pragma once

#include <string>

namespace Tamberlin::Brand {

// The name by which the counter speaks of itself to users. Set it at the start, before anything counts.
const std::string& name();
void setName(std::string name);

} // namespace Tamberlin::Brand
