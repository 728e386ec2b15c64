#include "Pallisande/Shell/MessageHost.h"

#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Banner.h"
#include "Pallisande/Widgets/LineField.h"
#include "Pallisande/Widgets/Toast.h"

namespace Pallisande {

namespace {

QString buttonOf(Problem::Action action)
{
    switch (action) {
    case Problem::Action::none:
        return {};
    case Problem::Action::chooseFolder:
        return QStringLiteral("Choose Folder…");
    case Problem::Action::checkForUpdates:
        return QStringLiteral("Check for Updates…");
    case Problem::Action::showBackups:
        return QStringLiteral("Show Backups");
    case Problem::Action::tryAgain:
        return QStringLiteral("Try Again");
    case Problem::Action::showLibraryFolder:
        return QStringLiteral("Show Library Folder");
    case Problem::Action::newClient:
        return QStringLiteral("New Client");
    case Problem::Action::archiveClient:
        return QStringLiteral("Archive");
    case Problem::Action::openInvoice:
        return QStringLiteral("Open It");
    }
    return {};
}

QString buttonOf(Notice::Action action)
{
    switch (action) {
    case Notice::Action::none:
        return {};
    case Notice::Action::undo:
        return QStringLiteral("Undo");
    case Notice::Action::show:
    case Notice::Action::showBackups:
        return QStringLiteral("Show");
    }
    return {};
}

} // namespace

MessageHost::MessageHost(AppModel& model, Banner* banner, Toast* toast, QObject* parent)
    : QObject(parent)
    , m_model(model)
    , m_banner(banner)
    , m_toast(toast)
{
    connect(banner, &Banner::acted, this, &MessageHost::actOnProblem);
    connect(banner, &Banner::dismissed, this, [this] { m_model.dismissProblem(); });
    connect(toast, &Toast::acted, this, &MessageHost::actOnNotice);
    connect(toast, &Toast::ended, this, [this] {
        if (m_model.notice())
            m_model.dismissNotice();
    });
    connect(&model, &AppModel::problemChanged, this, &MessageHost::showProblem);
    connect(&model, &AppModel::noticeChanged, this, &MessageHost::showNotice);
    connect(&model, &AppModel::undoChanged, this, [this] {
        const auto& notice = m_model.notice(); // Its Undo would now undo something else.
        if (notice && notice->action == Notice::Action::undo && m_model.undoText() != m_undoText)
            m_model.dismissNotice();
    });
    showProblem();
    showNotice();
}

// While a sheet is open, it shows what went wrong in it itself.
void MessageHost::showProblem()
{
    const auto& problem = m_model.problem();
    if (problem && !problem->isInSheet)
        m_banner->showProblem(qt(problem->text), buttonOf(problem->action));
    else
        m_banner->hideProblem();
}

void MessageHost::showNotice()
{
    const auto& notice = m_model.notice();
    m_undoText = m_model.undoText();
    if (notice)
        m_toast->showNotice(qt(notice->text), buttonOf(notice->action));
    else if (m_toast->isVisible())
        m_toast->showNotice({});
}

void MessageHost::actOnProblem()
{
    const auto problem = m_model.problem();
    if (!problem)
        return;
    commitFocusedField(m_banner->window());
    switch (problem->action) {
    case Problem::Action::none:
        return;
    case Problem::Action::chooseFolder:
        return m_model.chooseLibraryFolder();
    case Problem::Action::checkForUpdates:
        emit updateCheckWanted();
        return;
    case Problem::Action::showBackups:
        emit backupsWanted();
        return;
    case Problem::Action::tryAgain:
        m_model.saveNow();
        return;
    case Problem::Action::showLibraryFolder:
        return m_model.showLibraryFolder();
    case Problem::Action::newClient:
        m_model.dismissProblem();
        emit newClientWanted();
        return;
    case Problem::Action::archiveClient:
        m_model.dismissProblem();
        if (problem->subject)
            m_model.clients().setArchived(*problem->subject, true);
        return;
    case Problem::Action::openInvoice:
        m_model.dismissProblem();
        if (problem->subject)
            m_model.show(AppSection::invoices, *problem->subject);
        return;
    }
}

void MessageHost::actOnNotice()
{
    const auto notice = m_model.notice();
    if (!notice)
        return;
    if (notice->action == Notice::Action::undo)
        m_model.undo();
    else if (notice->action == Notice::Action::show && notice->subject)
        m_model.invoices().openStoredPDF(*notice->subject);
    else if (notice->action == Notice::Action::show)
        m_model.showLibraryFolder();
    else if (notice->action == Notice::Action::showBackups)
        emit backupsWanted();
}

} // namespace Pallisande
