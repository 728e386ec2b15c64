#include "TamberlinKit/Markup/XMLEvents.h"

#include "Base/LargePages.h"
#include "TamberlinKit/Text/ReadError.h"

#define XML_DTD // Else the header hides the limit of expansion that the library has.
#include <expat.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>

namespace Tamberlin {

namespace {

constexpr std::size_t pieceBytes = 64 * 1024;
constexpr std::size_t longestPiece = 16 * 1024 * 1024; // A tag or comment can be twice as long.
constexpr std::size_t betweenChecks = 1024; // Calls; stopping is checked between pieces, too.
constexpr float mostExpansion = 2; // Of a document over 8 MB by its entities, which office files don't have.

using OnStart = std::function<void(const XMLName&, XMLAttributes)>;
using OnEnd = std::function<void(const XMLName&)>;
using OnText = std::function<void(std::string_view)>;

struct Parse {
    XML_Parser parser;
    const XMLLimits& limits;
    const OnStart& onStart;
    const OnEnd& onEnd;
    const OnText& onText;
    const std::stop_token& cancel;
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

// Behind the XML declaration, comments and processing instructions that may stand in front of everything.
std::string_view behindProlog(std::string_view document)
{
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (document.starts_with(byteOrderMark))
        document.remove_prefix(byteOrderMark.size());
    for (;;) {
        document.remove_prefix(std::min(document.find_first_not_of(" \t\r\n"), document.size()));
        const bool isComment = document.starts_with("<!--");
        const auto end = isComment       ? document.find("-->", 4)
            : document.starts_with("<?") ? document.find("?>", 2)
                                         : document.npos;
        if (end == document.npos)
            return document;
        document.remove_prefix(end + (isComment ? 3 : 2));
    }
}

// Whether the parser can bear a document as a whole: it declares nothing, and no tag is longer than a piece
// may be; none has a "<" inside. One in UTF-16 is taken for one that can't.
bool goesOverAtOnce(std::string_view document)
{
    document = behindProlog(document);
    if (!document.starts_with('<') || document.starts_with("<!") || document.substr(0, 2).ends_with('\0'))
        return false;
    while (document.size() > longestPiece) {
        const auto last = document.rfind('<', longestPiece);
        if (last == document.npos || last == 0)
            return false;
        document.remove_prefix(last);
    }
    return true;
}

using Parser = std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)>;

Parser makeParser()
{
    constexpr XML_Memory_Handling_Suite memory { &Base::largeMalloc, &std::realloc, &std::free };
    Parser parser(XML_ParserCreate_MM(nullptr, &memory, nullptr), &XML_ParserFree);
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

std::optional<std::string> parseXML(std::string_view document, const XMLLimits& limits,
    const OnStart& onStart, const OnEnd& onEnd, const OnText& onText, const std::stop_token& cancel)
{
    const auto parser = makeParser();
    Parse parse { parser.get(), limits, onStart, onEnd, onText, cancel };
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

// The parser copies what it is given, and looks for line ends in each piece but the last.
std::optional<std::string> parseXML(std::size_t size, const std::function<void(char* into)>& write,
    const XMLLimits& limits, const OnStart& onStart, const OnEnd& onEnd, const OnText& onText,
    const std::stop_token& cancel)
{
    const auto parser = makeParser();
    Parse parse { parser.get(), limits, onStart, onEnd, onText, cancel };
    XML_SetUserData(parser.get(), &parse);
    const auto length = static_cast<int>(size);
    auto* const buffer = static_cast<char*>(XML_GetBuffer(parser.get(), std::max(length, 1)));
    if (!buffer)
        throw std::bad_alloc();
    write(buffer);
    const std::string_view document(buffer, size);
    if (!goesOverAtOnce(document))
        return parseXML(document, limits, onStart, onEnd, onText, cancel);
    return outcome(parse, XML_ParseBuffer(parser.get(), length, true));
}

} // namespace Tamberlin
