#pragma once

#include "PallisandeKit/Records/Job.h"

#include <QWidget>

#include <array>

class QGridLayout;
class QToolButton;

namespace Pallisande {

class DecimalEdit;
class FieldNote;
class Label;
class LineField;
class TextField;

// The fields of one extra line. Narrow, the title has a line of its own above the others.
class ExtraLineRow : public QWidget {
    Q_OBJECT

public:
    enum Column { title, quantity, unit, unitPrice, columnCount };

    explicit ExtraLineRow(QWidget* parent);

    // Another line than before: what is typed and not committed goes.
    void show(const ExtraLine& line, const QString& amount, const QString& lockReason);
    const Base::Uuid& id() const { return m_id; }
    LineField* field(Column column) const;
    void take(Column column, ExtraLine& line) const; // What the field holds.
    void setNarrow(bool isNarrow);
    void setLast(bool isLast) { m_isLast = isLast; }
    bool isBlank() const;
    void revert();

signals:
    void committed(int column);
    void removeWanted();
    void moveWanted(int column, int by); // Alt+Up and Alt+Down.
    void nextWanted(); // Tab in the last field of the last row, which says something.

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void dress();
    void showProblem();

    Base::Uuid m_id;
    bool m_isNarrow = false, m_isLast = false;
    TextField *m_title, *m_unit;
    DecimalEdit *m_quantity, *m_price;
    Label* m_amount;
    QToolButton* m_remove;
    FieldNote* m_note;
    QGridLayout* m_grid;
};

} // namespace Pallisande
