#pragma once

#include "PallisandeKit/Analyses/ImportResult.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace Pallisande::Importer {

inline constexpr std::int64_t largestReport = 52'428'800; // 50 MiB; one byte more is refused.

// The bytes of a report file that the user chose; throws ImportError with the sentence for the user when it
// is too large or can't be opened.
std::string load(const std::filesystem::path& file);

// Hands the bytes of a file to the reader that its extension or its head names. Never throws for what stands
// in the file: every failure is an ImportFailed.
ImportResult import(std::string_view data, const std::string& fileName, Base::Instant now);

// Any table of text, also of a report that is known: a guess at its columns, or ImportError when it holds
// none.
MappingTable guess(std::string_view data, const std::string& fileName, const TableReading& reading = {});
// The labels in the label column that a mapping names.
std::vector<MappedLabel> labelsOf(std::string_view data, const ColumnMapping& mapping);
// Reads a table as the user mapped it.
ImportResult importMapped(
    std::string_view data, const std::string& fileName, const ColumnMapping& mapping, Base::Instant now);

// A file's name as it is shown.
std::string displayName(const std::filesystem::path& file);

} // namespace Pallisande::Importer
