#pragma once

#include "TamberlinKit/Batch/CountBatch.h"

#include <QTableView>

#include <filesystem>
#include <vector>

namespace Pallisande {

class Formats;
class CountedRows;

// The files of a count, each with a check box: Space and a click take a file in or leave it out.
class CountedFiles : public QTableView {
    Q_OBJECT

public:
    using Paths = std::vector<std::filesystem::path>;

    CountedFiles(
        const Paths& paths, const Tamberlin::BatchCount& batch, const Formats& formats, QWidget* parent);

    Paths taken() const; // In their order.
    // What repeats depends on the files that are taken.
    void setCounts(const Paths& paths, const Tamberlin::BatchCount& batch);

signals:
    void takenChanged();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void toggle(int row);
    void measure();

    CountedRows* m_rows;
};

} // namespace Pallisande
