#include "TamberlinKit/Readers/PdfText.h"

#include "Base/Text.h"
#include "TamberlinKit/Readers/PdfRunningText.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unicode/uchar.h>
#include <unicode/utf8.h>
#include <unordered_set>

namespace Tamberlin {

namespace {

// --- Characters at the ends of lines; 0 where there is none

char32_t firstOf(std::string_view text)
{
    UChar32 c = 0;
    if (!text.empty())
        U8_GET(reinterpret_cast<const uint8_t*>(text.data()), 0, 0, static_cast<int32_t>(text.size()), c);
    return static_cast<char32_t>(std::max(c, 0));
}

char32_t lastOf(std::string_view text)
{
    if (text.empty())
        return 0;
    UChar32 c = 0;
    const auto size = static_cast<int32_t>(text.size());
    U8_GET(reinterpret_cast<const uint8_t*>(text.data()), 0, size - 1, size, c);
    return static_cast<char32_t>(std::max(c, 0));
}

std::string_view withoutLast(std::string_view text, char32_t last)
{
    text.remove_suffix(static_cast<std::size_t>(U8_LENGTH(static_cast<UChar32>(last))));
    return text;
}

bool isLetter(char32_t c) { return u_isalpha(static_cast<UChar32>(c)) != 0; }
bool isLower(char32_t c) { return u_islower(static_cast<UChar32>(c)) != 0; }

// Chinese and Japanese, and the scripts of South-East Asia: lines end anywhere or between words, and either
// way no blank was there.
bool hasNoBlanks(char32_t c)
{
    return (c >= 0x2E80 && c < 0xA4D0 && !(c >= 0x3130 && c < 0x3190)) || (c >= 0xF900 && c < 0xFB00)
        || (c >= 0xFE30 && c < 0xFE50) || (c >= 0xFF00 && c < 0xFFF0) || (c >= 0x20000 && c < 0x32400)
        || (c >= 0x0E00 && c < 0x0F00) || (c >= 0x1000 && c < 0x10A0) || (c >= 0x1780 && c < 0x1800);
}

bool isKorean(char32_t c)
{
    return (c >= 0xAC00 && c < 0xD7B0) || (c >= 0x1100 && c < 0x1200) || (c >= 0x3130 && c < 0x3190);
}

bool isHyphen(char32_t c) { return c == U'-' || c == 0x2010; }

// --- Words with a hyphen

constexpr std::size_t longestWord = 100; // Bytes that are looked at.

// The letters at the start of a line.
std::string_view lettersAtStart(std::string_view text)
{
    std::size_t end = 0;
    while (end < std::min(text.size(), longestWord)) {
        const auto c = firstOf(text.substr(end));
        if (!isLetter(c))
            break;
        end += static_cast<std::size_t>(U8_LENGTH(static_cast<UChar32>(c)));
    }
    return text.substr(0, end);
}

// The letters at the end of what stands before a hyphen.
std::string_view lettersAtEnd(std::string_view text)
{
    auto rest = text;
    while (isLetter(lastOf(rest)) && text.size() - rest.size() < longestWord)
        rest = withoutLast(rest, lastOf(rest));
    return text.substr(rest.size());
}

// Words that are written with a hyphen somewhere inside a line, among those that end a line at one.
class HyphenatedWords {
public:
    explicit HyphenatedWords(const std::vector<PdfPage>& pages)
    {
        std::unordered_set<std::string> atEnds;
        eachHyphen(pages, [&](std::string_view before, std::string_view behind) {
            if (behind.starts_with('\n'))
                atEnds.insert(key(before, behind.substr(1)));
        });
        if (atEnds.empty())
            return;
        eachHyphen(pages, [&](std::string_view before, std::string_view behind) {
            if (behind.starts_with('\n'))
                return;
            if (auto word = key(before, behind); atEnds.contains(word))
                m_words.insert(std::move(word));
        });
    }

    bool has(std::string_view before, std::string_view behind) const
    {
        return !m_words.empty() && m_words.contains(key(before, behind));
    }

private:
    static std::string key(std::string_view before, std::string_view behind)
    {
        auto word = std::string(lettersAtEnd(before));
        word += '-';
        word += lettersAtStart(behind);
        return Base::asciiLowered(word);
    }

    template <typename Look> static void eachHyphen(const std::vector<PdfPage>& pages, Look look)
    {
        for (const auto& page : pages) {
            for (const auto& paragraph : page.paragraphs) {
                const std::string_view text = paragraph.text;
                for (auto at = text.find('-'); at != text.npos; at = text.find('-', at + 1))
                    look(text.substr(0, at), text.substr(at + 1));
            }
        }
    }

