#pragma once

#include "Base/Checked.h"
#include "Base/Decimal.h"
#include "Base/EnumMap.h"
#include "Base/Fields.h"
#include "Base/Instant.h"
#include "Base/Uuid.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Base {

// A JSON text can't be read as what it should be. `what()` names the key path where there is one:
// "jobs[3].deadline: Not an ISO 8601 date: soon".
class DecodingError : public std::runtime_error {
public:
    explicit DecodingError(const std::string& message)
        : std::runtime_error(message)
    {
    }
    DecodingError(const std::string& path, const std::string& message)
        : std::runtime_error(path.empty() ? message : path + ": " + message)
    {
    }
};

// What missing keys take.
struct ReadingContext {
    Instant now;
    std::string timeZone = "UTC";
    bool keepsMissing = false; // Whether every missing key leaves what the record holds.
};

class Form;

// Where the next value goes, and how it is read there.
struct Place {
    const Form* form = nullptr;
    void* target = nullptr;
    bool isNew = false; // The value was made for this text, so its missing keys are never kept from before.
};

// An object or array that is being read.
struct Frame {
    const Form* form = nullptr;
    void* target = nullptr;
    std::uint64_t seen = 0; // Which fields of a record were there.
    std::size_t count = 0; // Elements so far, or the field that is being read.
    const void* key = nullptr; // The key of a dictionary's entry that is being read.
    bool isNew = false; // As of its place, or of what it stands in.
};

// How the values of one type take the events of a JSON text. There is one object a type, without state. What
// a type doesn't take is refused by these defaults.
class Form {
public:
    virtual void setNull(void* target) const;
    virtual void setTruth(void* target, bool value) const;
    virtual void setNumber(void* target, std::string_view text) const;
    virtual void setText(void* target, std::string_view text) const;
    // Objects and arrays: the place whose form gets the members or elements.
    virtual Place openObject(void* target) const;
    virtual Place openArray(void* target) const;
    virtual Place member(Frame& frame, std::string_view key) const;
    virtual Place element(Frame& frame) const;
    // A member was null and its form takes none: as if the key were missing.
    virtual void memberIsNull(Frame& frame) const;
    virtual void close(Frame& frame, const ReadingContext& context) const;
    virtual bool takesNull() const { return false; }
    // The way from the frame to what is being read, for messages: ".title" or "[3]".
    virtual std::string step(const Frame& frame) const;

protected:
    ~Form() = default;
};

const Form& skippingForm(); // Takes anything and keeps nothing.

// The one form of a type: a specialization of TypedForm below.
template <typename T> struct TypedForm;
template <typename T> const Form& formOf()
{
    static constinit const TypedForm<T> form;
    return form;
}

template <> struct TypedForm<bool> final : Form {
    void setTruth(void* target, bool value) const override { *static_cast<bool*>(target) = value; }
};

// Whole numbers only, and only such as no sum of them can overflow.
template <> struct TypedForm<std::int64_t> final : Form {
    void setNumber(void* target, std::string_view text) const override;
};

template <> struct TypedForm<std::string> final : Form {
    void setText(void* target, std::string_view text) const override
    {
        static_cast<std::string*>(target)->assign(text);
    }
};

template <> struct TypedForm<Decimal> final : Form {
    void setNumber(void* target, std::string_view text) const override;
};

template <> struct TypedForm<Uuid> final : Form {
    void setText(void* target, std::string_view text) const override;
};

// ISO 8601 text, or seconds since 2001-01-01 00:00:00 UTC as early versions wrote them.
template <> struct TypedForm<Instant> final : Form {
    void setText(void* target, std::string_view text) const override;
    void setNumber(void* target, std::string_view text) const override;
};

template <HasCaseNames Case> struct TypedForm<Case> final : Form {
    void setText(void* target, std::string_view text) const override
    {
        if (!parseCase(text, *static_cast<Case*>(target)))
            throw DecodingError("“" + std::string(text) + "” is not one of its values.");
    }
};

// Leaves the default where the text is no case of the enumeration, whatever else stands there.
template <HasCaseNames Case> struct LenientForm final : Form {
    void setTruth(void*, bool) const override { }
    void setNumber(void*, std::string_view) const override { }
    void setText(void* target, std::string_view text) const override
    {
        parseCase(text, *static_cast<Case*>(target));
    }
    Place openObject(void*) const override { return { &skippingForm(), nullptr }; }
    Place openArray(void*) const override { return { &skippingForm(), nullptr }; }
};

