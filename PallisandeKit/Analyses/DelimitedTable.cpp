#include "PallisandeKit/Analyses/DelimitedTable.h"

#include "Base/Text.h"
#include "PallisandeKit/Analyses/ImportResult.h"

#include <algorithm>
#include <limits>

namespace Pallisande {

namespace {

constexpr std::uint32_t quotedBit = 0x8000'0000;
constexpr std::size_t examined = 65'536; // Bytes of text by which the delimiter is chosen.

// Tried in this order: of two that fit equally well the first is taken.
constexpr char delimiters[] { '\t', ';', '|', ',' };

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLineEnd(char c) { return c == '\n' || c == '\r'; }
bool isBlank(char c) { return c == ' ' || c == '\t'; }

// Most cells have nothing to trim.
std::string_view trimmed(std::string_view text)
{
    const auto isVisible = [](char c) { return c > ' ' && c < '\x7F'; };
    return text.empty() || (isVisible(text.front()) && isVisible(text.back())) ? text : Base::trimmed(text);
}

// Where a line ends that starts before `at`, and where the next one starts.
std::size_t nextLine(std::string_view text, std::size_t at)
{
    return at + 1 < text.size() && text[at] == '\r' && text[at + 1] == '\n' ? at + 2 : at + 1;
}

// Where the quoted cell that starts at `start` ends: behind its last quotation mark and blanks. Nothing when
// no quotation mark closes it where a cell can end; it then holds its quotation marks as text, as in
// "name" ("path").
template <typename IsDelimiter>
std::optional<std::size_t> quotedEnd(std::string_view text, std::size_t start, IsDelimiter isDelimiter)
{
    for (auto at = text.find('"', start + 1); at != text.npos; at = text.find('"', at + 1)) {
        if (at + 1 < text.size() && text[at + 1] == '"') {
            ++at;
            continue;
        }
        ++at;
        while (at < text.size() && isBlank(text[at]) && !isDelimiter(text[at]))
            ++at;
        if (at == text.size() || isDelimiter(text[at]) || isLineEnd(text[at]))
            return at;
        return std::nullopt;
    }
    return std::nullopt;
}

// How well the lines agree on a delimiter: the weight of those that have the commonest number of them. A
// comma between digits may be part of a number, so it weighs less.
std::size_t agreement(std::string_view text, char delimiter)
{
    constexpr std::size_t most = 512, certain = 4;
    const auto couldDelimit = [](char c) {
        return std::find(std::begin(delimiters), std::end(delimiters), c) != std::end(delimiters);
    };
    std::vector<std::size_t> weights(most + 1), lines(most + 1);
    std::size_t found = 0, weight = 0;
    bool isCellStart = true;
    for (std::size_t at = 0; at < text.size();) {
        const char c = text[at];
        if (c == '"' && isCellStart) {
            if (const auto end = quotedEnd(text, at, couldDelimit)) {
                at = *end;
                isCellStart = false;
                continue;
            }
        }
        isCellStart = couldDelimit(c) || isLineEnd(c) || (isCellStart && isBlank(c));
        if (c == delimiter) {
            const bool isInNumber = c == ',' && at > 0 && isDigit(text[at - 1]) && at + 1 < text.size()
                && isDigit(text[at + 1]);
            weight += isInNumber ? 1 : certain;
            ++found;
        }
        if (isLineEnd(c) || at + 1 == text.size()) {
            weights[std::min(found, most)] += weight;
            ++lines[std::min(found, most)];
            found = weight = 0;
        }
        ++at;
    }
    lines[0] = 0;
    const auto commonest = std::max_element(lines.begin(), lines.end());
    return weights[static_cast<std::size_t>(commonest - lines.begin())];
}

} // namespace

bool DelimitedTable::canDelimit(char c) { return c != '"' && !isLineEnd(c); }

DelimitedTable::DelimitedTable(std::string_view data, std::optional<char> delimiter)
    : m_decoded(Tamberlin::decodeText(data))
{
    const auto text = m_decoded.text();
    if (text.size() > std::numeric_limits<std::int32_t>::max())
        throw ImportError("The file is larger than 2 GB, which is too big for an analysis report.");
    std::size_t from = 0;
    constexpr std::string_view spreadsheetHint = "sep=";
    if (text.starts_with(spreadsheetHint) && text.size() > 5 && isLineEnd(text[5]) && canDelimit(text[4])) {
        m_delimiter = text[4];
        from = nextLine(text, 5);
        m_rows.push_back({});
    } else {
        std::size_t best = 0;
        for (const char tried : delimiters) {
            const auto found = agreement(text.substr(0, examined), tried);
            if (found > best) {
                best = found;
                m_delimiter = tried;
            }
        }
    }
    m_delimiter = delimiter.value_or(m_delimiter);
    split(text, from);
}

void DelimitedTable::split(std::string_view text, std::size_t from)
{
    const auto lines = static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isLineEnd));
    m_rows.reserve(m_rows.size() + lines + 1);
    m_cells.reserve(lines + 1 + static_cast<std::size_t>(std::count(text.begin(), text.end(), m_delimiter)));
    std::size_t at = from;
    while (at < text.size()) {
        RowPlace row { static_cast<std::uint32_t>(m_cells.size()), static_cast<std::uint32_t>(at) };
        if (!isLineEnd(text[at])) {
            for (;;) {
                at = splitCell(text, at);
                if (at == text.size() || text[at] != m_delimiter)
                    break;
                ++at;
            }
            row.end = static_cast<std::uint32_t>(at);
        }
        m_rows.push_back(row);
        at = nextLine(text, at);
    }
}

