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

constexpr std::size_t pieceBytes = 64 * 1024;
constexpr std::size_t longestPiece = 16 * 1024 * 1024; // A tag or comment can be twice as long.
constexpr std::size_t betweenChecks = 1024; // Calls; stopping is checked between pieces, too.
constexpr float mostExpansion = 2; // Of a document over 8 MB by its entities, which office files don't have.

struct Parse {
    XML_Parser parser;
    const XMLLimits& limits;
    const std::function<void(const XMLName&, XMLAttributes)>& onStart;
    const std::function<void(const XMLName&)>& onEnd;
    const std::function<void(std::string_view)>& onText;
    const std::stop_token& cancel;
    std::size_t depth = 0;
    std::size_t elements = 0;
    std::size_t calls = 0;
    bool isSilent = false; // Nothing was called back since the piece began.
    bool isInDoctype = false;
    std::string refusal;
    std::exception_ptr thrown; // Exceptions don't travel through the parser's frames.

    // Begins a call back. False when the parser was stopped: it still reports the end of an empty element.
    bool begin()
    {
        isSilent = false;
        if (++calls % betweenChecks == 0 && cancel.stop_requested())
            guarded([] { throw Cancelled(); });
        return !thrown && refusal.empty();
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

void startElement(void* data, const XML_Char* name, const XML_Char** attributes)
{
    auto& parse = *static_cast<Parse*>(data);
    if (!parse.begin())
        return;
    if (++parse.depth > parse.limits.deepest)
        return parse.stop("elements are nested too deeply");
    if (++parse.elements > parse.limits.elements)
        return parse.stop("too many elements");
    parse.guarded([&] { parse.onStart(XMLName(name), XMLAttributes(attributes)); });
}

void endElement(void* data, const XML_Char* name)
{
    auto& parse = *static_cast<Parse*>(data);
    if (!parse.begin())
        return;
    --parse.depth;
    parse.guarded([&] { parse.onEnd(XMLName(name)); });
}

void text(void* data, const XML_Char* characters, int length)
{
    auto& parse = *static_cast<Parse*>(data);
    if (parse.begin() && parse.onText)
        parse.guarded([&] { parse.onText({ characters, static_cast<std::size_t>(length) }); });
}

void startDoctype(void* data, const XML_Char*, const XML_Char*, const XML_Char*, int)
{
    static_cast<Parse*>(data)->isInDoctype = true;
}

void endDoctype(void* data) { static_cast<Parse*>(data)->isInDoctype = false; }

// At most so many bytes, ending behind a tag if there is one: the parser copies what follows one that isn't
// complete.
std::string_view firstPiece(std::string_view document, std::size_t length)
{
    const auto piece = document.substr(0, length);
    const auto end = piece.size() < document.size() ? piece.rfind('>') : piece.npos;
    return end == piece.npos ? piece : piece.substr(0, end + 1);
}

// Whether no tag is longer than a piece may be; none has a "<" inside.
bool hasShortTags(std::string_view document)
{
    while (document.size() > longestPiece) {
        const auto last = document.rfind('<', longestPiece);
        if (last == document.npos || last == 0)
            return false;
        document.remove_prefix(last);
    }
    return true;
}

} // namespace

std::optional<std::string> parseXML(std::string_view document, const XMLLimits& limits,
    const std::function<void(const XMLName&, XMLAttributes)>& onStart,
    const std::function<void(const XMLName&)>& onEnd, const std::function<void(std::string_view)>& onText,
    const std::stop_token& cancel)
{
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
        XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser)
        throw std::bad_alloc();
    Parse parse { .parser = parser.get(),
        .limits = limits,
        .onStart = onStart,
        .onEnd = onEnd,
        .onText = onText,
        .cancel = cancel };
    XML_SetUserData(parser.get(), &parse);
    XML_SetElementHandler(parser.get(), &startElement, &endElement);
    XML_SetCharacterDataHandler(parser.get(), &text);
    XML_SetDoctypeDeclHandler(parser.get(), &startDoctype, &endDoctype);
    XML_SetBillionLaughsAttackProtectionMaximumAmplification(parser.get(), mostExpansion);

    const bool isUtf16 = document.substr(0, 4).find('\0') != document.npos;
    std::optional<bool> goesOverAtOnce; // What follows the piece with the root's tag.
    auto status = XML_STATUS_OK;
    auto length = pieceBytes;
    do {
        if (cancel.stop_requested())
            throw Cancelled();
        // Declarations cost the parser quadratic time, and entities inside entities its stack.
        if (parse.isInDoctype)
            return "the document type is too long";
        // The parser looks for line ends in each piece but the last, to know the place behind it.
        if (parse.elements > 0 && !goesOverAtOnce)
            goesOverAtOnce = !isUtf16 && hasShortTags(document);
        const bool isLast = goesOverAtOnce.value_or(false);
        if (!isLast && length > longestPiece)
            return "a tag or comment is too long";
        const auto piece = isLast ? document : firstPiece(document, length);
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
