#include "Base/Json.h"
#include "Printing/PdfDocument.h"
#include "Printing/PrintingError.h"

#include <QGuiApplication>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

// Reads a printed document as JSON from standard input and writes it as a PDF to standard output, for
// programs that have nothing of Qt themselves. What goes wrong is said in one sentence on standard error.
namespace {

enum Exit { made = 0, failed = 1, wrongInput = 2, refused = 3 };

constexpr std::size_t mostInput = 16 * 1024 * 1024;

int end(Exit code, const std::string& sentence)
{
    std::fprintf(code == made ? stdout : stderr, "%s\n", sentence.c_str());
    return code;
}

// While it lives, nothing reaches standard error: Qt remarks there on fonts that it passes over, and the
// image libraries on damaged logos, where the caller expects our one sentence.
class QuietErrors {
public:
    QuietErrors()
        : m_errors(dup(STDERR_FILENO))
    {
        if (const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC); nowhere >= 0) {
            dup2(nowhere, STDERR_FILENO);
            close(nowhere);
        }
    }
    ~QuietErrors()
    {
        if (m_errors >= 0) {
            dup2(m_errors, STDERR_FILENO);
            close(m_errors);
        }
    }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

private:
    int m_errors;
};

// Nothing when it is larger than what we take.
std::optional<std::string> readInput()
{
    std::string input;
    std::array<char, 64 * 1024> piece;
    for (std::size_t count = 0; (count = std::fread(piece.data(), 1, piece.size(), stdin)) > 0;) {
        if (input.size() + count > mostInput)
            return std::nullopt;
        input.append(piece.data(), count);
    }
    return input;
}

int print(int argumentCount, char** arguments)
{
    const auto input = readInput();
    if (!input)
        return end(wrongInput, "The document is larger than 16 MB.");
    try {
        const auto document = Base::fromJson<Tamberlin::PrintedDocument>(*input, {});
        const auto bytes = [&] {
            const QuietErrors quiet;
            const QGuiApplication application(argumentCount, arguments);
            return Pallisande::makePdf(document);
        }();
        const bool written
            = std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() && std::fflush(stdout) == 0;
        return written ? made : end(failed, "The PDF couldn’t be written.");
    } catch (const Base::DecodingError& error) {
        return end(wrongInput, std::string("The document can’t be read: ") + error.what());
    } catch (const Pallisande::PrintingError& error) {
        return end(refused, error.what());
    } catch (const std::exception& error) {
        return end(failed, std::string("The PDF couldn’t be made: ") + error.what());
    }
}

} // namespace

int main(int argumentCount, char** arguments)
{
    if (argumentCount == 2 && std::string_view(arguments[1]) == "--version")
        return end(made, "pallisande-print " PALLISANDE_VERSION);
    if (argumentCount > 1)
        return end(wrongInput,
            "pallisande-print takes no arguments but --version: it reads a document as JSON from "
            "standard input and writes a PDF to standard output.");

    // There is no window, so no display is needed, and a desktop’s theme would only cost time.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qunsetenv("QT_QPA_PLATFORMTHEME");
    return print(argumentCount, arguments);
}
