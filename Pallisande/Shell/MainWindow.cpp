#include "Pallisande/Shell/MainWindow.h"

#include "Pallisande/Screens/RecordListView.h"
#include "Pallisande/Settings/SettingsWindow.h"
#include "Pallisande/Shell/FilesQuestion.h"
#include "Pallisande/Shell/LibraryPage.h"
#include "Pallisande/Shell/ListMemory.h"
#include "Pallisande/Shell/MenuBar.h"
#include "Pallisande/Shell/MessageHost.h"
#include "Pallisande/Shell/SearchField.h"
#include "Pallisande/Shell/SheetHost.h"
#include "Pallisande/Shell/SidebarPane.h"
#include "Pallisande/Shell/Strips.h"
#include "Pallisande/Shell/Toolbar.h"
#include "Pallisande/Widgets/Banner.h"
#include "Pallisande/Widgets/LineField.h"
#include "Pallisande/Widgets/SidebarView.h"
#include "Pallisande/Widgets/ThemeController.h"
#include "Pallisande/Widgets/Toast.h"

#include <QApplication>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <QWindow>

namespace Pallisande {

MainWindow::MainWindow(AppModel& model, const WindowServices& services)
    : m_model(model)
    , m_services(services)
    , m_view(*model.services().preferences)
    , m_commands(new Commands(model, this))
{
    setObjectName(QStringLiteral("mainWindow"));
    setWindowIcon(applicationIcon());
    setAcceptDrops(true);
    setContextMenuPolicy(Qt::NoContextMenu);
    build();
    connectAll();
    dress();
    const auto geometry = m_view.text("geometry");
    if (!geometry || !restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(*geometry)))) {
        resize(usualWidth, usualHeight);
        if (const auto* const display = screen()) {
            const auto room = display->availableGeometry();
            resize(size().boundedTo(room.size()));
            move(room.center() - rect().center());
        }
    }
    m_sidebar->setVisible(!m_view.flag("hidesSidebar"));
    showLook();
    showSection();
}

MainWindow::~MainWindow() = default;

void MainWindow::build()
{
    m_splitter = new QSplitter(Qt::Horizontal, this);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(1);
    m_sidebar = new SidebarPane(m_model, *m_commands, m_splitter);
    m_content = new QWidget(m_splitter);
    m_toolbar = new Toolbar(m_model, *m_commands, m_content);
    m_strips = new Strips(m_model, m_services.isSample, m_content);
    m_banner = new Banner(m_content);
    m_pages = new QStackedWidget(m_content);
    m_libraryPage = new LibraryPage(m_model, m_pages);
    m_pages->addWidget(m_libraryPage);
    m_pages->setMinimumSize(0, 0);
    auto* column = new QVBoxLayout(m_content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_toolbar);
    column->addWidget(m_strips);
    column->addWidget(m_banner);
    column->addWidget(m_pages, 1);
    m_splitter->setStretchFactor(0, 0);
    m_splitter->setStretchFactor(1, 1);
    const auto kept = m_view.text("splitter.sidebar");
    m_splitter->setSizes({ kept ? std::atoi(kept->c_str()) : SidebarView::usualWidth, usualWidth });
    setCentralWidget(m_splitter);
    m_toast = new Toast(m_pages);
    m_messages = new MessageHost(m_model, m_banner, m_toast, this);
    m_sheets = new SheetHost(m_model, this);
    fillMenuBar(*menuBar(), m_model, *m_commands);
}

void MainWindow::connectAll()
{
    connect(m_splitter, &QSplitter::splitterMoved, this, [this] {
        if (!m_sidebar->sections()->isNarrow())
            m_view.setText("splitter.sidebar", std::to_string(m_splitter->sizes().front()));
    });
    connect(m_commands, &Commands::asked, this, &MainWindow::answer);
    connect(m_sidebar, &SidebarPane::libraryPageWanted, this, [this] { showSettings(2); });
    connect(m_toolbar, &Toolbar::listWanted, this, [this] {
        if (m_page)
            m_page->focusList();
    });
    connect(m_strips, &Strips::ownLibraryWanted, this, [this] {
        if (m_services.openOwnLibrary)
            m_services.openOwnLibrary();
    });
    connect(m_messages, &MessageHost::updateCheckWanted, this, &MainWindow::checkForUpdates);
    connect(m_messages, &MessageHost::backupsWanted, this, &MainWindow::showBackups);
    connect(
        m_messages, &MessageHost::newClientWanted, m_commands->action(Command::newClient), &QAction::trigger);
    connect(m_libraryPage, &LibraryPage::backupsWanted, this, &MainWindow::showBackups);
    connect(m_libraryPage, &LibraryPage::updateCheckWanted, this, &MainWindow::checkForUpdates);
    connect(&m_model, &AppModel::sectionChanged, this, &MainWindow::showSection);
    connect(&m_model, &AppModel::stateChanged, this, &MainWindow::showSection);
    connect(&m_model, &AppModel::sheetChanged, this, [this] {
        const auto& sheet = m_model.sheet();
        if (sheet && std::holds_alternative<NewJobSheet>(*sheet))
            pageOf(AppSection::jobs); // Leads on with the job, so it must see how it is added.
    });
    connect(&m_services.theme, &ThemeController::changed, this, &MainWindow::fitToWidth);
    const auto addKeys = [this](const QKeySequence& keys, int step) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, [this, step] { cyclePanes(step); });
    };
    addKeys(QKeySequence(Qt::Key_F6), 1);
    addKeys(QKeySequence(Qt::SHIFT | Qt::Key_F6), -1);
}

// --- The page on show

