#include "Pallisande/Settings/SettingsWindow.h"

#include "Pallisande/Screens/Text.h"
#include "Pallisande/Settings/BusinessSettings.h"
#include "Pallisande/Settings/InvoiceSettings.h"
#include "Pallisande/Settings/LibrarySettings.h"
#include "Pallisande/Widgets/Banner.h"
#include "Pallisande/Widgets/Icons.h"
#include "Pallisande/Widgets/Toast.h"

#include <QShortcut>
#include <QTabWidget>

namespace Pallisande {

namespace {

constexpr int usualWidth = 640, usualHeight = 560, leastWidth = 560, leastHeight = 360,
              mostOfLeastWidth = 800;

} // namespace

SettingsWindow::SettingsWindow(AppModel& model, QWidget* parent)
    : QDialog(parent)
    , m_model(model)
    , m_banner(new Banner(this))
    , m_pages(new QTabWidget(this))
    , m_toast(new Toast(m_pages))
{
    setWindowTitle(QStringLiteral("Settings"));
    setModal(false);
    auto* library = new LibrarySettings(model, m_pages);
    m_pages->addTab(
        new BusinessSettings(model, m_pages), themedIcon(Icon::person), QStringLiteral("Business"));
    m_pages->addTab(
        new InvoiceSettings(model, m_pages), themedIcon(Icon::invoice), QStringLiteral("Invoices"));
    m_pages->addTab(library, themedIcon(Icon::folder), QStringLiteral("Library"));
    m_pages->setDocumentMode(true);
    m_pages->setAccessibleName(QStringLiteral("Pages"));
    m_pages->tabBar()->setAccessibleName(QStringLiteral("Pages"));
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
    box->addWidget(m_banner);
    box->addWidget(m_pages, 1);
    m_banner->hideProblem();
    dress();
    resize(Theme::of(this).scaled(usualWidth), usualHeight);
    addKeys();

    connect(library, &LibrarySettings::updateCheckWanted, this, &SettingsWindow::updateCheckWanted);
    connect(library, &LibrarySettings::backupsWanted, this, &SettingsWindow::backupsWanted);
    connect(&model, &AppModel::problemChanged, this, &SettingsWindow::showProblem);
    connect(&model, &AppModel::noticeChanged, this, [this] {
        if (isVisible() && m_model.notice())
            m_toast->showNotice(qt(m_model.notice()->text));
    });
    connect(m_banner, &Banner::dismissed, this, [this] { m_model.dismissProblem(); });
}

void SettingsWindow::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void SettingsWindow::dress()
{
    setMinimumSize(std::min(Theme::of(this).scaled(leastWidth), mostOfLeastWidth), leastHeight);
}

void SettingsWindow::showPage(Page page) { m_pages->setCurrentIndex(static_cast<int>(page)); }

void SettingsWindow::addKeys()
{
    const auto add = [this](const QKeySequence& keys, auto act) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, act);
    };
    for (int page = 0; page < m_pages->count(); ++page)
        add(QKeySequence(QStringLiteral("Ctrl+%1").arg(page + 1)),
            [this, page] { m_pages->setCurrentIndex(page); });
    add(Qt::CTRL | Qt::Key_W, [this] { close(); });
    // The window's own keys don't reach here.
    add(QKeySequence::Undo, [this] {
        if (commitFocusedField(this))
            m_model.undo();
    });
    add(QKeySequence::Redo, [this] { m_model.redo(); });
}

// Those that arise while it is open, so that nobody has to look behind it.
void SettingsWindow::showProblem()
{
    if (!m_model.problem())
        m_banner->hideProblem();
    else if (isVisible())
        m_banner->showProblem(qt(m_model.problem()->text));
}

void SettingsWindow::done(int result)
{
    commitFocusedField(this);
    QDialog::done(result);
}

} // namespace Pallisande
