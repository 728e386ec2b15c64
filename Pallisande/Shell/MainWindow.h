#pragma once

#include "Pallisande/Model/UpdateCheck.h"
#include "Pallisande/Screens/SectionPage.h"

#include <QMainWindow>
#include <QPointer>

#include <map>

class QSplitter;
class QStackedWidget;
class QVBoxLayout;

namespace Pallisande {

class Banner;
class LibraryPage;
class MessageHost;
class SettingsWindow;
class SheetDialog;
class SheetHost;
class SidebarPane;
class Strips;
class ThemeController;
class Toast;
class Toolbar;

// What the window needs besides the model.
struct WindowServices {
    ThemeController& theme;
    UpdateCheck* updates = nullptr; // Absent: every check fails.
    std::function<void(const QString& address)> openAddress {};
    bool isSample = false;
    std::function<void()> openOwnLibrary {}; // In the place of sample data.
};

// Appearance and size of the text, as they were chosen in the menu View.
void restoreLook(ThemeController& theme, const ViewState& view);

// The one window: sidebar, toolbar, strips, banner, and the page of the section on show. Pages are made when
// they are first needed.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    static constexpr int leastWidth = 920, leastHeight = 600, usualWidth = 1200, usualHeight = 780;
    static constexpr int narrowSidebar = 1080; // Below this width it shows icons alone.

    MainWindow(AppModel& model, const WindowServices& services);
    ~MainWindow() override;

    Commands& commands() const { return *m_commands; }
    ViewState& view() { return m_view; }
    SectionPage* page() const { return m_page; } // Nothing while there is no library to show.
    SheetDialog* sheet() const;
    // Commits, saves and keeps the view; false when something couldn't be saved, which is told then.
    bool prepareToClose();
    // Of a second start, after which the window comes to the front.
    void takeOver(const std::vector<std::filesystem::path>& files, const std::string& activationToken);
    void checkForUpdates();
    void checkForUpdatesIfDue();
    void showBackups();
    void showSettings(int page = 0);

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void build();
    void connectAll();
    void showSection();
    SectionPage* pageOf(AppSection section);
    void fitToWidth();
    void answer(Command command);
    void answerView(Command command); // WindowCommands.cpp
    void showLook();
    void cyclePanes(int step);
    void dress();
    void showUpdate(const UpdateResult& result);
    void tellTitle();

    AppModel& m_model;
    WindowServices m_services;
    ViewState m_view;
    Commands* m_commands;
    QSplitter* m_splitter;
    SidebarPane* m_sidebar;
    QWidget* m_content;
    Toolbar* m_toolbar;
    Strips* m_strips;
    Banner* m_banner;
    QStackedWidget* m_pages;
    LibraryPage* m_libraryPage;
    Toast* m_toast;
    MessageHost* m_messages;
    SheetHost* m_sheets;
    std::map<AppSection, SectionPage*> m_made;
    SectionPage* m_page = nullptr;
    QPointer<SettingsWindow> m_settings;
    QPointer<QDialog> m_backups, m_shortcuts, m_recent;
    bool m_isRestored = false, m_mayLeaveUnsaved = false;
};

} // namespace Pallisande
