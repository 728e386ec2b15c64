#include "Pallisande/Platform/VisitingPreferences.h"

#include "Base/Json.h"

namespace Pallisande {

VisitingPreferences::VisitingPreferences(Preferences& own, bool isSample)
    : m_own(own)
    , m_isSample(isSample)
{
}

std::optional<std::string> VisitingPreferences::load(const std::string& key) const
{
    const auto text = m_own.load(key);
    if (!text || key != AppSettings::key)
        return text;
    try {
        auto settings = Base::fromJson<AppSettings>(*text, {});
        settings.libraryBookmark.reset();
        settings.secondBookmark.reset();
        settings.lastSecondBackup.reset();
        settings.remindersOn = settings.remindersOn && !m_isSample;
        return Base::toJson(settings, Base::JsonStyle::compact);
    } catch (const Base::DecodingError&) {
        return std::nullopt; // Told when their own library is opened.
    }
}

bool VisitingPreferences::store(const std::string& key, const std::string& text)
{
    if (key != AppSettings::key)
        return m_own.store(key, text);
    try {
        auto settings = Base::fromJson<AppSettings>(text, {});
        const auto kept = m_own.load(key);
        const auto own = kept ? Base::fromJson<AppSettings>(*kept, {}) : AppSettings {};
        settings.libraryBookmark = own.libraryBookmark;
        settings.secondBookmark = own.secondBookmark;
        settings.lastSecondBackup = own.lastSecondBackup;
        if (m_isSample)
            settings.remindersOn = own.remindersOn;
        return m_own.store(key, Base::toJson(settings, Base::JsonStyle::compact));
    } catch (const Base::DecodingError&) {
        return false;
    }
}

} // namespace Pallisande
