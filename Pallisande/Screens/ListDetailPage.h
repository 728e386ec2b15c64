#pragma once

#include "Pallisande/Screens/DetailPage.h"
#include "Pallisande/Screens/RecordListView.h"
#include "Pallisande/Screens/SectionPage.h"
#include "Pallisande/Widgets/EmptyPage.h"

class QPushButton;
class QSplitter;
class QStackedWidget;
class QVBoxLayout;

namespace Pallisande {

// A list at the left, 300 to 420 wide, and what is selected in it at the right. Where the list is empty, one
// page says why and what to do; a search without hits says «Nothing matches “{text}”.» with «Clear Search».
class ListDetailPage : public SectionPage {
    Q_OBJECT

public:
    ListDetailPage(const ScreenServices& services, RecordListView::Source source, QWidget* parent);

    RecordListView* list() const { return m_list; }
    std::vector<QWidget*> panes() const override;
    void focusList() override;
    void focusDetail() override; // Its first field.
    bool carryOut(Command command) override; // selectAll and copyRows.

protected:
    // To be called once: the page of a record, which need not be a DetailPage alone (a preview beside it).
    void setDetail(QWidget* detail);
    void setEmptyPage(EmptyPage* page); // Shown when there is no record at all.
    void setNothingSelected(const QString& sentence); // «Select a job to see its price.»
    void setFoot(QWidget* foot); // Under the list.
    // The current record is another one. What it holds may change afterwards: `libraryChanged` tells.
    virtual void showRecord(const Base::Uuid& id) = 0;
    virtual bool hasRecords() const = 0; // Whatever filters and search hide.

    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void refresh(); // Which of the pages stand where.
    void showCurrent();

    AppSection m_section;
    RecordListView* m_list;
    QSplitter* m_splitter;
    QStackedWidget *m_whole, *m_left, *m_right;
    EmptyPage *m_noHits, *m_nothingSelected;
    QPushButton* m_clearSearch;
    QVBoxLayout* m_leftColumn;
    QWidget* m_detail = nullptr;
    EmptyPage* m_empty = nullptr;
    std::optional<Base::Uuid> m_shown;
};

} // namespace Pallisande