template <typename Value> struct TypedForm<std::optional<Value>> final : Form {
    bool takesNull() const override { return true; }
    void setNull(void* target) const override { static_cast<std::optional<Value>*>(target)->reset(); }
    void setTruth(void* target, bool value) const override { inner().setTruth(made(target), value); }
    void setNumber(void* target, std::string_view text) const override
    {
        inner().setNumber(made(target), text);
    }
    void setText(void* target, std::string_view text) const override { inner().setText(made(target), text); }
    Place openObject(void* target) const override
    {
        const bool isNew = !static_cast<std::optional<Value>*>(target)->has_value();
        Place place = inner().openObject(made(target));
        place.isNew = isNew;
        return place;
    }
    Place openArray(void* target) const override { return inner().openArray(made(target)); }

private:
    static const Form& inner() { return formOf<Value>(); }
    static void* made(void* target)
    {
        auto& value = *static_cast<std::optional<Value>*>(target);
        return value ? &*value : &value.emplace();
    }
};

template <typename Value> struct TypedForm<std::vector<Value>> final : Form {
    Place openArray(void* target) const override
    {
        static_cast<std::vector<Value>*>(target)->clear();
        return { this, target };
    }
    Place element(Frame& frame) const override
    {
        ++frame.count;
        return { &formOf<Value>(), &static_cast<std::vector<Value>*>(frame.target)->emplace_back(), true };
    }
};

template <HasCaseNames Case> struct TypedForm<std::set<Case>> final : Form {
    Place openArray(void* target) const override
    {
        static_cast<std::set<Case>*>(target)->clear();
        return { this, target };
    }
    Place element(Frame& frame) const override
    {
        ++frame.count;
        static constinit const Inserter inserter;
        return { &inserter, frame.target };
    }

private:
    struct Inserter final : Form {
        void setText(void* target, std::string_view text) const override
        {
            Case value {};
            formOf<Case>().setText(&value, text);
            static_cast<std::set<Case>*>(target)->insert(value);
        }
    };
};

namespace Detail {

void parseKey(std::string_view text, std::string& key);
void parseKey(std::string_view text, std::int64_t& key);
void parseKey(std::string_view text, Uuid& key);
std::string quotedStep(std::string_view key);

} // namespace Detail

template <typename Key, typename Value> struct TypedForm<std::map<Key, Value>> final : Form {
    using Map = std::map<Key, Value>;

    Place openObject(void* target) const override
    {
        static_cast<Map*>(target)->clear();
        return { this, target };
    }
    Place member(Frame& frame, std::string_view text) const override
    {
        Key key {};
        frame.key = nullptr;
        Detail::parseKey(text, key);
        const auto entry = static_cast<Map*>(frame.target)->insert_or_assign(std::move(key), Value {}).first;
        frame.key = &entry->first;
        return { &formOf<Value>(), &entry->second, true };
    }
    std::string step(const Frame& frame) const override
    {
        return frame.key ? Detail::quotedStep(keyText(*static_cast<const Key*>(frame.key))) : std::string();
    }

private:
    static std::string keyText(const std::string& key) { return key; }
    static std::string keyText(std::int64_t key) { return std::to_string(key); }
    static std::string keyText(const Uuid& key) { return key.toString(); }
};

template <typename Case, typename Value> struct TypedForm<EnumMap<Case, Value>> final : Form {
    Place openObject(void* target) const override
    {
        static_cast<EnumMap<Case, Value>*>(target)->clear();
        return { this, target };
    }
    Place member(Frame& frame, std::string_view text) const override
    {
        Case key {};
        frame.count = 0;
        if (!parseCase(text, key))
            throw DecodingError("The key “" + std::string(text) + "” is not one of its values.");
        frame.count = static_cast<std::size_t>(key) + 1;
        return { &formOf<Value>(), &(*static_cast<EnumMap<Case, Value>*>(frame.target))[key] };
    }
    std::string step(const Frame& frame) const override
    {
        return frame.count > 0 ? "." + std::string(caseNames(Case {})[frame.count - 1]) : std::string();
    }
};

