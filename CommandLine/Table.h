#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Pallisande::CommandLine {

// Columns of text for people, padded to the width of a terminal's characters.
class Table {
public:
    enum class Align { left, right };
    struct Column {
        std::string head;
        Align align = Align::left;
    };

    explicit Table(std::vector<Column> columns)
        : m_columns(std::move(columns))
    {
    }

    void add(std::vector<std::string> row) { m_rows.push_back(std::move(row)); }
    bool isEmpty() const { return m_rows.empty(); }
    std::string text() const;

private:
    std::vector<Column> m_columns;
    std::vector<std::vector<std::string>> m_rows;
};

// Control characters of foreign texts must not reach the terminal; they become visible blanks.
std::string printable(std::string_view text);

} // namespace Pallisande::CommandLine
