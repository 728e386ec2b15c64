#include "PallisandeKit/Rates/RateBook.h"

#include <algorithm>

namespace Pallisande {

namespace {

constexpr int ratePlaces = 6;
constexpr std::int64_t dayMilliseconds = 86'400'000;

bool isPair(const ExchangeRate& rate, const std::string& from, const std::string& to)
{
    return rate.from == from && rate.to == to;
}

// A typed rate as asked for: turned round where it was typed the other way.
ExchangeRate directed(ExchangeRate rate, const std::string& from)
{
    if (rate.from == from)
        return rate;
    std::swap(rate.from, rate.to);
    rate.rate = Base::Decimal(1).dividedBy(rate.rate, ratePlaces);
    return rate;
}

} // namespace

std::optional<Base::Decimal> ECBDay::rate(const std::string& from, const std::string& to) const
{
    const auto euroValue = [&](const std::string& currency) -> std::optional<Base::Decimal> {
        if (currency == "EUR")
            return 1;
        const auto found = perEuro.find(currency);
        return found == perEuro.end() ? std::nullopt : std::optional(found->second);
    };
    if (from == to)
        return 1;
    const auto fromValue = euroValue(from), toValue = euroValue(to);
    if (!fromValue || !toValue || *fromValue <= Base::Decimal())
        return std::nullopt;
    return toValue->dividedBy(*fromValue, ratePlaces);
}

std::optional<ExchangeRate> RateBook::rate(
    const std::string& from, const std::string& to, Base::Instant day, const Base::Moment& moment) const
{
    if (from == to)
        return ExchangeRate { .id = Base::Uuid::random(),
            .from = from,
            .to = to,
            .rate = 1,
            .date = day,
            .source = TypedByUser { "same currency" },
            .recordedAt = moment.now };

    const auto endOfDay = moment.calendar.startOfDay(day).plusMilliseconds(dayMilliseconds);
    const ExchangeRate* typedRate = nullptr;
    for (const auto& rate : typed) {
        const bool isCandidate = (isPair(rate, from, to) || (isPair(rate, to, from) && !rate.rate.isZero()))
            && rate.date < endOfDay;
        if (isCandidate && (!typedRate || rate.date >= typedRate->date)) // Of one day, the one typed last.
            typedRate = &rate;
    }
    const ECBDay* ecbDay = nullptr;
    std::optional<Base::Decimal> ecbRate;
    for (const auto& candidate : ecb) {
        if (candidate.date >= endOfDay || (ecbDay && candidate.date < ecbDay->date))
            continue;
        if (const auto rate = candidate.rate(from, to)) {
            ecbDay = &candidate;
            ecbRate = rate;
        }
    }
    const bool typedWins = typedRate
        && (!ecbDay
            || moment.calendar.startOfDay(typedRate->date) >= moment.calendar.startOfDay(ecbDay->date));
    if (typedWins)
        return directed(*typedRate, from);
    if (!ecbDay)
        return std::nullopt;
    return ExchangeRate { .id = Base::Uuid::random(),
        .from = from,
        .to = to,
        .rate = *ecbRate,
        .date = ecbDay->date,
        .source = FromECB {},
        .recordedAt = moment.now };
}

void RateBook::merge(std::vector<ECBDay> days, const Base::Moment& moment)
{
    const auto dayOf = [&](const ECBDay& day) { return moment.calendar.day(day.date); };
    std::map<Base::Day, ECBDay> byDay;
    for (auto* list : { &ecb, &days }) { // What was fetched comes last and replaces what is stored.
        for (auto& day : *list)
            byDay.insert_or_assign(dayOf(day), std::move(day));
    }
    ecb.clear();
    for (auto& [day, rates] : byDay)
        ecb.push_back(std::move(rates));
    lastFetched = moment.now;
}

} // namespace Pallisande
