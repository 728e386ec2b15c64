#pragma once

#include "TamberlinKit/Text/TextDecoder.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Pallisande {

// A text of cells between commas, semicolons, tabs or bars, in any encoding. Cells are found once and looked
// up in the text; a cell takes four bytes, so that a report of the largest size fits many times over.
class DelimitedTable {
public:
    class Row;

    // Refers to `data`, which must outlive the table. Without a delimiter it is what most rows agree on; a
    // first line "sep=;" decides it. Throws ImportError for a text of 2 GiB or more.
    explicit DelimitedTable(std::string_view data, std::optional<char> delimiter = std::nullopt);

    static bool canDelimit(char c); // Quotation marks and line ends can't.

    // Rows in the order of the file, blank lines included: the first is line 1.
    std::size_t size() const { return m_rows.size(); }
    Row operator[](std::size_t row) const;

    char delimiter() const { return m_delimiter; }

    // A doubt about the encoding, which belongs among an analysis' notes.
    std::optional<std::string> encodingNote() const { return m_decoded.note(); }

private:
    struct RowPlace {
        std::uint32_t firstCell = 0;
        std::uint32_t end = 0; // Of its last cell, in the text.
    };
    struct Unescaped { // A cell with doubled quotation marks inside.
        std::uint32_t start = 0; // Of the cell, in the text.
        std::uint32_t place = 0, size = 0; // Of what it holds, in m_unescapedText.
    };

    void split(std::string_view text, std::size_t from);
    std::size_t splitCell(std::string_view text, std::size_t start);
    void unescape(std::size_t start, std::string_view inner);

    Tamberlin::DecodedText m_decoded;
    char m_delimiter = ',';
    std::vector<std::uint32_t> m_cells; // Where each starts; the highest bit tells that it is quoted.
    std::vector<RowPlace> m_rows;
    std::vector<Unescaped> m_unescaped; // By start.
    std::string m_unescapedText;
};

// One line of cells. Lines may differ in length: a cell beyond the end is empty.
class DelimitedTable::Row {
public:
    Row(const DelimitedTable& table, std::size_t firstCell, std::size_t size, std::uint32_t end)
        : m_table(&table)
        , m_firstCell(firstCell)
        , m_size(size)
        , m_end(end)
    {
    }

    std::size_t size() const { return m_size; } // A blank line has none.
    std::string_view operator[](std::size_t column) const; // Without quotation marks and blanks around it.
    std::string_view text() const; // The line as it stands in the file.
    bool isBlank() const; // Whether no cell holds anything.

private:
    const DelimitedTable* m_table;
    std::size_t m_firstCell, m_size;
    std::uint32_t m_end;
};

} // namespace Pallisande
