#pragma once

#include "Base/JsonForm.h"
#include "Base/JsonWriter.h"

#include <string>
#include <string_view>

// Records to JSON (RFC 8259) and back, by their lists of fields. One value has one byte form: keys sorted,
// numbers plain and shortest. Reading is iterative with a depth limit; unknown keys are passed over; of a key
// given twice the last counts; a null stands for a missing key.
namespace Base {

// Reads the whole text into `value`; throws DecodingError, after which `value` may be half read.
void readJson(std::string_view text, const Form& form, void* value, const ReadingContext& context);

template <typename T> T fromJson(std::string_view text, const ReadingContext& context)
{
    T value {};
    readJson(text, formOf<T>(), &value, context);
    return value;
}

// Reads a text that holds only some of a record's keys over an existing record; the other members stay.
template <HasFields T> T patchedFromJson(T value, std::string_view text, ReadingContext context)
{
    context.keepsMissing = true;
    readJson(text, formOf<T>(), &value, context);
    return value;
}

template <typename T> std::string toJson(const T& value, JsonStyle style = JsonStyle::pretty)
{
    std::string text;
    JsonWriter writer(text, style);
    writeJson(writer, value);
    writer.finish();
    if (style == JsonStyle::pretty)
        text += '\n';
    return text;
}

} // namespace Base