SectionPage* MainWindow::pageOf(AppSection section)
{
    auto& page = m_made[section];
    if (page)
        return page;
    const ScreenServices services { m_model, *m_commands, m_view };
    switch (section) {
    case AppSection::deadlines:
        page = makeDeadlinesPage(services, m_pages);
        break;
    case AppSection::jobs:
        page = makeJobsPage(services, m_pages);
        break;
    case AppSection::clients:
        page = makeClientsPage(services, m_pages);
        break;
    case AppSection::invoices:
        page = makeInvoicesPage(services, m_pages);
        break;
    }
    m_pages->addWidget(page);
    return page;
}

void MainWindow::showSection()
{
    const bool hasNothing = LibraryPage::isNeeded(m_model);
    if (!hasNothing && !m_isRestored) {
        m_isRestored = true;
        restoreLists(m_model, m_view);
    }
    m_page = hasNothing ? nullptr : pageOf(m_model.section());
    m_toolbar->showPage(m_page, m_model.section());
    m_pages->setCurrentWidget(m_page ? static_cast<QWidget*>(m_page) : m_libraryPage);
    tellTitle();
}

void MainWindow::tellTitle()
{
    setWindowTitle(
        m_page ? QStringLiteral("%1 – Pallisande").arg(m_page->title()) : QStringLiteral("Pallisande"));
}

SheetDialog* MainWindow::sheet() const { return m_sheets->dialog(); }

// --- Room

void MainWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    fitToWidth();
}

void MainWindow::fitToWidth()
{
    const auto& theme = Theme::of(this);
    const bool isNarrow = width() < theme.scaled(narrowSidebar);
    if (m_sidebar->sections()->isNarrow() == isNarrow)
        return;
    m_sidebar->setNarrow(isNarrow);
    const auto kept = m_view.text("splitter.sidebar");
    const int usual = kept ? std::atoi(kept->c_str()) : theme.scaled(SidebarView::usualWidth);
    const int wanted = isNarrow ? SidebarView::narrowWidth : usual;
    m_splitter->setSizes({ wanted, width() - wanted });
}

void MainWindow::showEvent(QShowEvent* event)
{
    QMainWindow::showEvent(event);
    fitToWidth();
}

void MainWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void MainWindow::dress() { setMinimumSize(leastWidth, leastHeight); }

// In reading order; those that hold nothing to focus, or aren't on show, are passed over.
void MainWindow::cyclePanes(int step)
{
    std::vector<QWidget*> panes { m_sidebar, m_toolbar, m_strips, m_banner };
    if (m_page) {
        const auto more = m_page->panes();
        panes.insert(panes.end(), more.begin(), more.end());
    } else {
        panes.push_back(m_libraryPage);
    }
    const auto firstOf = [](QWidget* pane) -> QWidget* {
        const auto takes = [](const QWidget* widget) {
            return widget->isVisible() && widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus);
        };
        if (!pane || !pane->isVisible())
            return nullptr;
        if (takes(pane))
            return pane;
        for (auto* widget = pane->nextInFocusChain(); widget != pane; widget = widget->nextInFocusChain()) {
            if (pane->isAncestorOf(widget) && takes(widget))
                return widget;
        }
        return nullptr;
    };
    std::erase_if(panes, [&](QWidget* pane) { return !firstOf(pane); });
    if (panes.empty())
        return;
    const auto* const focus = focusWidget();
    int now = step > 0 ? -1 : 0;
    for (int place = 0; place < std::ssize(panes); ++place) {
        const auto* const pane = panes[static_cast<std::size_t>(place)];
        if (focus && (pane == focus || pane->isAncestorOf(focus)))
            now = place;
    }
    const int count = static_cast<int>(panes.size());
    auto* const next = panes[static_cast<std::size_t>((now + step + count) % count)];
    if (m_page && !m_page->panes().empty() && next == m_page->panes().front())
        m_page->focusList();
    else
        firstOf(next)->setFocus(Qt::TabFocusReason);
}

// --- Files

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (m_page && m_model.canEdit() && !filesOf(event->mimeData()).empty()) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }
}

void MainWindow::dropEvent(QDropEvent* event)
{
    event->setDropAction(Qt::CopyAction);
    event->accept();
    commitFocusedField(this);
    askAboutFiles(m_model, filesOf(event->mimeData()), this);
}

void MainWindow::takeOver(const std::vector<std::filesystem::path>& files, const std::string& activationToken)
{
    if (!activationToken.empty())
        qputenv(
            "XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(activationToken)); // Read when it is raised.
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    commitFocusedField(this);
    askAboutFiles(m_model, files, this);
}

// --- Closing

bool MainWindow::prepareToClose()
{
    commitFocusedField(this);
    m_view.setText("geometry", saveGeometry().toBase64().toStdString());
    if (m_isRestored)
        storeLists(m_model, m_view);
    return m_model.prepareToQuit();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (prepareToClose()) {
        m_toast->hide();
        QMainWindow::closeEvent(event);
        return;
    }
    event->ignore(); // The banner says why.
    if (!std::exchange(m_mayLeaveUnsaved, true))
        return;
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Pallisande"),
        QStringLiteral("Your last changes couldn’t be saved."), QMessageBox::NoButton, this);
    box.setObjectName(QStringLiteral("leaveUnsaved"));
    box.setInformativeText(QStringLiteral("If you quit now, they are lost."));
    auto* quit = box.addButton(QStringLiteral("Quit Without Saving"), QMessageBox::DestructiveRole);
    box.setDefaultButton(box.addButton(QStringLiteral("Don’t Quit"), QMessageBox::RejectRole));
    box.exec();
    if (box.clickedButton() == quit)
        event->accept();
}

} // namespace Pallisande
