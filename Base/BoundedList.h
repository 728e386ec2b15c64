#pragma once

#include "Base/JsonWriter.h"

#include <array>
#include <cassert>
#include <cstddef>

namespace Base {

// A list of at most `Most` values, held in place: no allocation.
template <typename Value, std::size_t Most> class BoundedList {
public:
    void push_back(const Value& value) { m_values.at(m_size++) = value; }

    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }
    const Value* begin() const { return m_values.data(); }
    const Value* end() const { return m_values.data() + m_size; }
    const Value& operator[](std::size_t place) const
    {
        assert(place < m_size);
        return m_values[place];
    }

    bool operator==(const BoundedList&) const = default; // What lies behind the end is always a default.

private:
    std::array<Value, Most> m_values {};
    std::size_t m_size = 0;
};

template <typename Value, std::size_t Most>
void writeJson(JsonWriter& writer, const BoundedList<Value, Most>& values)
{
    Detail::writeElements(writer, values);
}

} // namespace Base
