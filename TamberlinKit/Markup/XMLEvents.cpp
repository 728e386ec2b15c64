#include "TamberlinKit/Markup/XMLEvents.h"

#include "TamberlinKit/Text/ReadError.h"

#define XML_DTD // Else the header hides the limit of expansion that the library has.
#include <expat.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <new>

namespace Tamberlin {

namespace {

constexpr std::size_t pieceBytes = 64 * 1024; // Stopping is checked between pieces.
constexpr std::size_t longestPiece = 16 * 1024 * 1024; // A tag or comment can be twice as long.
constexpr float mostExpansion = 2; // Of a document over 8 MB by its entities, which office files don't have.

struct Parse {
    XML_Parser parser;
    const XMLLimits& limits;
    const std::function<void(std::string_view, XMLAttributes)>& onStart;
    const std::function<void(std::string_view)>& onEnd;
    const std::function<void(std::string_view)>& onText;
    std::size_t depth = 0;
    std::size_t elements = 0;
    bool isSilent = false; // Nothing was called back since the piece began.
    bool isInDoctype = false;
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
    parse.isSilent = false;
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
    parse.isSilent = false;
    if (parse.isStopped())
        return;
    --parse.depth;
    parse.guarded([&] { parse.onEnd(name); });
}

void text(void* data, const XML_Char* characters, int length)
{
    auto& parse = *static_cast<Parse*>(data);
    parse.isSilent = false;
    if (!parse.isStopped() && parse.onText)
        parse.guarded([&] { parse.onText({ characters, static_cast<std::size_t>(length) }); });
}

void startDoctype(void* data, const XML_Char*, const XML_Char*, const XML_Char*, int)
{
    static_cast<Parse*>(data)->isInDoctype = true;
}

void endDoctype(void* data) { static_cast<Parse*>(data)->isInDoctype = false; }

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
    Parse parse {
        .parser = parser.get(), .limits = limits, .onStart = onStart, .onEnd = onEnd, .onText = onText
    };
    XML_SetUserData(parser.get(), &parse);
    XML_SetElementHandler(parser.get(), &startElement, &endElement);
    XML_SetCharacterDataHandler(parser.get(), &text);
    XML_SetDoctypeDeclHandler(parser.get(), &startDoctype, &endDoctype);
    XML_SetBillionLaughsAttackProtectionMaximumAmplification(parser.get(), mostExpansion);

    auto status = XML_STATUS_OK;
    auto length = pieceBytes;
    do {
        if (cancel.stop_requested())
            throw Cancelled();
        // Declarations cost the parser quadratic time, and entities inside entities its stack.
        if (parse.isInDoctype)
            return "the document type is too long";
        if (length > longestPiece)
            return "a tag or comment is too long";
        const auto piece = document.substr(0, length);
        document.remove_prefix(piece.size());
        parse.isSilent = true;
        status = XML_Parse(parser.get(), piece.data(), static_cast<int>(piece.size()), document.empty());
        // A tag that isn't complete is gone through again with each piece.
        length = parse.isSilent ? 2 * length : pieceBytes;
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
