#include "PallisandeKit/Library/HelperRenderer.h"

#include "Base/ChildProcess.h"
#include "Base/Json.h"
#include "Base/Text.h"

#include <fmt/format.h>

#include <cstring>

namespace Pallisande {

namespace {

constexpr std::chrono::seconds timeLimit { 60 };
constexpr std::size_t largestPdf = 64 * 1024 * 1024;

// Why the helper gave no PDF.
std::string reason(const Base::ChildResult& result, const std::filesystem::path& program)
{
    switch (result.end) {
    case Base::ChildResult::End::couldNotStart:
        return fmt::format("the program “{}” couldn’t be started: {}", program.filename().string(),
            std::strerror(result.code));
    case Base::ChildResult::End::tookTooLong:
        return "drawing the document took too long";
    case Base::ChildResult::End::wroteTooMuch:
        return "the document is too large";
    case Base::ChildResult::End::cancelled:
    case Base::ChildResult::End::killedBySignal:
    case Base::ChildResult::End::exited:
        break;
    }
    const auto sentence = Base::trimmed(result.errors);
    return sentence.empty() ? "the document couldn’t be drawn" : std::string(sentence);
}

} // namespace

HelperRenderer::HelperRenderer(std::filesystem::path program)
    : m_program(std::move(program))
{
}

HelperRenderer HelperRenderer::besideThisProgram()
{
    return HelperRenderer(Base::programFolder() / "pallisande-print");
}

std::string HelperRenderer::render(const Tamberlin::PrintedDocument& document)
{
    auto result = Base::runChild(m_program, {}, Base::toJson(document, Base::JsonStyle::compact),
        { .time = timeLimit, .outputBytes = largestPdf });
    if (result.end != Base::ChildResult::End::exited || result.code != 0
        || !result.output.starts_with("%PDF"))
        throw RenderError(reason(result, m_program));
    return std::move(result.output);
}

} // namespace Pallisande
