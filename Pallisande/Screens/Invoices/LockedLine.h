#pragma once

#include <QWidget>

namespace Pallisande {

class AppModel;
struct InvoiceLine;
class Label;

// A line of an issued document: what was done at the left, what it comes to at the right, and smaller below
// them the detail and how the amount came about.
class LockedLine : public QWidget {
    Q_OBJECT

public:
    explicit LockedLine(QWidget* parent);

    void show(const AppModel& model, const InvoiceLine& line, const QString& currency);

signals:
    void touched();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    Label *m_title, *m_detail, *m_amount, *m_reckoning;
};

} // namespace Pallisande
