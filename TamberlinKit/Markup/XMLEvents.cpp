#include "TamberlinKit/Markup/XMLEvents.h"

#include "TamberlinKit/Text/ReadError.h"

#include <expat.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <new>

namespace Tamberlin {

namespace {

constexpr std::size_t pieceBytes
    = 64 * 1024; // Expat takes a length in an int, and stopping is checked between pieces.

struct Parse {
    XML_Parser parser;
    const XMLLimits& limits;
    const std::function<void(std::string_view, XMLAttributes)>& onStart;
    const std::function<void(std::string_view)>& onEnd;
    const std::function<void(std::string_view)>& onText;
    std::size_t depth = 0;
    std::size_t elements = 0;
    std::string refusal;
    std::exception_ptr thrown; // Exceptions don't travel through the parser's frames.

    // A stopped parser still reports the end of an empty element.
    bool isStopped() const { return thrown || !refusal.empty(); }

    void stop(const char* reason)
    {
        refusal = reason;
        XML_StopParser(parser, XML_FALSE);
    }

    template <typename Call> void guarded(Call call)
    {
        try {
            call();
        } catch (...) {
            thrown = std::current_exception();
            XML_StopParser(parser, XML_FALSE);
        }
    }
};

void startElement(void* data, const XML_Char* name, const XML_Char** attributes)
{
    auto& parse = *static_cast<Parse*>(data);
    if (parse.isStopped())
        return;
    if (++parse.depth > parse.limits.deepest)
        return parse.stop("elements are nested too deeply");
    if (++parse.elements > parse.limits.elements)
        return parse.stop("too many elements");
    parse.guarded([&] { parse.onStart(name, XMLAttributes(attributes)); });
}

void endElement(void* data, const XML_Char* name)
{
    auto& parse = *static_cast<Parse*>(data);
    if (parse.isStopped())
        return;
    --parse.depth;
    parse.guarded([&] { parse.onEnd(name); });
}

void text(void* data, const XML_Char* characters, int length)
{
    auto& parse = *static_cast<Parse*>(data);
    if (!parse.isStopped())
        parse.guarded([&] { parse.onText({ characters, static_cast<std::size_t>(length) }); });
}

} // namespace

std::optional<std::string> parseXML(std::string_view document, const XMLLimits& limits,
    const std::function<void(std::string_view, XMLAttributes)>& onStart,
    const std::function<void(std::string_view)>& onEnd, const std::function<void(std::string_view)>& onText,
    const std::stop_token& cancel)
{
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
        XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser)
        throw std::bad_alloc();
    Parse parse { parser.get(), limits, onStart, onEnd, onText, 0, 0, {}, nullptr };
    XML_SetUserData(parser.get(), &parse);
    XML_SetElementHandler(parser.get(), &startElement, &endElement);
    if (onText)
        XML_SetCharacterDataHandler(parser.get(), &text);

    auto status = XML_STATUS_OK;
    do {
        if (cancel.stop_requested())
            throw Cancelled();
        const auto piece = document.substr(0, std::min(document.size(), pieceBytes));
        document.remove_prefix(piece.size());
        status = XML_Parse(parser.get(), piece.data(), static_cast<int>(piece.size()), document.empty());
    } while (status == XML_STATUS_OK && !document.empty());

    if (parse.thrown)
        std::rethrow_exception(parse.thrown);
    if (status == XML_STATUS_OK)
        return std::nullopt;
    if (!parse.refusal.empty())
        return parse.refusal;
    const auto code = XML_GetErrorCode(parser.get());
    if (code == XML_ERROR_NO_MEMORY)
        throw std::bad_alloc();
    const char* const description = XML_ErrorString(code);
    return description ? description : "";
}

} // namespace Tamberlin
