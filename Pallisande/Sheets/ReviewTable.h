#pragma once

#include "PallisandeKit/Analyses/Analysis.h"
#include "PallisandeKit/Analyses/ColumnMapping.h"

#include <QWidget>

#include <array>

class QTableView;

namespace Pallisande {

class Formats;
class ReviewRows;

// The files of an analysis and their counts by band, with what these add up to and what the report says. The
// sums of all files stay in view below, however many there are.
class ReviewTable : public QWidget {
    Q_OBJECT

public:
    ReviewTable(const Analysis& analysis, const Formats& formats, QWidget* parent);

    void setMetric(CountMetric metric);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void measure();
    void layColumns();

    ReviewRows *m_files, *m_total;
    QTableView *m_body, *m_foot;
    std::array<int, 13> m_widths {};
};

} // namespace Pallisande
