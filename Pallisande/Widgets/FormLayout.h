#pragma once

#include "Pallisande/Widgets/Label.h"

#include <QWidget>

class QGridLayout;
class QVBoxLayout;

namespace Pallisande {

class LineField;

// One line under a field: ⚠ and what is wrong with it, or for four seconds how it was read.
class FieldNote : public QWidget {
    Q_OBJECT

public:
    explicit FieldNote(QWidget* field, QWidget* parent);

    void showProblem(const QString& sentence);
    void showHint(const QString& sentence);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void dress();

    QWidget* m_field;
    Label* m_sentence;
    QTimer* m_hintEnds;
    QString m_ownDescription; // Of the field, to which the problem is added.
    bool m_isProblem = false;
};

// Two columns: labels at the right of theirs, fields as wide as their content; where that is too narrow, each
// label stands above its field. Each label is its field’s buddy and accessible name; problems and hints of
// LineFields appear below them; other fields use the note that addRow returns.
class FormLayout : public QWidget {
    Q_OBJECT

public:
    explicit FormLayout(QWidget* parent = nullptr);

    // The label may name a mnemonic (“&Client”). Stretching fields take the whole width.
    enum class Width { natural, stretching };
    FieldNote* addRow(const QString& label, QWidget* field, Width width = Width::natural);
    // Under the last field: an explanation, a link.
    void addBelow(QWidget* widget);
    void addBelow(const QString& explanation);
    void setRowVisible(QWidget* field, bool isVisible);

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void measure();
    void fit(); // Labels beside their fields, or above them.
    void place(std::size_t row);

    struct Row {
        QWidget *label, *field, *note;
        QVBoxLayout* cell;
    };
    QGridLayout* m_grid;
    std::vector<Row> m_rows;
    bool m_isNarrow = false;
};

} // namespace Pallisande
