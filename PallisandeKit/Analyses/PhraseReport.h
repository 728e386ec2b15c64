#pragma once

#include "PallisandeKit/Analyses/DelimitedTable.h"
#include "PallisandeKit/Analyses/ImportResult.h"

#include <string>

// The analysis that Phrase exports as CSV, plain or extended: a line per file and target language.
namespace Pallisande::PhraseReport {

bool recognizes(const DelimitedTable& table);

// Reads a recognized table; throws ImportError with a sentence for the user. `name` is the file's name as it
// is shown.
Analysis read(const DelimitedTable& table, const std::string& name, Base::Instant now);

} // namespace Pallisande::PhraseReport
