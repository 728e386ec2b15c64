#pragma once

#include "Pallisande/Widgets/LineField.h"

#include <QPlainTextEdit>

namespace Pallisande {

// Notes and addresses: grows from 3 to 10 lines. Tab leaves it; Esc and leaving it commit.
class TextArea : public QPlainTextEdit, public Committing {
    Q_OBJECT

public:
    static constexpr int fewestLines = 3, mostLines = 10, leastWidth = 120;

    explicit TextArea(QWidget* parent = nullptr);

    const QString& value() const { return m_value; }
    void setValue(const QString& value);
    bool commit() override; // Always true.
    void revert() override;
    bool isPending() const { return toPlainText() != m_value; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return { leastWidth, sizeHint().height() }; }

signals:
    void committed();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    int heightOf(int lines) const;
    void dress();

    QString m_value;
    int m_lines = fewestLines;
};

} // namespace Pallisande