    std::unordered_set<std::string> m_words;
};

bool isAnd(std::string_view word)
{
    constexpr std::string_view words[] { "und", "oder", "bzw", "beziehungsweise", "sowie", "and", "or", "to",
        "et", "ou", "y", "e", "o", "u", "en", "of", "och", "eller", "og", "ja", "tai", "a", "i", "lub",
        "oraz", "nebo", "и", "или" };
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

// Appends a line to what stands before it.
void join(std::string& text, std::string_view line, const HyphenatedWords& hyphenated)
{
    const bool hasBlank = text.ends_with(' ');
    if (hasBlank)
        text.pop_back();
    const char32_t last = lastOf(text), next = firstOf(line);
    constexpr char32_t softHyphen = 0xAD;
    if (last == softHyphen && !hasBlank) {
        text.resize(withoutLast(text, last).size());
    } else if (const auto before = withoutLast(text, last);
               isHyphen(last) && !hasBlank && !before.empty() && !before.ends_with(' ')) {
        if (isLower(next) && isAnd(lettersAtStart(line)))
            text += ' ';
        else if (isLower(next) && isLetter(lastOf(before)) && !hyphenated.has(before, line))
            text.resize(before.size());
    } else if ((last == U'—' || last == U'–' || last == U'/') && !hasBlank) {
        if (lastOf(withoutLast(text, last))
            == U' ') // Otherwise the line ended at it, and no blank was there.
            text += ' ';
    } else if (hasNoBlanks(last) && hasNoBlanks(next)) {
        // Nothing stands between them.
    } else if (hasBlank || !isKorean(last) || !isKorean(next)) { // Korean lines end inside words, too.
        text += ' ';
    }
    text += line;
}

// A row of dots leads the eye from a heading to its page; nobody wrote it.
std::string withoutLeaders(std::string text)
{
    constexpr std::string_view leader = "....";
    auto at = text.find(leader);
    if (at == text.npos)
        return text;
    std::string rest;
    for (std::size_t start = 0;; at = text.find(leader, start)) {
        rest.append(text, start, std::min(at, text.size()) - start);
        if (at == text.npos)
            return rest;
        start = std::min(text.find_first_not_of(". ", at), text.size());
        if (!rest.ends_with(' '))
            rest += ' ';
    }
}

std::string textOf(const PdfParagraph& paragraph, const HyphenatedWords& hyphenated)
{
    std::string text;
    for (std::string_view rest = paragraph.text; !rest.empty();) {
        const auto end = std::min(rest.find('\n'), rest.size());
        if (text.empty())
            text = rest.substr(0, end);
        else
            join(text, rest.substr(0, end), hyphenated);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return withoutLeaders(std::move(text));
}

// Whether a paragraph that was cut at the end of a column or page goes on in another.
bool goesOn(std::string_view text, std::string_view next)
{
    text = Base::trimmed(text);
    constexpr std::u32string_view ends = U".!?…:;)]”»’\"";
    const auto last = lastOf(text);
    return last != 0 && isLower(firstOf(next)) && ends.find(last) == ends.npos
        && text.size() > 40; // Shorter ones are headings, cells and labels.
}

} // namespace

std::vector<Segment> pdfSegments(const std::vector<PdfPage>& pages)
{
    const HyphenatedWords hyphenated(pages);
    const auto running = runningParagraphs(pages);
    std::vector<Segment> segments;
    std::string text; // Of the main text, not yet a segment, since it may go on.
    std::vector<Segment> waiting; // Headers and footers behind it.
    const auto finish = [&] {
        if (!text.empty())
            segments.push_back({ .text = std::move(text) });
        text.clear();
        std::move(waiting.begin(), waiting.end(), std::back_inserter(segments));
        waiting.clear();
    };
    std::size_t number = 0;
    for (const auto& page : pages) {
        const PdfParagraph* last = nullptr;
        for (const auto& paragraph : page.paragraphs) {
            if (running[number++]) {
                waiting.push_back({ .text = textOf(paragraph, hyphenated), .part = Part::headersFooters });
                continue;
            }
            const bool isElsewhere = !last || paragraph.bottom < last->top; // On another page, or further up.
            if (isElsewhere && goesOn(text, paragraph.text)) {
                join(text, textOf(paragraph, hyphenated), hyphenated);
            } else {
                finish();
                text = textOf(paragraph, hyphenated);
            }
            last = &paragraph;
        }
    }
    finish();
    return segments;
}

} // namespace Tamberlin
