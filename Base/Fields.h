#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <string_view>
#include <tuple>
#include <utility>

// A record names its fields once, in a static `fields()`; reading, writing, headings and exports walk that
// list. An enumeration names its cases once, in a `caseNames` function found beside it.
namespace Base {

// What reading does when a record's key isn't there.
enum class Missing {
    keepsDefault, // The member keeps the value that it was made with.
    fails,
    makesId, // A new identifier.
    takesNow, // The time of reading.
    takesZone, // The computer's time zone.
};

template <typename Record, typename Value> struct Field {
    std::string_view key;
    Value Record::*member;
    Missing missing = Missing::keepsDefault;
    bool lenient = false;
};

template <typename Record, typename Value>
constexpr Field<Record, Value> field(
    std::string_view key, Value Record::*member, Missing missing = Missing::keepsDefault)
{
    return { key, member, missing, false };
}

// A value that can't be read leaves the member's default instead of failing the whole text.
template <typename Record, typename Value>
constexpr Field<Record, Value> lenientField(std::string_view key, Value Record::*member)
{
    return { key, member, Missing::keepsDefault, true };
}

template <typename T>
concept HasFields = requires
{
    T::fields();
};

template <typename T>
concept HasCaseNames = requires(T value)
{
    caseNames(value);
};

template <HasCaseNames Case> constexpr std::string_view caseName(Case value)
{
    return caseNames(value)[static_cast<std::size_t>(value)];
}

// Gives the case through `value`; false when no case has that name.
template <HasCaseNames Case> constexpr bool parseCase(std::string_view name, Case& value)
{
    const auto names = caseNames(Case {});
    for (std::size_t index = 0; index < names.size(); ++index) {
        if (names[index] == name) {
            value = static_cast<Case>(index);
            return true;
        }
    }
    return false;
}

namespace Detail {

// Stands for a value of any type, so that the members of a record can be counted by trying to make one.
struct Anything {
    template <typename T> operator T&() const& noexcept;
    template <typename T> operator T&&() const&& noexcept;
};

template <typename Record, std::size_t... Index> constexpr bool canBeMadeFrom(std::index_sequence<Index...>)
{
    return requires { Record { (static_cast<void>(Index), Anything {})... }; };
}

template <typename Record, std::size_t Count = 0> constexpr std::size_t memberCount()
{
    if constexpr (canBeMadeFrom<Record>(std::make_index_sequence<Count + 1> {}))
        return memberCount<Record, Count + 1>();
    else
        return Count;
}

template <HasFields Record> inline constexpr auto fieldsOf = Record::fields();

template <HasFields Record>
inline constexpr std::size_t fieldCount = std::tuple_size_v<decltype(Record::fields())>;

// Places of the fields in the order of their keys, which is the order in which documents are written.
template <HasFields Record> constexpr auto sortedFieldPlaces()
{
    constexpr auto count = fieldCount<Record>;
    const auto keys = std::apply(
        [](const auto&... field) { return std::array<std::string_view, count> { field.key... }; },
        fieldsOf<Record>);
    std::array<std::size_t, count> places {};
    for (std::size_t place = 0; place < count; ++place)
        places[place] = place;
    std::sort(places.begin(), places.end(),
        [&](std::size_t left, std::size_t right) { return keys[left] < keys[right]; });
    return places;
}

template <HasFields Record> inline constexpr auto sortedPlaces = sortedFieldPlaces<Record>();

} // namespace Detail

// False when a member was added to a record and not to its list: assert it below each record.
template <HasFields Record>
inline constexpr bool listsEveryMember = Detail::memberCount<Record>() == Detail::fieldCount<Record>;

} // namespace Base
