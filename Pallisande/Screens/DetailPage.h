#pragma once

#include <QScrollArea>

class QVBoxLayout;

namespace Pallisande {

// The right-hand page of a section: one column of cards, at most 760 wide, that scrolls; what gets the focus
// is scrolled into view. Esc in it goes back to the list.
class DetailPage : public QScrollArea {
    Q_OBJECT

public:
    static constexpr int mostWidth = 760;

    explicit DetailPage(QWidget* parent);

    QVBoxLayout* column() const { return m_column; } // Header first, then cards, 16 apart.

signals:
    void listWanted();

protected:
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QVBoxLayout* m_column;
};

} // namespace Pallisande
