#pragma once

#include "Pallisande/Model/AppModel.h"

#include <QDialog>

class QTabWidget;

namespace Pallisande {

class Banner;
class Toast;

// The settings: three pages that apply what is changed at once. Beside the window, not over it.
class SettingsWindow : public QDialog {
    Q_OBJECT

public:
    enum class Page { business, invoices, library };

    SettingsWindow(AppModel& model, QWidget* parent);

    void showPage(Page page);

signals:
    void updateCheckWanted();
    void backupsWanted(); // The window of backups.

protected:
    void done(int result) override; // What is typed is committed first.
    void changeEvent(QEvent* event) override;

private:
    void addKeys();
    void dress();
    void showProblem();

    AppModel& m_model;
    Banner* m_banner;
    QTabWidget* m_pages;
    Toast* m_toast;
};

} // namespace Pallisande
