#pragma once

#include <QLineEdit>

#include <functional>

namespace Pallisande {

// A field whose text is handed over when the user is done with it, not at every key.
class Committing {
public:
    virtual ~Committing() = default;

    // Takes what was typed. False when it makes no sense; it stays in the field with the reason under it.
    virtual bool commit() = 0;
    virtual void revert() = 0;
};

// Before anything that may save, select or close: commits the field that has the focus (in `window`, or in
// the active one), and says whether that went well or there was nothing to do.
bool commitFocusedField(const QWidget* window = nullptr);

// A line of text that commits at Return and when the focus leaves it; Esc brings the committed text back.
// What can't be undone in it goes on to the window's Undo. An invalid text stays as typed: the committed
// value doesn't change and `problemChanged` gives the sentence that FormLayout shows under the field.
class LineField : public QLineEdit, public Committing {
    Q_OBJECT

public:
    explicit LineField(QWidget* parent = nullptr);

    bool commit() override;
    void revert() override; // Also before the field shows another record.
    bool isPending() const; // Typed and not committed.

    const QString& problem() const { return m_problem; }
    // A refusal from elsewhere, which stays until something else is typed; empty takes it away. What can be
    // known beforehand ("A rate can’t be below zero.") belongs into the field’s check, which leaves the
    // committed value alone.
    void setProblem(const QString& sentence);

    QSize sizeHint() const override;
    void setWidthInCharacters(int characters) { m_characters = characters; }

signals:
    void committed();
    void problemChanged(const QString& sentence);
    void hintChanged(const QString& sentence); // For a moment: how the text was read.

protected:
    struct Taken {
        QString problem; // The text makes no sense, and nothing was taken.
        QString hint;
        bool isNew = false;
    };
    virtual Taken take(const QString& typed) = 0;
    virtual QString shown() const = 0; // The committed value.

    // After the value was set from outside: shows it, unless the user is typing over the very same value.
    void valueWasSet(bool isAnother);
    void showCommitted();

    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

    bool m_selectsAll = true; // When it gets the focus.

private:
    void showProblem(const QString& sentence);

    QString m_problem;
    bool m_isRefused = false;
    int m_characters = 0;
    bool m_selectsAtRelease = false;
};

// Plain text: a title, a reference.
class TextField : public LineField {
    Q_OBJECT

public:
    explicit TextField(QWidget* parent = nullptr);

    const QString& value() const { return m_value; }
    void setValue(const QString& value);
    // The sentence that says what is wrong with a text; empty: nothing.
    void setCheck(std::function<QString(const QString&)> check) { m_check = std::move(check); }

protected:
    Taken take(const QString& typed) override;
    QString shown() const override { return m_value; }

private:
    QString m_value;
    std::function<QString(const QString&)> m_check;
};

} // namespace Pallisande
