#pragma once

#include "Base/Calendar.h"
#include "Base/Decimal.h"
#include "Base/EnumMap.h"
#include "Base/Fields.h"
#include "Base/Instant.h"
#include "Base/Uuid.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Base {

enum class JsonStyle {
    pretty, // Two blanks of indentation, one member a line.
    compact, // One line.
};

// Puts JSON text together, event by event. It gathers in a piece of its own, which goes to the text when it
// is full: a document is made of millions of parts of a few bytes, and each would cost a call otherwise.
class JsonWriter {
public:
    JsonWriter(std::string& text, JsonStyle style)
        : m_text(text)
        , m_pretty(style == JsonStyle::pretty)
    {
    }
    JsonWriter(const JsonWriter&) = delete;
    JsonWriter& operator=(const JsonWriter&) = delete;

    void beginObject() { begin('{'); }
    void endObject() { end('}'); }
    void beginArray() { begin('['); }
    void endArray() { end(']'); }
    // What comes next belongs to this key, which needs no escaping and is shorter than a piece.
    void plainKey(std::string_view key);
    void key(std::string_view key);
    void element() { startLine(); }

    void text(std::string_view text);
    void number(std::int64_t value);
    void truth(bool value) { add(value ? "true" : "false"); }
    void null() { add("null"); }
    // A value that writes itself with `appendTo`; one of `quoted` needs no escapes between its quotation
    // marks.
    template <typename Value> void value(const Value& value)
    {
        m_scratch.clear();
        value.appendTo(m_scratch);
        add(m_scratch);
    }
    template <typename Value> void quoted(const Value& value)
    {
        add('"');
        this->value(value);
        add('"');
    }

    // How much has been written, and that about as much as `bytes` will follow: the text then grows once.
    std::size_t size() const { return m_text.size() + m_used; }
    void expect(std::size_t bytes);

    // Everything written so far is in the text afterwards; the end of the outermost object or array does this
    // too.
    void finish();

private:
    static constexpr std::size_t pieceSize = 8192;

    // Where `size` more bytes can be put, which mustn't be more than a piece holds.
    char* room(std::size_t size)
    {
        if (size > pieceSize - m_used) [[unlikely]]
            finish();
        return m_piece.data() + m_used;
    }
    void add(char byte)
    {
        *room(1) = byte;
        ++m_used;
    }
    void add(std::string_view bytes)
    {
        if (bytes.size() > pieceSize) [[unlikely]]
            return addLong(bytes);
        std::memcpy(room(bytes.size()), bytes.data(), bytes.size());
        m_used += bytes.size();
    }
    void addLong(std::string_view bytes);
    void addEscaped(std::string_view text);
    void addEscape(char c);
    void begin(char bracket)
    {
        add(bracket);
        ++m_depth;
        m_isFirst = true;
    }
    void end(char bracket);
    void startLine();
    void addLineStart(bool withComma);

    std::string& m_text;
    std::string m_scratch;
    std::size_t m_depth = 0;
    std::size_t m_used = 0; // Of the piece.
    bool m_pretty;
    bool m_isFirst = true;
    std::array<char, pieceSize> m_piece;
};

inline void writeJson(JsonWriter& writer, bool value) { writer.truth(value); }
inline void writeJson(JsonWriter& writer, std::int64_t value) { writer.number(value); }
inline void writeJson(JsonWriter& writer, const std::string& value) { writer.text(value); }
inline void writeJson(JsonWriter& writer, const Decimal& value) { writer.value(value); }

inline void writeJson(JsonWriter& writer, const Uuid& value) { writer.quoted(value); }
inline void writeJson(JsonWriter& writer, const Instant& value) { writer.quoted(value); }
template <HasCaseNames Case> void writeJson(JsonWriter& writer, Case value) { writer.text(caseName(value)); }

