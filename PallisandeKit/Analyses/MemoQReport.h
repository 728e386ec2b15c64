#pragma once

#include "PallisandeKit/Analyses/DelimitedTable.h"
#include "PallisandeKit/Analyses/ImportResult.h"

#include <string>

// The statistics that memoQ exports as CSV: a line per file with all information, a line per file as Trados
// wrote it, or the page as it was displayed.
namespace Pallisande::MemoQReport {

// Whether the headings are memoQ's. A file in the Trados-compatible layout that Phrase wrote isn't: ask
// PhraseReport first or after, the answers exclude each other.
bool recognizes(const DelimitedTable& table);

// Reads a recognized table; throws ImportError with a sentence for the user. `name` is the file's name as it
// is shown.
Analysis read(const DelimitedTable& table, const std::string& name, Base::Instant now);

} // namespace Pallisande::MemoQReport