// Notes the cell that starts at `start` and gives where it ends.
std::size_t DelimitedTable::splitCell(std::string_view text, std::size_t start)
{
    auto at = start;
    while (at < text.size() && isBlank(text[at]) && text[at] != m_delimiter)
        ++at;
    if (at < text.size() && text[at] == '"') {
        if (const auto end = quotedEnd(text, at, [&](char c) { return c == m_delimiter; })) {
            m_cells.push_back(static_cast<std::uint32_t>(at) | quotedBit);
            const auto last = text.rfind('"', *end - 1);
            const auto inner = text.substr(at + 1, last - at - 1);
            if (inner.find('"') != inner.npos)
                unescape(at, inner);
            return *end;
        }
    }
    m_cells.push_back(static_cast<std::uint32_t>(start));
    while (at < text.size() && text[at] != m_delimiter && !isLineEnd(text[at]))
        ++at;
    return at;
}

void DelimitedTable::unescape(std::size_t start, std::string_view inner)
{
    const auto from = m_unescapedText.size();
    for (std::size_t at = 0; at < inner.size(); ++at) {
        m_unescapedText += inner[at];
        if (inner[at] == '"')
            ++at;
    }
    m_unescaped.push_back({ static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(from),
        static_cast<std::uint32_t>(m_unescapedText.size() - from) });
}

DelimitedTable::Row DelimitedTable::operator[](std::size_t row) const
{
    const auto [firstCell, end] = m_rows[row];
    const auto behind = row + 1 < m_rows.size() ? m_rows[row + 1].firstCell : m_cells.size();
    return { *this, firstCell, behind - firstCell, end };
}

std::string_view DelimitedTable::Row::operator[](std::size_t column) const
{
    if (column >= m_size)
        return {};
    const auto text = m_table->m_decoded.text();
    const auto& cells = m_table->m_cells;
    const auto place = m_firstCell + column;
    const auto start = cells[place] & ~quotedBit;
    if (cells[place] & quotedBit) {
        const auto& unescaped = m_table->m_unescaped;
        const auto found = std::lower_bound(unescaped.begin(), unescaped.end(), start,
            [](const Unescaped& cell, std::uint32_t at) { return cell.start < at; });
        if (found != unescaped.end() && found->start == start)
            return trimmed(std::string_view(m_table->m_unescapedText).substr(found->place, found->size));
        return trimmed(text.substr(start + 1, text.find('"', start + 1) - start - 1));
    }
    const auto next = column + 1 < m_size ? (cells[place + 1] & ~quotedBit) : m_end + 1;
    auto end = next - 1;
    if (column + 1 < m_size && cells[place + 1] & quotedBit) {
        while (text[end] != m_table->m_delimiter) // Blanks before the quotation mark.
            --end;
    }
    return trimmed(text.substr(start, end - start));
}

std::string_view DelimitedTable::Row::text() const
{
    if (m_size == 0)
        return {};
    const auto start = m_table->m_cells[m_firstCell] & ~quotedBit;
    return m_table->m_decoded.text().substr(start, m_end - start);
}

bool DelimitedTable::Row::isBlank() const
{
    for (std::size_t column = 0; column < m_size; ++column) {
        if (!(*this)[column].empty())
            return false;
    }
    return true;
}

} // namespace Pallisande
