#include "Base/Json.h"

#include <boost/json/basic_parser_impl.hpp>

#include <charconv>

namespace Base {

namespace {

constexpr std::size_t depthLimit = 512;
constexpr std::int64_t referenceDate = 978'307'200'000; // 2001-01-01 00:00:00 UTC in milliseconds.

// Turns the parser's events into values: the innermost open object or array says where the next value goes.
class Machine {
public:
    Machine(Place root, const ReadingContext& context)
        : m_next(root)
        , m_context(context)
    {
        m_frames.reserve(16);
    }

    void null()
    {
        const Place place = take();
        if (place.form->takesNull() || m_frames.empty())
            place.form->setNull(place.target);
        else
            m_frames.back().form->memberIsNull(m_frames.back());
    }
    void truth(bool value)
    {
        const Place place = take();
        place.form->setTruth(place.target, value);
    }
    void number(std::string_view text)
    {
        const Place place = take();
        place.form->setNumber(place.target, text);
    }
    void text(std::string_view text)
    {
        const Place place = take();
        place.form->setText(place.target, text);
    }
    void beginObject()
    {
        const Place place = take();
        push(place.form->openObject(place.target), place.isNew, false);
    }
    void beginArray()
    {
        const Place place = take();
        push(place.form->openArray(place.target), place.isNew, true);
    }
    void key(std::string_view key)
    {
        Frame& frame = m_frames.back();
        m_next = frame.form->member(frame, key);
    }
    void end()
    {
        m_frames.back().form->close(m_frames.back(), m_context);
        m_frames.pop_back();
        m_inArray = !m_arrays.empty() && m_arrays.back();
        m_arrays.pop_back();
    }

    std::string path() const
    {
        std::string path;
        for (const Frame& frame : m_frames)
            path += frame.form->step(frame);
        return path.starts_with('.') ? path.substr(1) : path;
    }

private:
    Place take()
    {
        if (!m_inArray)
            return m_next;
        Frame& frame = m_frames.back();
        return frame.form->element(frame);
    }
    void push(Place place, bool isNew, bool isArray)
    {
        isNew = isNew || place.isNew || (!m_frames.empty() && m_frames.back().isNew);
        m_frames.push_back({ .form = place.form, .target = place.target, .isNew = isNew });
        m_arrays.push_back(m_inArray);
        m_inArray = isArray;
    }

    Place m_next;
    const ReadingContext& m_context;
    std::vector<Frame> m_frames;
    std::vector<bool> m_arrays; // Whether what encloses each frame is an array.
    bool m_inArray = false;
};

// The interface that the event parser wants. Texts come in parts where they hold escapes.
struct Handler {
    using error_code = boost::json::error_code;
    using view = boost::json::string_view;

    static constexpr std::size_t max_object_size = std::size_t(-1);
    static constexpr std::size_t max_array_size = std::size_t(-1);
    static constexpr std::size_t max_key_size = std::size_t(-1);
    static constexpr std::size_t max_string_size = std::size_t(-1);

    Machine* machine = nullptr;
    std::string parts;

    bool on_document_begin(error_code&) { return true; }
    bool on_document_end(error_code&) { return true; }
    bool on_object_begin(error_code&)
    {
        machine->beginObject();
        return true;
    }
    bool on_object_end(std::size_t, error_code&)
    {
        machine->end();
        return true;
    }
    bool on_array_begin(error_code&)
    {
        machine->beginArray();
        return true;
    }
    bool on_array_end(std::size_t, error_code&)
    {
        machine->end();
        return true;
    }
    bool on_key_part(view part, std::size_t, error_code&) { return addPart(part); }
    bool on_key(view last, std::size_t, error_code&)
    {
        machine->key(whole(last));
        parts.clear();
        return true;
    }
    bool on_string_part(view part, std::size_t, error_code&) { return addPart(part); }
    bool on_string(view last, std::size_t, error_code&)
    {
        machine->text(whole(last));
        parts.clear();
        return true;
    }
    bool on_number_part(view part, error_code&) { return addPart(part); }
    bool on_int64(std::int64_t, view last, error_code&) { return number(last); }
    bool on_uint64(std::uint64_t, view last, error_code&) { return number(last); }
    bool on_double(double, view last, error_code&) { return number(last); }
    bool on_bool(bool value, error_code&)
    {
        machine->truth(value);
        return true;
    }
    bool on_null(error_code&)
    {
        machine->null();
        return true;
    }
    bool on_comment_part(view, error_code&) { return true; }
    bool on_comment(view, error_code&) { return true; }

private:
    bool addPart(view part)
    {
        parts.append(part.data(), part.size());
        return true;
    }
    std::string_view whole(view last)
    {
        if (parts.empty())
            return { last.data(), last.size() };
        addPart(last);
        return parts;
    }
    bool number(view last)
    {
        machine->number(whole(last));
        parts.clear();
        return true;
    }
};

[[noreturn]] void wrongForm(const char* found)
{
    throw DecodingError(std::string("Unexpected ") + found + ".");
}

struct SkippingForm final : Form {
    bool takesNull() const override { return true; }
    void setNull(void*) const override { }
    void setTruth(void*, bool) const override { }
    void setNumber(void*, std::string_view) const override { }
    void setText(void*, std::string_view) const override { }
    Place openObject(void*) const override { return { this, nullptr }; }
    Place openArray(void*) const override { return { this, nullptr }; }
    Place member(Frame&, std::string_view) const override { return { this, nullptr }; }
    Place element(Frame&) const override { return { this, nullptr }; }
};

} // namespace

void readJson(std::string_view text, const Form& form, void* value, const ReadingContext& context)
{
    boost::json::parse_options options;
    options.max_depth = depthLimit;
    boost::json::basic_parser<Handler> parser(options);
    Machine machine({ &form, value }, context);
    parser.handler().machine = &machine;
    boost::json::error_code error;
    std::size_t end = 0;
    try {
        end = parser.write_some(false, text.data(), text.size(), error);
    } catch (const DecodingError& failure) {
        throw DecodingError(machine.path(), failure.what());
    }
    const bool hasMore = !error && text.find_first_not_of(" \t\r\n", end) != std::string_view::npos;
    if (error || hasMore || !parser.done()) {
        const auto reason = error ? error.message() : "extra data";
        throw DecodingError("Not readable as JSON (" + reason + " at byte " + std::to_string(end) + ").");
    }
}

const Form& skippingForm()
{
    static constinit const SkippingForm form;
    return form;
}

void Form::setNull(void*) const { wrongForm("null"); }
void Form::setTruth(void*, bool) const { wrongForm("truth value"); }
void Form::setNumber(void*, std::string_view) const { wrongForm("number"); }
void Form::setText(void*, std::string_view) const { wrongForm("text"); }
Place Form::openObject(void*) const { wrongForm("object"); }
Place Form::openArray(void*) const { wrongForm("list"); }
Place Form::member(Frame&, std::string_view) const { wrongForm("object"); }
Place Form::element(Frame&) const { wrongForm("list"); }
void Form::memberIsNull(Frame&) const { wrongForm("null"); }
void Form::close(Frame&, const ReadingContext&) const { }

std::string Form::step(const Frame& frame) const
{
    return frame.count > 0 ? "[" + std::to_string(frame.count - 1) + "]" : std::string();
}

void TypedForm<std::int64_t>::setNumber(void* target, std::string_view text) const
{
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        const auto decimal = Decimal::parse(text); // "3.0" and "1e3" are whole numbers too.
        const auto whole = decimal ? decimal->toInteger() : std::nullopt;
        if (!whole)
            throw DecodingError(
                "The number " + std::string(text.substr(0, 60)) + " is not a whole number that fits.");
        value = *whole;
    }
    if (value > Checked::largestCount || value < -Checked::largestCount)
        throw DecodingError("The number " + std::string(text) + " doesn’t fit.");
    *static_cast<std::int64_t*>(target) = value;
}

