#include "TamberlinKit/Markup/ExpatXML.h"

#include "TamberlinKit/Text/ReadError.h"

#define XML_DTD // Else the header hides the limit of expansion that the library has.
#include <expat.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <vector>

namespace Tamberlin {

namespace {

constexpr std::size_t pieceBytes = 64 * 1024;
constexpr std::size_t longestPiece = 16 * 1024 * 1024; // A tag or comment can be twice as long.
constexpr std::size_t betweenChecks = 1024; // Calls; stopping is checked between pieces, too.
constexpr float mostExpansion = 2; // Of a document over 8 MB by its entities, which office files don't have.

struct Parse {
    XML_Parser parser;
    const XMLLimits& limits;
    const XMLHandlers& handlers;
    const std::stop_token& cancel;
    XMLProgress done; // What is left of it.
    std::vector<XMLAttribute> attributes;
    std::size_t depth = 0;
    std::size_t elements = 0;
    std::size_t made = 0; // Calls.
    bool isSilent = false; // Nothing was called back since the piece began.
    bool isInDoctype = false;
    std::string refusal;
    std::exception_ptr thrown; // Exceptions don't travel through the parser's frames.

    // Begins a call back. False when the parser was stopped: it still reports the end of an empty element.
    bool begin()
    {
        isSilent = false;
        if (++made % betweenChecks == 0 && cancel.stop_requested())
            guarded([] { throw Cancelled(); });
        return !thrown && refusal.empty();
    }

    // Whether a tag is still to be called back.
    bool isNew()
    {
        if (done.tags == 0)
            done.text = 0;
        return done.tags == 0 || done.tags-- == 0;
    }

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

XMLName nameOf(std::string_view written)
{
    const auto colon = written.find(':');
    return { written, colon == written.npos ? written : written.substr(colon + 1) };
}

void startElement(void* data, const XML_Char* name, const XML_Char** attributes)
{
    auto& parse = *static_cast<Parse*>(data);
    if (!parse.begin())
        return;
    if (++parse.depth > parse.limits.deepest)
        return parse.stop("elements are nested too deeply");
    if (++parse.elements > parse.limits.elements)
        return parse.stop("too many elements");
    if (!parse.isNew())
        return;
    parse.attributes.clear();
    for (; *attributes; attributes += 2)
        parse.attributes.push_back({ attributes[0], attributes[1] });
    parse.guarded([&] { parse.handlers.onStart(nameOf(name), XMLAttributes(parse.attributes)); });
}

void endElement(void* data, const XML_Char* name)
{
    auto& parse = *static_cast<Parse*>(data);
    if (!parse.begin())
        return;
    --parse.depth;
    if (parse.isNew())
        parse.guarded([&] { parse.handlers.onEnd(nameOf(name)); });
}

void text(void* data, const XML_Char* characters, int length)
{
    auto& parse = *static_cast<Parse*>(data);
    if (!parse.begin() || !parse.handlers.onText || parse.done.tags > 0)
        return;
    std::string_view piece(characters, static_cast<std::size_t>(length));
    const auto known = std::min(parse.done.text, piece.size());
    parse.done.text -= known;
    piece.remove_prefix(known);
    if (!piece.empty())
        parse.guarded([&] { parse.handlers.onText(piece); });
}

void startDoctype(void* data, const XML_Char*, const XML_Char*, const XML_Char*, int)
{
    static_cast<Parse*>(data)->isInDoctype = true;
}

void endDoctype(void* data) { static_cast<Parse*>(data)->isInDoctype = false; }

using Parser = std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)>;

Parser makeParser()
{
    Parser parser(XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser)
        throw std::bad_alloc();
    XML_SetElementHandler(parser.get(), &startElement, &endElement);
    XML_SetCharacterDataHandler(parser.get(), &text);
    XML_SetDoctypeDeclHandler(parser.get(), &startDoctype, &endDoctype);
    XML_SetBillionLaughsAttackProtectionMaximumAmplification(parser.get(), mostExpansion);
    return parser;
}

// What became of the document.
std::optional<std::string> outcome(const Parse& parse, XML_Status status)
{
    if (parse.thrown)
        std::rethrow_exception(parse.thrown);
    if (status == XML_STATUS_OK)
        return std::nullopt;
    if (!parse.refusal.empty())
        return parse.refusal;
    const auto code = XML_GetErrorCode(parse.parser);
    if (code == XML_ERROR_NO_MEMORY)
        throw std::bad_alloc();
    const char* const description = XML_ErrorString(code);
    return description ? description : "";
}

} // namespace

std::optional<std::string> parseWithExpat(std::string_view document, const XMLLimits& limits,
    const XMLHandlers& handlers, const std::stop_token& cancel, XMLProgress done)
{
    const auto parser = makeParser();
    Parse parse { parser.get(), limits, handlers, cancel, done };
    XML_SetUserData(parser.get(), &parse);
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
    return outcome(parse, status);
}

} // namespace Tamberlin
