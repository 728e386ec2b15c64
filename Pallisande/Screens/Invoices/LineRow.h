#pragma once

#include "PallisandeKit/Records/Invoice.h"

#include <QWidget>

#include <functional>
#include <vector>

class QGridLayout;
class QPushButton;
class QToolButton;

namespace Pallisande {

class AppModel;
class DecimalEdit;
class FieldNote;
class Label;
class TextField;

// One line of a draft in fields: beside each other where there is room, else below.
class LineRow : public QWidget {
    Q_OBJECT

public:
    enum class Shape { wide, narrow, narrowest }; // One row, three, four.
    enum Column { title, quantity, unit, price, amount, acts, columns };

    LineRow(AppModel& model, QWidget* parent);

    void show(const Base::Uuid& invoiceID, const InvoiceLine& line, int place, const QString& currency);
    const Base::Uuid& line() const { return m_line.id; }
    void setShape(Shape shape);
    // The width of a column of figures, the same in all rows.
    static int widthOf(const QWidget* widget, Column column);

    // The same field of another row takes the focus: after the line was moved.
    // Puts its fields and buttons behind that one in the order of Tab; gives the last of them.
    QWidget* chainAfter(QWidget* before);

    int focusedField() const;
    void focusField(int field);

signals:
    void moveWanted(int by);
    void removeWanted();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void arrange();
    void edit(const std::function<void(InvoiceLine&)>& change);
    void refreshMenu();

    AppModel& m_model;
    Base::Uuid m_invoiceID;
    InvoiceLine m_line;
    QString m_currency;
    Shape m_shape = Shape::wide;
    QGridLayout* m_grid;
    TextField *m_title, *m_detail, *m_unit;
    DecimalEdit *m_quantity, *m_price, *m_amount;
    std::vector<QWidget*> m_fields; // In reading order.
    FieldNote* m_note; // What is wrong with one of them.
    Label *m_times, *m_equals;
    QToolButton* m_menuButton;
    QPushButton* m_job; // «from job ›»
    QWidget* m_typed; // Says that the amount isn't quantity × price, and offers that.
    Label* m_typedText;
    QPushButton* m_reckon;
};

} // namespace Pallisande
