#pragma once

#include "Pallisande/Screens/Jobs/JobCard.h"
#include "PallisandeKit/Analyses/ColumnMapping.h"

class QMenu;

namespace Pallisande {

class ChipLabel;
class FiguresTable;
class Label;
class NoteLine;
class NoteList;
class TextField;

// One analysis of a job: where its numbers came from, what they are file by file, and what is to be said
// about them.
class AnalysisView : public QWidget {
    Q_OBJECT

public:
    AnalysisView(AppModel& model, QWidget* parent);

    void show(const Analysis& analysis, CountMetric metric, const QString& lockReason);
    void setOpen(bool isOpen);
    bool isOpen() const { return m_isOpen; }
    void focusFirst(); // What opens it.

signals:
    void renamed(const QString& name);
    void removeWanted();
    void reportWanted(); // The stored copy.
    void mapWanted();
    void countsWanted(); // Typed ones, to be changed.

private:
    void showRows(const Analysis& analysis, CountMetric metric);
    void rename();

    AppModel& m_model;
    QToolButton *m_opener, *m_more;
    Label *m_name, *m_summary;
    TextField* m_nameField;
    ChipLabel* m_verification;
    QMenu* m_menu;
    QAction *m_map, *m_changeCounts, *m_remove, *m_report, *m_rename;
    QWidget* m_body;
    FiguresTable* m_rows;
    NoteList *m_failures, *m_notes;
    bool m_isOpen = false;
};

} // namespace Pallisande
