#pragma once

#include "Pallisande/Model/AppModel.h"

#include <QScrollArea>

class QPushButton;

namespace Pallisande {

class ChipLabel;
class Label;

// The selected job of the board, to be read.
class JobInspector : public QScrollArea {
    Q_OBJECT

public:
    static constexpr int usualWidth = 360;

    JobInspector(AppModel& model, QWidget* parent);

    void showJob(std::optional<Base::Uuid> id);

signals:
    void openWanted();

protected:
    void changeEvent(QEvent* event) override;

private:
    void dress();

    AppModel& m_model;
    Label *m_title, *m_subtitle, *m_due, *m_price, *m_facts, *m_notes, *m_none;
    ChipLabel* m_status;
    QPushButton* m_open;
    QWidget* m_content;
};

} // namespace Pallisande
