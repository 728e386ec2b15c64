#pragma once

#include <QWidget>

class QPushButton;

namespace Pallisande {

class AppModel;
class Label;

// Below the list: whether the numbers are gapless. What is wrong is opened in full.
class NumberingFoot : public QWidget {
    Q_OBJECT

public:
    NumberingFoot(AppModel& model, QWidget* parent);

    void refresh();
    void openFindings();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void dress();

    AppModel& m_model;
    Label* m_finding;
    QPushButton* m_open;
    bool m_isSound = true;
};

} // namespace Pallisande
