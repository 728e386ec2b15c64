#pragma once

#include "Pallisande/Screens/Jobs/JobCard.h"

#include <vector>

class QVBoxLayout;

namespace Pallisande {

class ExtraLineRow;
class Label;

// What is billed besides the words: hours of review, a formatting fee.
class ExtraLinesCard : public JobCard {
    Q_OBJECT

public:
    ExtraLinesCard(const ScreenServices& services, QWidget* parent);

    void refresh() override;
    void addLine(); // And gives it the focus.

protected:
    void revert() override;
    void resizeEvent(QResizeEvent* event) override;

private:
    ExtraLineRow* addRow();
    void showColumns();

    QWidget* m_heads;
    QVBoxLayout* m_list;
    QPushButton* m_add;
    std::vector<ExtraLineRow*> m_rows; // The first of them are shown.
};

} // namespace Pallisande
