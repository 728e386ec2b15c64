#pragma once

#include "Pallisande/Model/AppModel.h"

#include <QLineEdit>

#include <memory>

namespace Pallisande {

// Finds in the list of the section on show, a moment after the last key. Down and Return go to the list; Esc
// clears, and leaves when there is nothing to clear.
class SearchField : public QLineEdit {
    Q_OBJECT

public:
    SearchField(AppModel& model, QWidget* parent);

    void showSection(AppSection section, const QString& hint);
    void flush(); // What was typed is searched at once.

signals:
    void listWanted();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    QSize sizeHint() const override;

private:
    void dress();

    AppModel& m_model;
    AppSection m_section = AppSection::deadlines;
    std::unique_ptr<PendingTask> m_pending;
    QAction* m_clear;
};

} // namespace Pallisande
