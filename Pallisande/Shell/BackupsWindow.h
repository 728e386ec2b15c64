#pragma once

#include "Pallisande/Model/AppModel.h"

#include <QDialog>

#include <memory>

class QPushButton;
class QTreeWidget;

namespace Pallisande {

class Label;

// Every copy of the library with what is in it; one of them can take the library's place, which is backed up
// first. The copies are read off the main thread, the newest first.
class BackupsWindow : public QDialog {
    Q_OBJECT

public:
    BackupsWindow(AppModel& model, QWidget* parent);

private:
    struct Content;
    void list();
    void readNext(std::size_t place);
    void restore();
    void refreshButton();

    AppModel& m_model;
    QTreeWidget* m_list;
    Label *m_explanation, *m_question;
    QPushButton *m_restore, *m_close;
    std::vector<std::filesystem::path> m_files;
    std::shared_ptr<int> m_run; // Another one: what was being read is forgotten.
    bool m_isAsking = false;
};

} // namespace Pallisande
