#include "Pallisande/Settings/BusinessSettings.h"

#include "Pallisande/Model/BusinessProfile.h"
#include "Pallisande/Screens/CurrencyChoices.h"
#include "Pallisande/Settings/LogoWell.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/FlowLayout.h"

#include <QCheckBox>

namespace Pallisande {

BusinessSettings::BusinessSettings(AppModel& model, QWidget* parent)
    : SettingsPage(model, parent)
    , m_logo(new LogoWell(this))
    , m_currency(new CodeBox(currencyChoices()))
    , m_paper(new ComboBox)
    , m_reminders(new QCheckBox(QStringLiteral("Remind me 24 hours and 2 hours before a deadline")))
{
    addDetails();
    auto* money = addCard(QStringLiteral("Currency and paper"));
    auto* form = new FormLayout(money);
    money->content()->addWidget(form);
    m_currency->setObjectName(QStringLiteral("homeCurrency"));
    form->addRow(QStringLiteral("Your currency (for yearly totals)"), m_currency);
    m_paper->addItems({ QStringLiteral("A4"), QStringLiteral("US Letter") });
    m_paper->setObjectName(QStringLiteral("paper"));
    form->addRow(QStringLiteral("Paper"), m_paper);
    auto* reminders = addCard(QStringLiteral("Reminders"));
    m_reminders->setObjectName(QStringLiteral("reminders"));
    reminders->content()->addWidget(m_reminders, 0, Qt::AlignLeft);

    connect(m_currency, &CodeBox::chosen, this, [this](const QString& code) {
        edit(nullptr, [&](Profile& profile) { profile.homeCurrency = plain(code); });
    });
    connect(m_paper, &QComboBox::activated, this, [this](int row) {
        edit(nullptr, [&](Profile& profile) {
            profile.paper = row == 0 ? Tamberlin::Paper::a4 : Tamberlin::Paper::letter;
        });
    });
    connect(m_reminders, &QCheckBox::clicked, this, [this](bool isOn) {
        this->model().setRemindersOn(isOn);
        m_reminders->setChecked(this->model().settings().remindersOn); // Until the system has agreed.
    });
    refresh();
}

void BusinessSettings::addDetails()
{
    auto* card = addCard(
        QStringLiteral("Your details"), QStringLiteral("Printed at the top of quotes and invoices"));
    auto* form = new FormLayout(card);
    card->content()->addWidget(form);
    addText(
        *form, QStringLiteral("Name"), [](Profile & profile) -> auto& { return profile.sender.name; })
        ->setObjectName(QStringLiteral("senderName"));
    addArea(
        *form, QStringLiteral("Address"), [](Profile & profile) -> auto& { return profile.sender.address; });
    addText(
        *form, QStringLiteral("Email"), [](Profile & profile) -> auto& { return profile.sender.email; });
    addText(
        *form, QStringLiteral("Phone"), [](Profile & profile) -> auto& { return profile.sender.phone; });
    addText(
        *form, QStringLiteral("Website"), [](Profile & profile) -> auto& { return profile.sender.website; });
    addText(
        *form, QStringLiteral("VAT or tax number"),
        [](Profile & profile) -> auto& { return profile.sender.taxID; });
    addLogo(*form);
}

void BusinessSettings::addLogo(FormLayout& form)
{
    auto* row = new QWidget(&form);
    auto* box = new FlowLayout(row);
    m_chooseLogo = makeButton(QStringLiteral("Choose…"), ButtonKind::plain, row);
    m_removeLogo = makeButton(QStringLiteral("Remove"), ButtonKind::plain, row);
    m_chooseLogo->setAccessibleName(QStringLiteral("Choose a logo"));
    m_removeLogo->setAccessibleName(QStringLiteral("Remove the logo"));
    m_chooseLogo->setObjectName(QStringLiteral("chooseLogo"));
    m_removeLogo->setObjectName(QStringLiteral("removeLogo"));
    box->addWidget(m_logo);
    box->addWidget(m_chooseLogo);
    box->addWidget(m_removeLogo);
    m_logoNote = form.addRow(QStringLiteral("Logo"), row, FormLayout::Width::stretching);
    m_logoNote->setObjectName(QStringLiteral("logoNote"));
    connect(m_chooseLogo, &QPushButton::clicked, this, [this] {
        model().choose({ .kind = ChooserRequest::Kind::image, .message = "Choose a logo" },
            [this](const AppServices::Paths& paths) { setLogo(paths.front()); });
    });
    connect(m_removeLogo, &QPushButton::clicked, this, [this] { model().profile().removeLogo(); });
    connect(m_logo, &LogoWell::dropped, this, &BusinessSettings::setLogo);
}

void BusinessSettings::setLogo(const std::filesystem::path& file)
{
    if (!model().profile().setLogo(file))
        m_logoNote->showProblem(takeProblem(model()));
}

void BusinessSettings::show(const Profile& profile)
{
    const bool canEdit = model().canEdit();
    m_logoNote->showProblem(m_logo->setLogo(profile.sender.logo));
    m_logo->setEnabled(canEdit);
    m_chooseLogo->setEnabled(canEdit);
    m_removeLogo->setEnabled(canEdit && profile.sender.logo);
    m_currency->setCode(qt(profile.homeCurrency));
    m_paper->setCurrentIndex(profile.paper == Tamberlin::Paper::a4 ? 0 : 1);
    // Not of the library: it can be turned off whatever state that is in.
    m_reminders->setEnabled(model().services().notifications);
    m_reminders->setToolTip(m_reminders->isEnabled()
            ? QString()
            : QStringLiteral("This computer has no notifications to remind you with."));
    m_reminders->setChecked(model().settings().remindersOn);
}

} // namespace Pallisande
