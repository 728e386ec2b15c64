#include "Pallisande/Shell/LibraryPage.h"

#include "Pallisande/Screens/Text.h"

namespace Pallisande {

LibraryPage::LibraryPage(AppModel& model, QWidget* parent)
    : EmptyPage(Icon::folder, {}, parent)
    , m_model(model)
    , m_update(addButton(QStringLiteral("Check for Updates…"), ButtonKind::primary))
    , m_restore(addButton(QStringLiteral("Restore a Backup…"), ButtonKind::primary))
    , m_choose(addButton(QStringLiteral("Choose Folder…"), ButtonKind::plain))
    , m_startNew(addButton(QStringLiteral("Start a New Library Here"), ButtonKind::plain))
{
    setObjectName(QStringLiteral("libraryPage"));
    m_restore->setObjectName(QStringLiteral("restoreBackup"));
    m_choose->setObjectName(QStringLiteral("chooseFolder"));
    m_startNew->setObjectName(QStringLiteral("startNewLibrary"));
    connect(m_update, &QPushButton::clicked, this, &LibraryPage::updateCheckWanted);
    connect(m_restore, &QPushButton::clicked, this, &LibraryPage::backupsWanted);
    connect(m_choose, &QPushButton::clicked, this, [this] { m_model.chooseLibraryFolder(); });
    connect(m_startNew, &QPushButton::clicked, this, [this] { m_model.startNewLibrary(); });
    connect(&model, &AppModel::stateChanged, this, &LibraryPage::refresh);
    refresh();
}

bool LibraryPage::isNeeded(AppModel& model)
{
    const auto reason = model.readOnly();
    return model.isOpening() || !model.hasLibrary() || reason == ReadOnlyReason::unreadable
        || reason == ReadOnlyReason::missingFile || reason == ReadOnlyReason::newerVersion;
}

void LibraryPage::refresh()
{
    const bool isOpening = m_model.isOpening();
    const bool isNewer = m_model.readOnly() == ReadOnlyReason::newerVersion;
    setSentence(isOpening ? QStringLiteral("Opening your library…")
            : isNewer     ? QStringLiteral("This library was saved by a newer version of Pallisande.")
                          : qt(m_model.readOnlyText()));
    setExplanation(isOpening || !m_model.hasLibrary() ? QString() : qt(m_model.folder().string()));
    const bool isMissing = m_model.readOnly() == ReadOnlyReason::missingFile;
    m_update->setVisible(!isOpening && isNewer);
    m_restore->setVisible(!isOpening && isMissing && !m_model.backups().empty());
    m_choose->setVisible(!isOpening);
    m_startNew->setVisible(!isOpening && isMissing);
}

} // namespace Pallisande
