#include "Pallisande/Model/AppSettings.h"

#include "Base/Base64.h"
#include "Base/Json.h"

namespace Pallisande {

void writeJson(Base::JsonWriter& writer, const Bookmark& bookmark)
{
    writer.text(Base::toBase64(bookmark.bytes));
}

AppSettings::Loaded AppSettings::load(Preferences& preferences)
{
    const auto text = preferences.load(key);
    if (!text)
        return {};
    try {
        return { Base::fromJson<AppSettings>(*text, {}), {} };
    } catch (const Base::DecodingError&) {
        preferences.store(damagedKey, *text);
        return { {},
            "Your settings couldn’t be read, so Pallisande uses its own. If your library is in a folder that "
            "you "
            "chose, choose it again in Settings › Library." };
    }
}

bool AppSettings::store(Preferences& preferences) const
{
    return preferences.store(key, Base::toJson(*this, Base::JsonStyle::compact));
}

} // namespace Pallisande

void Base::TypedForm<Pallisande::Bookmark>::setText(void* target, std::string_view text) const
{
    auto bytes = fromBase64(text);
    if (!bytes)
        throw DecodingError("Not Base64.");
    static_cast<Pallisande::Bookmark*>(target)->bytes = std::move(*bytes);
}
