#pragma once

#include "PallisandeKit/Analyses/DelimitedTable.h"

#include <optional>
#include <string>
#include <vector>

namespace Pallisande {

// The headings of a table of counts: one line, or a line of bands over a line of what is counted of each.
struct ColumnHeadings {
    static constexpr std::size_t mostColumns = 4096;

    std::vector<std::string> names; // Of each column; "Column 3" in a table without headings.
    std::size_t firstRow = 0; // Below them.
    bool areInTable = false;

    // Nothing when the table holds no counts, or too many columns. Whether its first line holds the headings
    // may be told.
    static std::optional<ColumnHeadings> find(
        const DelimitedTable& table, std::optional<bool> areInFirstLine = std::nullopt);

    // The same for the same headings, whatever their blanks, dashes and case.
    std::string fingerprint() const;

    // Whether a row is the headings again, over another block of the report.
    bool areRepeatedIn(const DelimitedTable::Row& row) const;

private:
    struct Line;
    static Line examined(const DelimitedTable::Row& row, std::size_t& left);

    struct Key {
        std::size_t column = 0;
        std::string text;
    };
    std::vector<Key> m_keys; // Cells by which repeated headings are known.

    void look(const DelimitedTable& table, const std::vector<Line>& lines);
    void number(const DelimitedTable& table, std::size_t line);
    void take(const DelimitedTable& table, std::optional<std::size_t> bandLine, std::size_t line);
};

// Whether a cell is nothing but a number.
bool isNumber(std::string_view cell);

} // namespace Pallisande
