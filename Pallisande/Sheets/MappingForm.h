#pragma once

#include "PallisandeKit/Analyses/ColumnMapping.h"

#include <QWidget>

#include <vector>

class QCheckBox;
class QGridLayout;

namespace Pallisande {

class ComboBox;
class Label;

// How a table is read, and what its columns hold: each with its heading and how it begins. Where the bands
// stand below each other, what the rows hold follows.
class MappingForm : public QWidget {
    Q_OBJECT

public:
    MappingForm(const MappingTable& table, QWidget* parent);

    const ColumnMapping& mapping() const { return m_mapping; }
    bool countsSomething() const; // A column of words or characters is chosen.
    QWidget* firstField() const;
    void setLabels(const std::vector<MappedLabel>& labels);
    void showReading(const MappingTable& table); // How the table is taken apart now.

signals:
    void changed();
    void anotherReadingWanted(const TableReading& reading); // With other columns, perhaps.

private:
    void addReading();
    void addColumns(const MappingTable& table);
    void setColumn(std::size_t column, int choice);
    void showLabels();
    bool hasLabelColumn() const;

    ColumnMapping m_mapping;
    ComboBox *m_delimiter, *m_decimalMark;
    QCheckBox* m_hasHeadings;
    std::vector<ComboBox*> m_columns;
    Label* m_rowsHeading;
    QWidget* m_rows;
};

} // namespace Pallisande
