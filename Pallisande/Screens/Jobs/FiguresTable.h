#pragma once

#include "PallisandeKit/Analyses/MatchBand.h"

#include <QTableWidget>

#include <optional>
#include <vector>

namespace Pallisande {

// Figures in rows, nothing to edit. It is as high as its rows, up to a number of them, and takes the room of
// its widest column last from the first.
class FiguresTable : public QTableWidget {
    Q_OBJECT

public:
    struct Cell {
        QString text;
        QString toolTip;
        std::optional<MatchBand> swatch; // Before the text.
        bool hasHint = false; // ⓘ: the tooltip says more, and so does a sentence below.
    };
    struct Row {
        std::vector<Cell> cells;
        QString spoken; // One sentence.
        bool isTotal = false, isMuted = false;
    };

    explicit FiguresTable(QWidget* parent);

    // Without heads: the columns' number alone. `toolTips` are the heads in full.
    void setHeads(const QStringList& heads, const QStringList& toolTips = {});
    void setRows(const std::vector<Row>& rows, bool floorIsDotted = false);
    void setMostRows(int rows) { m_mostRows = rows; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void show(const Row& row, int place);
    void measure();

    std::vector<Row> m_rows;
    bool m_floorIsDotted = false;
    int m_mostRows = 12;
};

} // namespace Pallisande
