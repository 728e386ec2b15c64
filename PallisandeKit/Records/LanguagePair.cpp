#include "PallisandeKit/Records/LanguagePair.h"

#include "Base/Text.h"

namespace Pallisande {

namespace {

bool sameLanguage(const std::string& left, const std::string& right)
{
    return Base::equalIgnoringCase(Base::trimmed(left), Base::trimmed(right));
}

} // namespace

std::string LanguagePair::text() const
{
    if (source.empty() && target.empty())
        return {};
    return (source.empty() ? "?" : source) + " → " + (target.empty() ? "?" : target);
}

bool LanguagePair::matches(const LanguagePair& other) const
{
    return sameLanguage(source, other.source) && sameLanguage(target, other.target);
}

} // namespace Pallisande
