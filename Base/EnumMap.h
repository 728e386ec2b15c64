#pragma once

#include "Base/Fields.h"

#include <array>
#include <cstdint>
#include <functional>

namespace Base {

// A dictionary from the cases of an enumeration to values, held in place: no allocation, and a case that is
// missing differs from one that holds a zero.
template <HasCaseNames Case, typename Value> class EnumMap {
public:
    static constexpr std::size_t caseCount = caseNames(Case {}).size();

    constexpr EnumMap() = default;
    constexpr EnumMap(std::initializer_list<std::pair<Case, Value>> entries)
    {
        for (const auto& [key, value] : entries)
            (*this)[key] = value;
    }

    // The entry, made with the type's default when it is missing.
    constexpr Value& operator[](Case key)
    {
        m_present |= bit(key);
        return m_values[place(key)];
    }

    // Nothing (null) when the case is missing.
    constexpr const Value* find(Case key) const
    {
        return m_present & bit(key) ? &m_values[place(key)] : nullptr;
    }
    constexpr Value valueOr(Case key, const Value& other) const
    {
        return m_present & bit(key) ? m_values[place(key)] : other;
    }

    constexpr bool isEmpty() const { return m_present == 0; }
    constexpr void clear() { *this = {}; }

    // Calls `visit(key, value)` for every entry in the order of the cases.
    template <typename Visit> constexpr void forEach(Visit visit) const
    {
        for (std::size_t index = 0; index < caseCount; ++index) {
            if (m_present >> index & 1)
                visit(static_cast<Case>(index), m_values[index]);
        }
    }

    bool operator==(const EnumMap&) const = default; // A missing entry always holds the type's default.

private:
    static constexpr std::size_t place(Case key) { return static_cast<std::size_t>(key); }
    static constexpr std::uint32_t bit(Case key) { return std::uint32_t { 1 } << place(key); }

    std::array<Value, caseCount> m_values {};
    std::uint32_t m_present = 0;
};

} // namespace Base
