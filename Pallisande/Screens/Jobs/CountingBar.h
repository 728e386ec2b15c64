#pragma once

#include "Pallisande/Model/AppModel.h"

#include <QWidget>

class QProgressBar;
class QPushButton;

namespace Pallisande {

class ElidedLabel;

// «Counting 3 of 12: manual.docx» with a bar and Cancel, while documents are counted.
class CountingBar : public QWidget {
    Q_OBJECT

public:
    CountingBar(AppModel& model, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void refresh();

    AppModel& m_model;
    ElidedLabel* m_text;
    QProgressBar* m_bar;
    QPushButton* m_cancel;
    int m_announced = -1; // The last quarter that a screen reader heard of.
};

} // namespace Pallisande
