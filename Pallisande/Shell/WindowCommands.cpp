#include "Pallisande/Shell/MainWindow.h"

#include "Pallisande/Screens/Text.h"
#include "Pallisande/Settings/SettingsWindow.h"
#include "Pallisande/Shell/BackupsWindow.h"
#include "Pallisande/Shell/HelpWindows.h"
#include "Pallisande/Shell/SearchField.h"
#include "Pallisande/Shell/SidebarPane.h"
#include "Pallisande/Shell/Toolbar.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/ThemeController.h"

#include <QApplication>
#include <QMenuBar>
#include <QMessageBox>

#include <algorithm>

// What is asked of the window: its parts, its look, and the windows beside it.
namespace Pallisande {

namespace {

constexpr int textSizes[] { 85, 100, 115, 130, 150, 175, 200 };

int nextSize(int size, int step)
{
    if (step > 0) {
        const auto* const larger = std::upper_bound(std::begin(textSizes), std::end(textSizes), size);
        return larger == std::end(textSizes) ? size : *larger;
    }
    const auto* const smaller = std::lower_bound(std::begin(textSizes), std::end(textSizes), size);
    return smaller == std::begin(textSizes) ? size : *(smaller - 1);
}

template <typename Window> void bringForward(Window* window)
{
    window->show();
    window->raise();
    window->activateWindow();
}

} // namespace

void restoreLook(ThemeController& theme, const ViewState& view)
{
    const auto appearance = view.text("appearance").value_or("");
    theme.setAppearance(appearance == "light" ? Appearance::light
            : appearance == "dark"            ? Appearance::dark
                                              : Appearance::system);
    if (const auto size = view.text("textSize"))
        theme.setTextSize(std::atoi(size->c_str()));
}

void MainWindow::answer(Command command)
{
    if (m_page && m_page->carryOut(command))
        return;
    switch (command) {
    case Command::find:
        m_toolbar->search()->setFocus(Qt::ShortcutFocusReason);
        m_toolbar->search()->selectAll();
        return;
    case Command::newClient:
        if (m_page)
            m_page->focusDetail();
        return;
    case Command::settings:
        return showSettings();
    case Command::keyboardShortcuts:
        if (!m_shortcuts)
            m_shortcuts = new ShortcutsWindow(*menuBar(), this);
        return bringForward(m_shortcuts.data());
    case Command::recentMessages:
        if (!m_recent)
            m_recent = new MessagesWindow(m_model, this);
        return bringForward(m_recent.data());
    case Command::about:
        (new AboutWindow(this))->open();
        return;
    case Command::checkForUpdates:
        return checkForUpdates();
    case Command::closeWindow:
    case Command::quit:
        close();
        return;
    default:
        return answerView(command);
    }
}

void MainWindow::answerView(Command command)
{
    auto& theme = m_services.theme;
    const auto setAppearance = [&](Appearance appearance, const char* name) {
        m_view.setText("appearance", name);
        theme.setAppearance(appearance);
    };
    const auto setSize = [&](int percent) {
        m_view.setText("textSize", std::to_string(percent));
        theme.setTextSize(percent);
    };
    switch (command) {
    case Command::sidebar:
        m_sidebar->setVisible(m_sidebar->isHidden());
        m_view.setFlag("hidesSidebar", m_sidebar->isHidden());
        break;
    case Command::systemAppearance:
        setAppearance(Appearance::system, "system");
        break;
    case Command::lightAppearance:
        setAppearance(Appearance::light, "light");
        break;
    case Command::darkAppearance:
        setAppearance(Appearance::dark, "dark");
        break;
    case Command::largerText:
        setSize(nextSize(theme.textSize(), 1));
        break;
    case Command::smallerText:
        setSize(nextSize(theme.textSize(), -1));
        break;
    case Command::actualSize:
        setSize(100);
        break;
    case Command::fullScreen:
        setWindowState(windowState() ^ Qt::WindowFullScreen);
        break;
    case Command::minimise:
        showMinimized();
        break;
    default:
        break;
    }
    showLook();
}

// What is on, for the menu.
void MainWindow::showLook()
{
    const auto appearance = m_services.theme.appearance();
    m_commands->action(Command::sidebar)->setChecked(!m_sidebar->isHidden());
    m_commands->action(Command::systemAppearance)->setChecked(appearance == Appearance::system);
    m_commands->action(Command::lightAppearance)->setChecked(appearance == Appearance::light);
    m_commands->action(Command::darkAppearance)->setChecked(appearance == Appearance::dark);
    m_commands->action(Command::fullScreen)->setChecked(isFullScreen());
}

void MainWindow::showSettings(int page)
{
    if (!m_settings) {
        m_settings = new SettingsWindow(m_model, this);
        m_settings->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_settings, &SettingsWindow::updateCheckWanted, this, &MainWindow::checkForUpdates);
        connect(m_settings, &SettingsWindow::backupsWanted, this, &MainWindow::showBackups);
    }
    m_settings->showPage(SettingsWindow::Page(page));
    bringForward(m_settings.data());
}

void MainWindow::showBackups()
{
    if (!m_backups)
        m_backups = new BackupsWindow(m_model, this);
    bringForward(m_backups.data());
}

// --- Updates

void MainWindow::checkForUpdates()
{
    if (m_services.updates)
        m_services.updates->checkByHand([this](const UpdateResult& result) { showUpdate(result); });
}

// Tells quietly; the page is opened from the menu.
void MainWindow::checkForUpdatesIfDue()
{
    if (!m_services.updates)
        return;
    m_services.updates->checkIfDue([this](const UpdateResult& result) {
        m_model.tell(Notice { .text = result.text + " Help › Check for Updates… opens its page." });
    });
}

void MainWindow::showUpdate(const UpdateResult& result)
{
    auto* box = new QMessageBox(this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setObjectName(QStringLiteral("updateResult"));
    box->setWindowTitle(qt(result.title));
    box->setText(qt(result.title));
    auto words = qt(result.text) + QLatin1String("\n\n") + qt(result.addition);
    const bool isFound = result.kind == UpdateResult::Case::found;
    if (isFound && !result.feed.notes.empty())
        words = qt(result.text) + QLatin1String("\n\n") + qt(result.feed.notes) + QLatin1String("\n\n")
            + qt(result.addition);
    box->setTextFormat(Qt::PlainText); // Whatever a feed holds.
    box->setInformativeText(words);
    if (isFound) {
        auto* open = box->addButton(QStringLiteral("Open Download Page"), QMessageBox::AcceptRole);
        box->addButton(QStringLiteral("Later"), QMessageBox::RejectRole);
        box->setDefaultButton(open);
        connect(open, &QPushButton::clicked, this, [this, page = qt(result.feed.page)] {
            if (m_services.openAddress)
                m_services.openAddress(page);
        });
    } else {
        box->addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
    }
    box->open();
}

} // namespace Pallisande
