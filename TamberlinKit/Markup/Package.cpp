#include "TamberlinKit/Markup/Package.h"

#include "Base/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace Tamberlin {

namespace {

// A target as it is written, as a path from the root of the package; `folder` is that of the part that refers
// to it.
std::string resolved(std::string_view folder, std::string_view target)
{
    if (target.starts_with('/'))
        return std::string(target.substr(1));
    std::vector<std::string_view> steps;
    const auto walk = [&](std::string_view path) {
        while (!path.empty()) {
            const auto slash = std::min(path.find('/'), path.size());
            const auto step = path.substr(0, slash);
            path.remove_prefix(std::min(slash + 1, path.size()));
            if (step == ".." && !steps.empty())
                steps.pop_back();
            else if (step != ".." && step != "." && !step.empty())
                steps.push_back(step);
        }
    };
    walk(folder);
    walk(target);
    return fmt::format("{}", fmt::join(steps, "/"));
}

} // namespace

Package::Package(std::string_view archive, std::string name, std::string_view kind, std::stop_token cancel)
    : m_archive(archive)
    , m_name(std::move(name))
    , m_cancel(std::move(cancel))
{
    try {
        m_entries = ZipReader::entries(archive);
    } catch (const ZipReader::Failure&) {
        throw ReadError(
            fmt::format("“{}” isn’t a {} file that can be read (it isn’t a zip package).", m_name, kind));
    }
    for (std::size_t place = 0; place < m_entries.size(); ++place)
        m_places.emplace(m_entries[place].path, place);
}

std::optional<ZipReader::Packed> Package::packed(std::string_view path) const
{
    if (m_cancel.stop_requested())
        throw Cancelled();
    const auto found = m_places.find(path);
    if (found == m_places.end())
        return std::nullopt;
    const auto& entry = m_entries[found->second];
    // One small stream can be the data of any number of large entries, and a large one that of small entries.
    const auto work = std::max(entry.size, std::min<std::uint64_t>(entry.compressedSize, m_archive.size()));
    if (entry.size <= ZipReader::largestEntry && (m_unpacked += work) > largestDocument)
        throw ReadError(fmt::format("“{}” unpacks to more than 2 GB, which no document needs.", m_name));
    return ZipReader::Packed(entry, m_archive);
}

std::optional<Bytes> Package::data(std::string_view path) const
{
    const auto part = packed(path);
    return part ? std::optional(part->unpacked()) : std::nullopt;
}

std::vector<std::string> Package::paths(std::string_view prefix, std::string_view suffix) const
{
    std::vector<std::string> paths;
    for (const auto& [path, place] : m_places) {
        const bool fits = path.size() >= prefix.size() + suffix.size() && path.starts_with(prefix)
            && path.ends_with(suffix) && path.find('/', prefix.size()) == path.npos;
        if (fits)
            paths.emplace_back(path);
    }
    std::sort(paths.begin(), paths.end(), &Base::naturallyBefore);
    return paths;
}

std::optional<std::string> Package::scan(std::string_view path, const XMLScan& scan) const
{
    const auto part = packed(path);
    if (!part)
        return std::nullopt;
    const auto reason = scan.parse(
        part->size(), [&](char* into) { part->unpack(into); }, m_cancel);
    if (!reason)
        return std::nullopt;
    return fmt::format(
        "Part of {} couldn’t be read ({}).", m_name, reason->empty() ? "damaged XML" : *reason);
}

Package::Relationships Package::allRelationships(std::string_view path) const
{
    const std::scoped_lock lock(m_relationshipsMutex);
    if (m_relationships && m_relationshipsOf == path)
        return m_relationships;
    const auto slash = path.rfind('/');
    const auto folder = slash == path.npos ? std::string_view() : path.substr(0, slash);
    const auto file = slash == path.npos ? path : path.substr(slash + 1);
    std::vector<Relationship> relationships;
    const XMLScan reader { .onStart = [&](std::string_view element, const XMLScan::Attributes& attributes) {
        if (element != "Relationship" || attributes.find("TargetMode") == "External")
            return;
        const auto id = attributes.find("Id"), target = attributes.find("Target");
        if (id && target)
            relationships.push_back(
                { std::string(*id), std::string(attributes.valueOr("Type", "")), resolved(folder, *target) });
    } };
    // A damaged list gives what came before the damage.
    static_cast<void>(
        scan(fmt::format("{}{}_rels/{}.rels", folder, folder.empty() ? "" : "/", file), reader));
    m_relationshipsOf = path;
    return m_relationships = std::make_shared<const std::vector<Relationship>>(std::move(relationships));
}

std::map<std::string, std::string> Package::relationships(std::string_view path) const
{
    std::map<std::string, std::string> targets;
    for (const auto& [id, type, target] : *allRelationships(path))
        targets.insert_or_assign(id, target);
    return targets;
}

std::vector<std::string> Package::related(std::string_view path, std::string_view type) const
{
    std::vector<std::string> targets;
    const auto ending = fmt::format("/{}", type);
    for (const auto& relationship : *allRelationships(path)) {
        if (relationship.type.ends_with(ending))
            targets.push_back(relationship.target);
    }
    return targets;
}

} // namespace Tamberlin
