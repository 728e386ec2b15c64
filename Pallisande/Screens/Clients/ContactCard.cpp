#include "Pallisande/Screens/Clients/ContactCard.h"

#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/CodeBox.h"

#include <QTimeZone>

#include <algorithm>

namespace Pallisande {

namespace {

// Places people live in, by their cities; not the links and offsets that zone databases keep as well.
const CodeBox::Choices& zones()
{
    static const auto all = [] {
        static constexpr std::string_view regions[] { "Africa/", "America/", "Antarctica/", "Arctic/",
            "Asia/", "Atlantic/", "Australia/", "Europe/", "Indian/", "Pacific/" };
        CodeBox::Choices choices { { QStringLiteral("UTC"), QStringLiteral("UTC") } };
        for (const auto& id : QTimeZone::availableTimeZoneIds()) {
            const std::string_view zone(id.constData(), static_cast<std::size_t>(id.size()));
            if (std::any_of(std::begin(regions), std::end(regions),
                    [&](std::string_view region) { return zone.starts_with(region); }))
                choices.emplace_back(qt(zone), QStringLiteral("%1 (%2)").arg(qt(cityOf(zone)), qt(zone)));
        }
        std::sort(choices.begin(), choices.end(),
            [](const auto& left, const auto& right) { return left.second < right.second; });
        return choices;
    }();
    return all;
}

} // namespace

ContactCard::ContactCard(AppModel& model, QWidget* parent)
    : ClientCard(model, QStringLiteral("Contact"), parent)
{
    auto* form = new FormLayout(this);
    content()->addWidget(form);
    m_name = addText(*form, QStringLiteral("Name"), "Change Name", &Client::name);
    m_name->setObjectName(QStringLiteral("clientName"));
    addText(*form, QStringLiteral("Contact"), "Change Contact", &Client::contact);
    addText(*form, QStringLiteral("Email"), "Change Email", &Client::email);
    addArea(*form, QStringLiteral("Address"), "Change Address", &Client::address);
    addText(*form, QStringLiteral("VAT or tax number"), "Change Tax Number", &Client::taxID);
    m_zone = new CodeBox(zones(), form);
    m_zone->setObjectName(QStringLiteral("clientZone"));
    m_zoneNote = form->addRow(QStringLiteral("Time zone"), m_zone);
    m_time = new Label(form, TextStyle::small, Ink::muted);
    m_time->setObjectName(QStringLiteral("clientTime"));
    form->addBelow(m_time);
    connect(m_zone, &CodeBox::chosen, this, [this](const QString& zone) {
        edit(m_zone, "Change Time Zone", [&](Client& client) { client.timeZone = plain(zone); });
    });
    connect(&model, &AppModel::timePassed, this, &ContactCard::showTime);
}

void ContactCard::refresh(const Client& client)
{
    m_zone->setCode(qt(client.timeZone));
    const bool isKnown = Base::Calendar::named(client.timeZone).has_value();
    m_zoneNote->showProblem(isKnown ? QString()
                                    : QStringLiteral("“%1” isn’t a known time zone; this computer’s is used.")
                                          .arg(qt(client.timeZone)));
    showTime();
}

void ContactCard::showTime()
{
    const auto* const shown = client();
    const auto there = shown ? Base::Calendar::named(shown->timeZone) : std::nullopt;
    m_time->setVisible(there.has_value());
    if (!there)
        return;
    const auto [now, here] = model().moment();
    const auto time = qt(model().formats().time(there->components(now)));
    const auto today = here.day(now), day = there->day(now);
    m_time->setText(day == today
            ? QStringLiteral("now %1 there").arg(time)
            : QStringLiteral("now %1 there, on %2").arg(time, qt(Formats::weekDay(day, today))));
}

} // namespace Pallisande
