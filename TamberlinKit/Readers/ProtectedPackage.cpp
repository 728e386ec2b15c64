#include "TamberlinKit/Readers/ProtectedPackage.h"

#include <fmt/format.h>

namespace Tamberlin {

namespace {

// Whether the directory of a compound file ([MS-CFB] 2.6) names the stream that holds an encrypted document
// ([MS-OFFCRYPTO] 2.3.4.4). Its records stand at multiples of their size, so that there is no need to follow
// the chain of its sectors.
bool isProtected(std::string_view file)
{
    constexpr std::string_view compoundFile("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
    constexpr std::string_view name("E\0n\0c\0r\0y\0p\0t\0e\0d\0P\0a\0c\0k\0a\0g\0e\0\0\0", 34);
    constexpr std::size_t recordSize = 128, lengthOffset = 64, typeOffset = 66;
    constexpr char stream = 2;
    if (!file.starts_with(compoundFile))
        return false;
    for (; file.size() >= recordSize; file.remove_prefix(recordSize)) {
        if (file.starts_with(name) && file[lengthOffset] == char { name.size() }
            && file[typeOffset] == stream)
            return true;
    }
    return false;
}

} // namespace

Package openPackage(
    std::string_view archive, std::string name, std::string_view kind, const std::stop_token& cancel)
{
    try {
        return Package(archive, std::move(name), kind, cancel);
    } catch (const ReadError& error) {
        if (!isProtected(archive))
            throw;
        throw ReadError(fmt::format(
            "{} It is protected with a password: remove the password and count it again.", error.what()));
    }
}

std::string mainPart(const Package& package, std::string_view usual)
{
    const auto named = package.related("", "officeDocument");
    return named.empty() || !package.has(named.front()) ? std::string(usual) : named.front();
}

} // namespace Tamberlin
