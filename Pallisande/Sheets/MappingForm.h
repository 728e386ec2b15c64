#pragma once

#include "PallisandeKit/Analyses/ColumnMapping.h"

#include <QWidget>

#include <vector>

class QGridLayout;

namespace Pallisande {

class ComboBox;
class Label;

// What the columns of a table hold: each with its heading and how it begins. Where the bands stand below each
// other, what the rows hold follows.
class MappingForm : public QWidget {
    Q_OBJECT

public:
    MappingForm(const MappingTable& table, QWidget* parent);

    const ColumnMapping& mapping() const { return m_mapping; }
    bool countsSomething() const; // A column of words or characters is chosen.
    QWidget* firstField() const;
    void setLabels(const std::vector<MappedLabel>& labels);

signals:
    void changed();

private:
    void addColumns(const MappingTable& table);
    void setColumn(std::size_t column, int choice);
    void showLabels();
    bool hasLabelColumn() const;

    ColumnMapping m_mapping;
    std::vector<ComboBox*> m_columns;
    Label* m_rowsHeading;
    QWidget* m_rows;
};

} // namespace Pallisande
