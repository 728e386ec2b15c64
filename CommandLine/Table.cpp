#include "CommandLine/Table.h"

#include "Base/Text.h"

#include <algorithm>

namespace Pallisande::CommandLine {

std::string printable(std::string_view text)
{
    auto shown = Base::validUtf8(text);
    for (std::size_t place = 0; place < shown.size(); ++place) {
        const auto byte = static_cast<unsigned char>(shown[place]);
        if (byte < 0x20 || byte == 0x7F)
            shown[place] = ' ';
        else if (byte == 0xC2 && static_cast<unsigned char>(shown[place + 1]) < 0xA0) // U+0080 to U+009F
            shown.replace(place, 2, " ");
    }
    return shown;
}

std::string Table::text() const
{
    std::vector<std::size_t> widths;
    for (const auto& column : m_columns)
        widths.push_back(Base::displayWidth(column.head));
    auto rows = m_rows;
    for (auto& row : rows) {
        for (std::size_t place = 0; place < row.size(); ++place) {
            row[place] = printable(row[place]);
            widths[place] = std::max(widths[place], Base::displayWidth(row[place]));
        }
    }
    std::string text;
    const auto addRow = [&](const std::vector<std::string>& cells) {
        std::string line;
        for (std::size_t place = 0; place < cells.size(); ++place) {
            const std::string padding(widths[place] - Base::displayWidth(cells[place]), ' ');
            const bool isRight = m_columns[place].align == Align::right;
            line += (place > 0 ? "  " : "") + (isRight ? padding + cells[place] : cells[place] + padding);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    };
    std::vector<std::string> heads;
    for (const auto& column : m_columns)
        heads.push_back(column.head);
    addRow(heads);
    for (const auto& row : rows)
        addRow(row);
    return text;
}

} // namespace Pallisande::CommandLine
