#include "Pallisande/Model/BusinessProfile.h"

#include "Pallisande/Model/AppModel.h"

#include "Base/Base64.h"
#include "Base/DurableFile.h"
#include "TamberlinKit/Quotes/Money.h"

#include <fmt/format.h>

namespace Pallisande {

namespace {

constexpr std::string_view wrongLogo = "Choose a PNG or JPEG under 2 MB for the logo.";

bool isPicture(std::string_view bytes)
{
    return bytes.starts_with("\x89PNG\r\n\x1A\n") || bytes.starts_with("\xFF\xD8\xFF");
}

} // namespace

bool BusinessProfile::edit(const std::string& name, const std::function<void(Profile&)>& change)
{
    return m_model.change({ .name = name, .field = name, .touchesProfile = true }, [&](Library& library) {
        auto edited = library.profile;
        change(edited);
        if (!Tamberlin::Money::isCurrencyCode(edited.homeCurrency))
            throw LedgerError::invalid(fmt::format(
                "“{}” isn’t a currency code; use three capital letters such as EUR.", edited.homeCurrency));
        library.profile = std::move(edited);
    });
}

bool BusinessProfile::setNextNumber(Ledger::Series series, std::int64_t next)
{
    return m_model.change({ .name = "Change Settings", .touchesProfile = true }, [&](Library& library) {
        const auto moment = m_model.moment();
        Ledger::setNextNumber(library, series, moment.calendar.day(moment.now).year, next);
    });
}

std::int64_t BusinessProfile::nextNumber(Ledger::Series series) const
{
    const auto moment = m_model.moment();
    return Ledger::series(m_model.library().profile, series)
        .upcoming(moment.calendar.day(moment.now).year)
        .sequence;
}

std::string BusinessProfile::nextText(Ledger::Series series) const
{
    const auto moment = m_model.moment();
    return "Next: "
        + Ledger::series(m_model.library().profile, series)
              .upcoming(moment.calendar.day(moment.now).year)
              .number;
}

void BusinessProfile::chooseLogo()
{
    if (m_model.requireEditing())
        m_model.choose({ .kind = ChooserRequest::Kind::image, .message = "Choose a logo" },
            [this](const AppServices::Paths& paths) { setLogo(paths.front()); });
}

bool BusinessProfile::setLogo(const std::filesystem::path& file)
{
    std::string bytes;
    try {
        bytes = Base::readFile(file, logoLimit - 1).bytes;
    } catch (const std::exception&) { // Too large, or not to be opened: neither will do.
    }
    if (!isPicture(bytes))
        return m_model.requireEditing() && m_model.refuse(std::string(wrongLogo));
    m_model.endMerging();
    return edit("Change Settings", [&](Profile& profile) { profile.sender.logo = Base::toBase64(bytes); });
}

bool BusinessProfile::removeLogo()
{
    m_model.endMerging();
    return edit("Change Settings", [](Profile& profile) { profile.sender.logo.reset(); });
}

} // namespace Pallisande
