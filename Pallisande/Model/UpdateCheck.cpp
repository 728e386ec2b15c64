#include "Pallisande/Model/UpdateCheck.h"

#include "Base/Json.h"

#include <fmt/format.h>

namespace Pallisande {

namespace {

constexpr const char* memoryKey = "updates";
constexpr std::int64_t day = 86'400'000; // Milliseconds.

// A clock that was set back makes a check due; it mustn't put the next one off for years.
bool isDue(const std::optional<Base::Instant>& last, Base::Instant now)
{
    return !last || *last > now || last->plusMilliseconds(day) <= now;
}

// A feed that says less than one before it was brought back by somebody who wants a newer version hidden.
void require(const UpdateFeed& feed, const UpdateMemory& memory)
{
    const auto highest = AppVersion::parse(memory.highestVersion);
    if ((highest && *AppVersion::parse(feed.version) < *highest) || feed.published < memory.newestFeed)
        throw UpdateFeedError("The feed is an old one.");
}

} // namespace

UpdateSource UpdateSource::builtIn() { return { PALLISANDE_UPDATE_FEED, PALLISANDE_UPDATE_KEY }; }

UpdateMemory UpdateMemory::load(const Preferences& preferences)
{
    try {
        return Base::fromJson<UpdateMemory>(preferences.load(memoryKey).value_or("{}"), {});
    } catch (const Base::DecodingError&) {
        return {};
    }
}

void UpdateMemory::store(Preferences& preferences) const
{
    preferences.store(memoryKey, Base::toJson(*this, Base::JsonStyle::compact));
}

void UpdateCheck::checkIfDue(std::function<void(const UpdateResult&)> found)
{
    if (m_services.source.publicKey.empty()
        || !isDue(UpdateMemory::load(m_services.preferences).lastCheck, m_services.now()))
        return;
    check([found = std::move(found)](const UpdateResult& result) {
        if (result.kind == UpdateResult::Case::found)
            found(result);
    });
}

void UpdateCheck::checkByHand(std::function<void(const UpdateResult&)> done)
{
    if (m_services.source.publicKey.empty())
        return done(failed());
    check(std::move(done));
}

void UpdateCheck::check(std::function<void(const UpdateResult&)> done)
{
    auto memory = UpdateMemory::load(m_services.preferences);
    memory.lastCheck = m_services.now();
    memory.store(m_services.preferences);
    m_services.network.fetch({ .address = m_services.source.address,
                                 .largest = UpdateFeed::largest,
                                 .cancel = m_stop.get_token() },
        [weak = std::weak_ptr(m_self), done = std::move(done)](const Base::DownloadResult& download) {
            if (const auto self = weak.lock())
                done((*self)->judged(download));
        });
}

UpdateResult UpdateCheck::judged(const Base::DownloadResult& download)
{
    if (download.end != Base::DownloadResult::End::done)
        return failed();
    try {
        auto feed = UpdateFeed::read(download.body, m_services.source.publicKey);
        auto memory = UpdateMemory::load(m_services.preferences);
        require(feed, memory);
        memory.highestVersion = feed.version;
        memory.newestFeed = feed.published;
        memory.store(m_services.preferences);
        // A version that isn't a number is a build of a developer's own, which is offered nothing.
        const auto current = AppVersion::parse(m_services.version);
        const bool isNewer = current && *AppVersion::parse(feed.version) > *current;
        return isNewer ? found(std::move(feed)) : upToDate();
    } catch (const UpdateFeedError&) {
        return failed();
    }
}

UpdateResult UpdateCheck::upToDate() const
{
    return { .kind = UpdateResult::Case::upToDate,
        .title = "You’re up to date",
        .text = fmt::format("{} {} is the newest version.", m_services.appName, m_services.version),
        .addition
        = fmt::format("{} checks for updates on its own and will let you know when there’s a new one.",
            m_services.appName) };
}

UpdateResult UpdateCheck::found(UpdateFeed feed) const
{
    return { .kind = UpdateResult::Case::found,
        .title = "A new version is available",
        .text = fmt::format(
            "{} {} is available; you have {}.", m_services.appName, feed.version, m_services.version),
        .addition
        = "The download page opens in your browser. Pallisande itself downloads and installs nothing.",
        .feed = std::move(feed) };
}

UpdateResult UpdateCheck::failed() const
{
    return { .kind = UpdateResult::Case::failed,
        .title = "Couldn’t check for updates",
        .text = "Check your internet connection and try again.",
        .addition = fmt::format("{} also checks on its own about once a day.", m_services.appName) };
}

} // namespace Pallisande
