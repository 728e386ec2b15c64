#pragma once

#include "PallisandeKit/Analyses/ImportResult.h"

#include <string>
#include <string_view>

// The analysis that Phrase exports as JSON, or the one that its API answers with.
namespace Pallisande::PhraseJSON {

// Reads an analysis; throws ImportError when it isn't one. `name` is the file's name as it is shown.
Analysis read(std::string_view data, const std::string& name, Base::Instant now);

} // namespace Pallisande::PhraseJSON
