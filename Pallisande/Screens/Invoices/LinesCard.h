#pragma once

#include "Base/Uuid.h"
#include "Pallisande/Screens/Invoices/LineRow.h"
#include "Pallisande/Widgets/Card.h"

#include <optional>
#include <vector>

class QGridLayout;
class QPushButton;

namespace Pallisande {

class AppModel;
struct Invoice;
class Label;
class LockedLine;
class NoteLine;

// The lines of a document and what they come to: fields on a draft, text on what is issued.
class LinesCard : public Card {
    Q_OBJECT

public:
    LinesCard(AppModel& model, QWidget* parent);

    void show(const Base::Uuid& id);
    void refresh();
    void addLine(); // And goes there.

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void showDraftLines(const Invoice& invoice, std::size_t count);
    void showLockedLines(const Invoice& invoice, std::size_t count);
    void showTotals(const Invoice& invoice);
    void showRemarks(const Invoice& invoice);
    void move(std::size_t row, int by);
    void remove(std::size_t row);
    LineRow::Shape shape() const;
    bool isWide() const { return shape() == LineRow::Shape::wide; }

    AppModel& m_model;
    std::optional<Base::Uuid> m_id;
    std::size_t m_most; // Of the lines that are on show.
    NoteLine *m_outdated, *m_others;
    QWidget* m_heads;
    QWidget* m_lines;
    std::vector<LineRow*> m_rows;
    QWidget* m_lastInRows; // By Tab.
    std::vector<LockedLine*> m_locked;
    Label* m_none;
    QPushButton *m_more, *m_add;
    QWidget* m_totals;
    std::vector<std::pair<Label*, Label*>> m_sums;
    LineRow::Shape m_shape = LineRow::Shape::narrow;
};

} // namespace Pallisande
