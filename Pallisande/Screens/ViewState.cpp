#include "Pallisande/Screens/ViewState.h"

#include "Base/Json.h"

namespace Pallisande {

namespace {

constexpr const char* key = "window";

// As it is kept.
struct Stored {
    std::map<std::string, std::string> texts;

    bool operator==(const Stored&) const = default;

    static constexpr auto fields() { return std::tuple { Base::field("texts", &Stored::texts) }; }
};
static_assert(Base::listsEveryMember<Stored>);

} // namespace

ViewState::ViewState(Preferences& preferences)
    : m_preferences(preferences)
{
    try {
        if (const auto text = preferences.load(key))
            m_texts = Base::fromJson<Stored>(*text, {}).texts;
    } catch (const Base::DecodingError&) { // The window stands as it does at a first start.
    }
}

std::optional<std::string> ViewState::text(const std::string& name) const
{
    const auto found = m_texts.find(name);
    return found == m_texts.end() ? std::nullopt : std::optional(found->second);
}

void ViewState::setText(const std::string& name, const std::string& text)
{
    auto& kept = m_texts[name];
    if (kept == text)
        return;
    kept = text;
    m_preferences.store(key, Base::toJson(Stored { m_texts }, Base::JsonStyle::compact));
}

bool ViewState::flag(const std::string& name, bool usually) const
{
    const auto kept = text(name);
    return kept ? *kept == "yes" : usually;
}

void ViewState::setFlag(const std::string& name, bool flag) { setText(name, flag ? "yes" : "no"); }

} // namespace Pallisande
