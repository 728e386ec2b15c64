#include "Pallisande/Screens/FileKinds.h"

#include "Base/Text.h"
#include "TamberlinKit/Text/FileFormat.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace Pallisande {

namespace {

std::string extensionOf(const std::filesystem::path& file)
{
    const auto extension = Base::asciiLowered(file.extension().string());
    return extension.empty() ? extension : extension.substr(1);
}

} // namespace

bool isReport(const std::filesystem::path& file)
{
    constexpr std::string_view reports[] { "xml", "sdlxml", "csv", "tsv", "json" };
    return std::find(std::begin(reports), std::end(reports), extensionOf(file)) != std::end(reports);
}

bool isCountable(const std::filesystem::path& file)
{
    std::error_code error;
    return std::filesystem::is_directory(file, error) || Tamberlin::formatOfExtension(extensionOf(file));
}

bool isTextFile(const std::filesystem::path& file) { return extensionOf(file) == "txt"; }

} // namespace Pallisande