// An enumeration with payloads: an object whose one member is named after the case.
template <typename... Cases> struct TypedForm<std::variant<Cases...>> final : Form {
    Place openObject(void* target) const override { return { this, target }; }
    Place member(Frame& frame, std::string_view key) const override
    {
        Place place;
        if (++frame.count > 1)
            throwWrongCount();
        const auto take = [&]<typename Case>() {
            if (key == Case::caseName)
                place = { &formOf<Case>(),
                    &static_cast<std::variant<Cases...>*>(frame.target)->template emplace<Case>(), true };
        };
        (take.template operator()<Cases>(), ...);
        if (!place.form)
            throw DecodingError("The key “" + std::string(key) + "” is not one of its values.");
        return place;
    }
    void close(Frame& frame, const ReadingContext&) const override
    {
        if (frame.count != 1)
            throwWrongCount();
    }
    std::string step(const Frame&) const override { return {}; }

private:
    [[noreturn]] static void throwWrongCount()
    {
        throw DecodingError("Invalid number of keys found, expected one.");
    }
};

// One field of a record, without its types.
struct FieldEntry {
    std::string_view key;
    Missing missing;
    Place (*place)(void* record);
    void (*supply)(void* record, const ReadingContext& context); // What the key takes when it is missing.
    void (*reset)(void* record); // Back to the member's default.
};

// The form of every record: its fields in the order of their keys, which is the order in which we write them,
// so that reading our own documents finds each at the first look.
class RecordForm : public Form {
public:
    Place openObject(void* target) const override { return { this, target }; }
    Place member(Frame& frame, std::string_view key) const override;
    void memberIsNull(Frame& frame) const override;
    void close(Frame& frame, const ReadingContext& context) const override;
    std::string step(const Frame& frame) const override;

protected:
    ~RecordForm() = default;
    virtual const FieldEntry* entries() const = 0;
    virtual std::size_t entryCount() const = 0;
};

namespace Detail {

template <HasFields Record, std::size_t Index> constexpr FieldEntry fieldEntry()
{
    constexpr auto place = sortedPlaces<Record>[Index];
    constexpr auto field = std::get<place>(fieldsOf<Record>);
    using Value = std::remove_cvref_t<decltype(std::declval<Record&>().*(field.member))>;
    return { field.key, field.missing,
        [](void* record) -> Place {
            constexpr auto listed = std::get<sortedPlaces<Record>[Index]>(fieldsOf<Record>);
            void* target = &(static_cast<Record*>(record)->*(listed.member));
            if constexpr (listed.lenient) {
                static constinit const LenientForm<Value> form;
                return { &form, target };
            } else {
                return { &formOf<Value>(), target };
            }
        },
        [](void* record, [[maybe_unused]] const ReadingContext& context) {
            constexpr auto listed = std::get<sortedPlaces<Record>[Index]>(fieldsOf<Record>);
            [[maybe_unused]] auto& value = static_cast<Record*>(record)->*(listed.member);
            if constexpr (listed.missing == Missing::makesId)
                value = Uuid::random();
            else if constexpr (listed.missing == Missing::takesNow)
                value = context.now;
            else if constexpr (listed.missing == Missing::takesZone)
                value = context.timeZone;
        },
        [](void* record) {
            constexpr auto listed = std::get<sortedPlaces<Record>[Index]>(fieldsOf<Record>);
            static_cast<Record*>(record)->*(listed.member) = Record {}.*(listed.member);
        } };
}

template <HasFields Record, std::size_t... Index> constexpr auto fieldEntries(std::index_sequence<Index...>)
{
    return std::array<FieldEntry, sizeof...(Index)> { fieldEntry<Record, Index>()... };
}

} // namespace Detail

template <HasFields Record> struct TypedForm<Record> final : RecordForm {
    static_assert(Detail::fieldCount<Record> <= 64);

protected:
    const FieldEntry* entries() const override { return list.data(); }
    std::size_t entryCount() const override { return list.size(); }

private:
    static constexpr auto list
        = Detail::fieldEntries<Record>(std::make_index_sequence<Detail::fieldCount<Record>> {});
};

} // namespace Base
