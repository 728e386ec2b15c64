#pragma once

#include "PallisandeKit/Analyses/Analysis.h"
#include "PallisandeKit/Analyses/DelimitedTable.h"

#include <string>
#include <string_view>
#include <vector>

namespace Pallisande {

// What a column holds, or the row behind a label.
enum class ColumnRole {
    ignore, // Nothing that counts.
    file,
    label, // The band of each row, in tables whose bands stand below each other.
    counts, // Of the band that the row's label names.
    band,
    total,
    notBilled, // Words that nobody bills; a note tells how many.
};
constexpr std::array<std::string_view, 7> caseNames(ColumnRole)
{
    return { "ignore", "file", "label", "counts", "band", "total", "notBilled" };
}

enum class CountMetric { words, segments, characters };
constexpr std::array<std::string_view, 3> caseNames(CountMetric)
{
    return { "words", "segments", "characters" };
}

struct MappedColumn {
    std::string heading; // As the report has it; both lines of a heading of two.
    ColumnRole role = ColumnRole::ignore;
    std::optional<MatchBand> band; // Of a band.
    std::optional<CountMetric> metric; // Of counts, a band, a total and what isn't billed.

    bool operator==(const MappedColumn&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("heading", &MappedColumn::heading),
            Base::field("role", &MappedColumn::role, Base::Missing::fails),
            Base::field("band", &MappedColumn::band),
            Base::field("metric", &MappedColumn::metric),
        };
    }
};
static_assert(Base::listsEveryMember<MappedColumn>);

// What the rows with a label hold: a band, a total, words that aren't billed, or nothing that counts.
struct MappedLabel {
    std::string label;
    ColumnRole role = ColumnRole::ignore;
    std::optional<MatchBand> band;

    bool operator==(const MappedLabel&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("label", &MappedLabel::label, Base::Missing::fails),
            Base::field("role", &MappedLabel::role, Base::Missing::fails),
            Base::field("band", &MappedLabel::band),
        };
    }
};
static_assert(Base::listsEveryMember<MappedLabel>);

// How a table is read where the user knows better than it shows.
struct TableReading {
    std::string delimiter; // One character; empty: what most lines agree on.
    std::string decimalMark; // "." or ","; empty: as the numbers of each column tell.
    std::optional<bool> hasHeadings; // In its first line; absent: as it looks.

    std::optional<char> delimiterMark() const;

    bool operator==(const TableReading&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("delimiter", &TableReading::delimiter),
            Base::field("decimalMark", &TableReading::decimalMark),
            Base::field("hasHeadings", &TableReading::hasHeadings),
        };
    }
};
static_assert(Base::listsEveryMember<TableReading>);

// What the user said about a table, to be kept and used for every table with the same headings.
struct ColumnMapping {
    std::string fingerprint; // Of the headings; another spelling of blanks, dashes and case is the same.
    std::vector<MappedColumn> columns;
    std::vector<MappedLabel> labels; // Of a table with a label column.
    TableReading reading;

    bool operator==(const ColumnMapping&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("fingerprint", &ColumnMapping::fingerprint, Base::Missing::fails),
            Base::field("columns", &ColumnMapping::columns, Base::Missing::fails),
            Base::field("labels", &ColumnMapping::labels),
            Base::field("reading", &ColumnMapping::reading),
        };
    }
};
static_assert(Base::listsEveryMember<ColumnMapping>);

// A table that the user is asked about: how it begins, and a guess at every column.
struct MappingTable {
    std::string name;
    std::vector<std::vector<std::string>> sample; // The first rows below the headings.
    std::string delimiter; // With which it was read,
    bool hasHeadings = false; // and whether headings stand in it.
    ColumnMapping guess;

    bool operator==(const MappingTable&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("name", &MappingTable::name),
            Base::field("sample", &MappingTable::sample),
            Base::field("delimiter", &MappingTable::delimiter),
            Base::field("hasHeadings", &MappingTable::hasHeadings),
            Base::field("guess", &MappingTable::guess),
        };
    }
};
static_assert(Base::listsEveryMember<MappingTable>);

// Guesses what the columns and labels of a table hold; throws ImportError when it is no table of counts.
MappingTable guessMapping(
    const DelimitedTable& table, const std::string& name, const TableReading& reading = {});

// The labels of a table whose label column the user chose: those that the mapping knows as it has them, the
// others with a guess. None without such a column, or while nothing says which columns are counted.
std::vector<MappedLabel> labelsOf(const DelimitedTable& table, const ColumnMapping& mapping);

// Reads a table as the user mapped it; throws ImportError when the mapping is for other headings, lacks a
// label of this table, or gives no words or characters.
Analysis readMapped(
    const DelimitedTable& table, const ColumnMapping& mapping, const std::string& name, Base::Instant now);

} // namespace Pallisande
