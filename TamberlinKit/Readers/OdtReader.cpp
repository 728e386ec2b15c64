#include "TamberlinKit/Readers/OdtText.h"
#include "TamberlinKit/Readers/Readers.h"

#include "TamberlinKit/Markup/Package.h"

#include <fmt/format.h>

#include <iterator>
#include <string>
#include <unordered_map>
#include <utility>

namespace Tamberlin {

namespace {

constexpr auto kind = "OpenDocument (.odt)";

ReadError refusal(const Package& package, std::string_view reason)
{
    return ReadError(
        fmt::format("“{}” isn’t an {} file that can be read ({}).", package.name(), kind, reason));
}

// The list of what the package holds: media types by path. Refuses a text that is encrypted.
std::unordered_map<std::string, std::string> readManifest(const Package& package)
{
    std::unordered_map<std::string, std::string> types;
    bool isText = false, isProtected = package.has("encrypted-package"); // Whole, as of OpenDocument 1.3.
    const XMLScan reader { .onStart = [&](std::string_view element, const XMLScan::Attributes& attributes) {
        if (element == "file-entry") {
            const auto path = attributes.valueOr("full-path", "");
            isText = path == "content.xml";
            if (path.ends_with('/'))
                types.emplace(path.substr(0, path.size() - 1), attributes.valueOr("media-type", ""));
        } else if (element == "encryption-data" && isText) {
            isProtected = true;
        }
    } };
    // A damaged list only leaves embedded objects without their kind.
    static_cast<void>(package.scan("META-INF/manifest.xml", reader));
    if (isProtected)
        throw ReadError(fmt::format(
            "“{}” is protected with a password: remove the password and count it again.", package.name()));
    return types;
}

} // namespace

Extracted readOdt(std::string_view file, std::string name, const std::stop_token& cancel)
{
    const Package package(file, name, kind, cancel);
    const auto types = readManifest(package);
    if (!package.has("content.xml"))
        throw refusal(package, "it has no content.xml");

    Extracted extracted { .name = std::move(name), .format = FileFormat::odt };
    OdtText text(extracted.segments, [&](std::string_view folder) {
        const auto type = types.find(std::string(folder));
        return type == types.end() ? std::string() : type->second;
    });
    // The common styles and the headers stand in styles.xml, which is read first; headers come behind the
    // text all the same.
    const auto stylesDamage = package.scan("styles.xml", text.scan());
    auto headers = std::exchange(extracted.segments, {});
    text.beginPart();
    const auto contentDamage = package.scan("content.xml", text.scan());
    if (!text.bodyKind().empty() && text.bodyKind() != "text")
        throw refusal(package, "it isn’t a text document");
    std::move(headers.begin(), headers.end(), std::back_inserter(extracted.segments));

    text.notCounted().tell(extracted.notes);
    for (const auto& damage : { contentDamage, stylesDamage }) {
        if (damage)
            extracted.notes.push_back(*damage);
    }
    return extracted;
}

} // namespace Tamberlin
