#include "Pallisande/Settings/LibrarySettings.h"

#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/FlowLayout.h"
#include "Pallisande/Widgets/Label.h"

#include <QCoreApplication>

namespace Pallisande {

namespace {

QWidget* line(std::initializer_list<QWidget*> buttons, QWidget* parent)
{
    auto* row = new QWidget(parent);
    auto* box = new FlowLayout(row);
    for (auto* button : buttons)
        box->addWidget(button);
    return row;
}

QString pathText(const std::filesystem::path& path) { return QString::fromStdU16String(path.u16string()); }

} // namespace

LibrarySettings::LibrarySettings(AppModel& model, QWidget* parent)
    : SettingsPage(model, parent)
{
    addFolder();
    addCopies();
    addUpdates();
    connect(&model, &AppModel::saveStateChanged, this, &SettingsPage::refresh); // A copy may have been made.
    refresh();
}

void LibrarySettings::addFolder()
{
    auto* card = addCard(QStringLiteral("Library folder"));
    m_folder = new ElidedLabel(card);
    m_folder->setObjectName(QStringLiteral("folder"));
    m_showFolder = makeButton(QStringLiteral("Show"), ButtonKind::plain, card);
    m_showFolder->setAccessibleName(QStringLiteral("Show the library folder"));
    m_showFolder->setObjectName(QStringLiteral("showFolder"));
    auto* move = makeButton(QStringLiteral("Move to Another Folder…"), ButtonKind::plain, card);
    move->setObjectName(QStringLiteral("moveLibrary"));
    card->content()->addWidget(m_folder);
    card->content()->addWidget(makeSentence(
        QStringLiteral(
            "The folder holds your records, a copy of every imported report, every issued PDF as issued, and "
            "dated backups. Keep it in a folder you already back up or sync; Pallisande itself never uploads "
            "anything."),
        card, TextStyle::small, Ink::muted));
    card->content()->addWidget(line({ m_showFolder, move }, card));
    connect(m_showFolder, &QPushButton::clicked, this, [this] { model().showLibraryFolder(); });
    connect(move, &QPushButton::clicked, this, [this] { model().chooseLibraryFolder(); });
}

void LibrarySettings::addCopies()
{
    auto* card = addCard(QStringLiteral("Backups"));
    m_secondText = makeSentence({}, card);
    m_second = new ElidedLabel(card);
    m_second->setObjectName(QStringLiteral("secondFolder"));
    m_lastCopy = new Label(card, TextStyle::small, Ink::muted);
    m_lastCopy->setObjectName(QStringLiteral("lastCopy"));
    auto* choose = makeButton(QStringLiteral("Second Backup Folder…"), ButtonKind::plain, card);
    choose->setObjectName(QStringLiteral("chooseSecond"));
    m_stopSecond = makeButton(QStringLiteral("Stop Using It"), ButtonKind::plain, card);
    m_stopSecond->setAccessibleName(QStringLiteral("Stop using the second backup folder"));
    m_stopSecond->setObjectName(QStringLiteral("stopSecond"));
    m_backUp = makeButton(QStringLiteral("Back Up Now"), ButtonKind::plain, card);
    m_backUp->setObjectName(QStringLiteral("backUpNow"));
    m_backups = makeButton(QStringLiteral("Show Backups…"), ButtonKind::plain, card);
    m_backups->setObjectName(QStringLiteral("showBackups"));
    card->content()->addWidget(m_secondText);
    card->content()->addWidget(m_second);
    card->content()->addWidget(m_lastCopy);
    card->content()->addWidget(line({ choose, m_stopSecond }, card));
    card->content()->addSpacing(Space::small);
    card->content()->addWidget(makeSentence(
        QStringLiteral("A dated copy is kept in the library folder for each day that you work."), card));
    card->content()->addWidget(line({ m_backUp, m_backups }, card));
    connect(choose, &QPushButton::clicked, this, [this] { model().chooseSecondBackupFolder(); });
    connect(m_stopSecond, &QPushButton::clicked, this, [this] { model().stopSecondBackup(); });
    connect(m_backUp, &QPushButton::clicked, this, [this] { model().backUpNow(); });
    connect(m_backups, &QPushButton::clicked, this, &LibrarySettings::backupsWanted);
}

void LibrarySettings::addUpdates()
{
    auto* card = addCard(QStringLiteral("Updates"));
    auto* version = new Label(QStringLiteral("Version %1").arg(QCoreApplication::applicationVersion()), card);
    version->setObjectName(QStringLiteral("version"));
    auto* check = makeButton(QStringLiteral("Check for Updates…"), ButtonKind::plain, card);
    check->setObjectName(QStringLiteral("checkForUpdates"));
    auto* box = new QHBoxLayout;
    box->setSpacing(Space::medium);
    box->addWidget(version);
    box->addWidget(check);
    box->addStretch();
    card->content()->addLayout(box);
    connect(check, &QPushButton::clicked, this, &LibrarySettings::updateCheckWanted);
}

void LibrarySettings::show(const Profile&)
{
    const auto& settings = model().settings();
    const bool hasLibrary = model().hasLibrary();
    m_folder->setText(
        hasLibrary ? pathText(model().folder()) : QStringLiteral("The library couldn’t be opened."));
    m_showFolder->setEnabled(hasLibrary);
    m_backUp->setEnabled(hasLibrary);
    m_backups->setEnabled(hasLibrary);

    const bool isUsed = settings.secondBookmark.has_value();
    const auto second
        = isUsed ? model().services().bookmarks->resolve(*settings.secondBookmark) : std::nullopt;
    m_secondText->setText(!isUsed
            ? QStringLiteral(
                "A second backup folder gets a copy of the library once a day, on another disk for example.")
            : second
            ? QStringLiteral("A copy of the library goes there once a day:")
            : QStringLiteral("The second backup folder couldn’t be found. Its disk may not be connected."));
    m_second->setVisible(second.has_value());
    if (second)
        m_second->setText(pathText(*second));
    const auto day = Base::Day::parse(settings.lastSecondBackup.value_or(""));
    m_lastCopy->setVisible(isUsed);
    m_lastCopy->setText(
        day ? QStringLiteral("Last copy: %1").arg(qt(Formats::day(*day))) : QStringLiteral("No copy yet."));
    m_stopSecond->setVisible(isUsed);
}

} // namespace Pallisande
