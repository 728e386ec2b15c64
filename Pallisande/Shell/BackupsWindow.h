#pragma once

#include "Pallisande/Model/LibraryCopies.h"

#include <QDialog>

class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace Pallisande {

class AppModel;
class ComparisonPane;
class Label;
class NoteLine;

// Every copy of the library with what is in it, also those of sync programs, and what restoring the chosen
// one would change. It takes the library's place when that is confirmed, and the library is backed up first.
// Records that only the issue log knows are offered above.
class BackupsWindow : public QDialog {
    Q_OBJECT

public:
    BackupsWindow(AppModel& model, QWidget* parent);
    ~BackupsWindow() override;

protected:
    void changeEvent(QEvent* event) override;

private:
    void makeList();
    void layOut();
    void measure(); // What the size of the text decides.
    void refreshList();
    void fill(QTreeWidgetItem& item, const LibraryCopies::Copy& copy) const;
    void refreshButtons();
    void refreshUnrecorded();
    const LibraryCopies::Copy* chosen() const;
    void compare();
    void ask(bool isAsking);
    void restore();
    void takeOver();
    void showMenu(const QPoint& place);

    AppModel& m_model;
    QTreeWidget* m_list;
    ComparisonPane* m_comparison;
    NoteLine *m_unrecorded, *m_readOnly;
    Label* m_question;
    QPushButton *m_restore, *m_showInFolder, *m_confirm, *m_cancel, *m_close;
    std::vector<std::filesystem::path> m_files; // Of the rows.
    bool m_isAsking = false, m_isOutdated = false;
};

} // namespace Pallisande