// Declared before any is defined, so that each finds the others.
template <HasFields Record> void writeJson(JsonWriter& writer, const Record& record);
template <typename Value> void writeJson(JsonWriter& writer, const std::vector<Value>& values);
template <typename Value> void writeJson(JsonWriter& writer, const std::set<Value>& values);
template <typename Key, typename Value>
void writeJson(JsonWriter& writer, const std::map<Key, Value>& entries);
template <typename Case, typename Value>
void writeJson(JsonWriter& writer, const EnumMap<Case, Value>& entries);
template <typename... Cases> void writeJson(JsonWriter& writer, const std::variant<Cases...>& value);

namespace Detail {

template <typename Record, typename Value>
void writeField(JsonWriter& writer, const Record& record, const Field<Record, Value>& field)
{
    writer.plainKey(field.key);
    writeJson(writer, record.*field.member);
}

// An absent value leaves its key out.
template <typename Record, typename Value>
void writeField(JsonWriter& writer, const Record& record, const Field<Record, std::optional<Value>>& field)
{
    if (const auto& value = record.*field.member) {
        writer.plainKey(field.key);
        writeJson(writer, *value);
    }
}

template <typename Record, std::size_t... Index>
void writeFields(JsonWriter& writer, const Record& record, std::index_sequence<Index...>)
{
    (writeField(writer, record, std::get<sortedPlaces<Record>[Index]>(fieldsOf<Record>)), ...);
}

template <typename Values> void writeElements(JsonWriter& writer, const Values& values)
{
    constexpr std::size_t sample = 64; // The first ones of a long list tell how much text the rest will be.
    writer.beginArray();
    const auto start = writer.size();
    std::size_t count = 0;
    for (const auto& value : values) {
        writer.element();
        writeJson(writer, value);
        if (++count == sample)
            writer.expect((writer.size() - start) / sample * (values.size() - sample));
    }
    writer.endArray();
}

inline std::string keyText(const std::string& key) { return key; }
inline std::string keyText(std::int64_t key) { return std::to_string(key); }
inline std::string keyText(const Uuid& key) { return key.toString(); }

} // namespace Detail

template <HasFields Record> void writeJson(JsonWriter& writer, const Record& record)
{
    writer.beginObject();
    Detail::writeFields(writer, record, std::make_index_sequence<Detail::fieldCount<Record>> {});
    writer.endObject();
}

template <typename Value> void writeJson(JsonWriter& writer, const std::vector<Value>& values)
{
    Detail::writeElements(writer, values);
}

template <typename Value> void writeJson(JsonWriter& writer, const std::set<Value>& values)
{
    Detail::writeElements(writer, values);
}

template <typename Key, typename Value>
void writeJson(JsonWriter& writer, const std::map<Key, Value>& entries)
{
    std::vector<std::pair<std::string, const Value*>> sorted; // By the key's text: 10 comes before 9.
    for (const auto& [key, value] : entries)
        sorted.emplace_back(Detail::keyText(key), &value);
    std::sort(sorted.begin(), sorted.end(),
        [](const auto& left, const auto& right) { return left.first < right.first; });
    writer.beginObject();
    for (const auto& [key, value] : sorted) {
        writer.key(key);
        writeJson(writer, *value);
    }
    writer.endObject();
}

template <typename Case, typename Value>
void writeJson(JsonWriter& writer, const EnumMap<Case, Value>& entries)
{
    static constexpr auto sorted = [] {
        std::array<Case, EnumMap<Case, Value>::caseCount> cases {};
        for (std::size_t index = 0; index < cases.size(); ++index)
            cases[index] = static_cast<Case>(index);
        std::sort(cases.begin(), cases.end(),
            [](Case left, Case right) { return caseName(left) < caseName(right); });
        return cases;
    }();
    writer.beginObject();
    for (const Case key : sorted) {
        if (const Value* value = entries.find(key)) {
            writer.plainKey(caseName(key));
            writeJson(writer, *value);
        }
    }
    writer.endObject();
}

// An enumeration with payloads: an object whose one member is named after the case.
template <typename... Cases> void writeJson(JsonWriter& writer, const std::variant<Cases...>& value)
{
    writer.beginObject();
    std::visit(
        [&]<typename Case>(const Case& payload) {
            writer.plainKey(Case::caseName);
            writeJson(writer, payload);
        },
        value);
    writer.endObject();
}

} // namespace Base