void TypedForm<Decimal>::setNumber(void* target, std::string_view text) const
{
    const auto value = Decimal::parse(text);
    if (!value)
        throw DecodingError("The number " + std::string(text.substr(0, 60)) + " doesn’t fit.");
    *static_cast<Decimal*>(target) = *value;
}

void TypedForm<Uuid>::setText(void* target, std::string_view text) const
{
    const auto value = Uuid::parse(text);
    if (!value)
        throw DecodingError("Not a UUID: " + std::string(text));
    *static_cast<Uuid*>(target) = *value;
}

void TypedForm<Instant>::setText(void* target, std::string_view text) const
{
    const auto value = Instant::parse(text);
    if (!value)
        throw DecodingError("Not an ISO 8601 date: " + std::string(text));
    *static_cast<Instant*>(target) = *value;
}

void TypedForm<Instant>::setNumber(void* target, std::string_view text) const
{
    const auto seconds = Decimal::parse(text);
    const auto milliseconds = seconds ? seconds->shifted(3).rounded(0).toInteger() : std::nullopt;
    if (!milliseconds || *milliseconds > latestInstant.milliseconds - referenceDate
        || *milliseconds < earliestInstant.milliseconds - referenceDate)
        throw DecodingError("The number " + std::string(text.substr(0, 60)) + " is not a date.");
    *static_cast<Instant*>(target) = { *milliseconds + referenceDate };
}

namespace Detail {

void parseKey(std::string_view text, std::string& key) { key = text; }

void parseKey(std::string_view text, std::int64_t& key) { formOf<std::int64_t>().setNumber(&key, text); }

void parseKey(std::string_view text, Uuid& key) { formOf<Uuid>().setText(&key, text); }

std::string quotedStep(std::string_view key) { return "[“" + std::string(key) + "”]"; }

} // namespace Detail

Place RecordForm::member(Frame& frame, std::string_view key) const
{
    const FieldEntry* const list = entries();
    const auto count = entryCount();
    const auto found = [&](std::size_t index) {
        const auto bit = std::uint64_t { 1 } << index;
        if (frame.seen & bit) // Given twice: nothing of the first value may show through the second.
            list[index].reset(frame.target);
        frame.count = index + 1;
        frame.seen |= bit;
        return list[index].place(frame.target);
    };
    const auto start = frame.count;
    for (auto index = start; index < count; ++index) {
        if (list[index].key == key)
            return found(index);
    }
    for (std::size_t index = 0; index < start; ++index) {
        if (list[index].key == key)
            return found(index);
    }
    return { &skippingForm(), nullptr };
}

void RecordForm::memberIsNull(Frame& frame) const
{
    frame.seen &= ~(std::uint64_t { 1 } << (frame.count - 1));
}

void RecordForm::close(Frame& frame, const ReadingContext& context) const
{
    if (context.keepsMissing && !frame.isNew)
        return;
    const FieldEntry* const list = entries();
    for (std::size_t index = 0; index < entryCount(); ++index) {
        if (frame.seen >> index & 1 || list[index].missing == Missing::keepsDefault)
            continue;
        if (list[index].missing == Missing::fails) {
            frame.count = 0;
            throw DecodingError("The key “" + std::string(list[index].key) + "” is missing.");
        }
        list[index].supply(frame.target, context);
    }
}

std::string RecordForm::step(const Frame& frame) const
{
    return frame.count > 0 ? "." + std::string(entries()[frame.count - 1].key) : std::string();
}

} // namespace Base
