#pragma once

#include "Pallisande/Screens/SectionPage.h"

#include <QWidget>

#include <map>

class QHBoxLayout;
class QStackedWidget;
class QToolButton;

namespace Pallisande {

class Label;
class SearchField;

// Above the page of a section: its title, its filters, its search, and at most two buttons.
class Toolbar : public QWidget {
    Q_OBJECT

public:
    Toolbar(AppModel& model, Commands& commands, QWidget* parent);

    // Pages are named once; what belongs to them is shown with them.
    void showPage(SectionPage* page, AppSection section);
    SearchField* search() const { return m_search; }
    QToolButton* inspectorButton() const { return m_inspector; }
    void refresh(); // How many records are found, and what there is room for.
    void focusFirst();

signals:
    void listWanted();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void dress();
    QWidget* filtersOf(SectionPage* page);
    void placeFilters(bool areBelow);

    AppModel& m_model;
    SectionPage* m_page = nullptr;
    Label *m_title, *m_count;
    QHBoxLayout *m_first, *m_second,
        *m_filters; // Filters stand in the second row where the first is too short.
    QWidget* m_filterHost;
    std::map<SectionPage*, QWidget*> m_filterRows;
    SearchField* m_search;
    QToolButton* m_inspector;
    std::map<AppSection, QWidget*> m_main; // The primary button of each.
};

} // namespace Pallisande
