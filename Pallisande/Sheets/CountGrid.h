#pragma once

#include "PallisandeKit/Analyses/BandCounts.h"

#include <QWidget>

#include <array>

namespace Pallisande {

class CountCell;
class Formats;
class Label;

// Nine bands by words, segments and characters, to be typed or pasted from a spreadsheet.
class CountGrid : public QWidget {
    Q_OBJECT

public:
    // The column that the client is billed by stands first.
    CountGrid(const Formats& formats, RateUnit first, QWidget* parent);

    BandCounts counts() const;
    void setCounts(const BandCounts& counts);
    bool commit(); // All cells; false when one holds no count.
    QWidget* firstCell() const;

signals:
    void changed();
    void problemChanged(const QString& sentence); // Of the cells; empty: none.

private:
    enum Column { words, segments, characters };
    static BandMap<std::int64_t>& metric(BandCounts& counts, Column column);

    CountCell* cell(std::size_t row, std::size_t column) const;
    void move(std::size_t row, std::size_t column, int rows);
    void paste(std::size_t row, std::size_t column, const QString& text);
    void tell();
    void showTotals();

    const Formats& m_formats;
    std::array<Column, 3> m_columns;
    std::array<std::array<CountCell*, 3>, 9> m_cells {};
    std::array<Label*, 3> m_totals {};
    bool m_isFilling = false;
};

} // namespace Pallisande
