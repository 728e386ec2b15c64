#include "Pallisande/Widgets/LineField.h"

#include "Pallisande/Widgets/ThemeStyle.h"

#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QTimer>

namespace Pallisande {

bool commitFocusedField(const QWidget* window)
{
    auto* field = dynamic_cast<Committing*>(window ? window->focusWidget() : QApplication::focusWidget());
    return !field || field->commit();
}

LineField::LineField(QWidget* parent)
    : QLineEdit(parent)
{
}

bool LineField::commit()
{
    if (!isPending()) {
        if (!m_isRefused)
            showProblem({}); // The committed text was typed again.
        return m_problem.isEmpty();
    }
    const auto taken = take(text());
    m_isRefused = false;
    showProblem(taken.problem);
    if (!taken.problem.isEmpty())
        return false;
    showCommitted();
    emit hintChanged(taken.hint);
    if (taken.isNew)
        emit committed();
    return true;
}

void LineField::revert()
{
    setProblem({});
    showCommitted();
}

bool LineField::isPending() const { return text() != shown(); }

void LineField::setProblem(const QString& sentence)
{
    m_isRefused = !sentence.isEmpty();
    showProblem(sentence);
}

void LineField::showProblem(const QString& sentence)
{
    if (sentence == m_problem)
        return;
    m_problem = sentence;
    setInvalid(this, !sentence.isEmpty());
    emit problemChanged(sentence);
}

void LineField::valueWasSet(bool isAnother)
{
    if (isAnother || (!hasFocus() && m_problem.isEmpty()))
        revert();
}

void LineField::showCommitted()
{
    if (isPending()) // Setting the same text would throw the selection away.
        setText(shown());
}

QSize LineField::sizeHint() const
{
    auto size = QLineEdit::sizeHint();
    if (m_characters > 0) {
        const auto margins = textMargins();
        size.setWidth(fontMetrics().horizontalAdvance(QLatin1Char('0')) * m_characters + 20 + margins.left()
            + margins.right());
    }
    return size;
}

bool LineField::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        // QLineEdit claims these keys even when it has nothing to do for them.
        const auto* key = static_cast<QKeyEvent*>(event);
        if ((key->matches(QKeySequence::Undo) && !isUndoAvailable())
            || (key->matches(QKeySequence::Redo) && !isRedoAvailable())) {
            event->ignore();
            return false;
        }
    }
    return QLineEdit::event(event);
}

void LineField::keyPressEvent(QKeyEvent* event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && !(event->modifiers() & ~Qt::KeypadModifier)) {
        if (commit()) { // Goes on to the default button of a sheet.
            emit returnPressed();
            event->ignore();
        }
        return;
    }
    // In a sheet Esc is Cancel at once: what was typed there is kept for the next time.
    if (event->key() == Qt::Key_Escape && (isPending() || !m_problem.isEmpty())
        && !qobject_cast<QDialog*>(window())) {
        revert();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void LineField::focusInEvent(QFocusEvent* event)
{
    QLineEdit::focusInEvent(event);
    m_selectsAtRelease = m_selectsAll && event->reason() == Qt::MouseFocusReason;
    if (m_selectsAll && event->reason() != Qt::PopupFocusReason
        && event->reason() != Qt::ActiveWindowFocusReason)
        selectAll();
}

void LineField::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason) // Its own menu, whose Copy needs the selection.
        commit();
}

void LineField::mouseReleaseEvent(QMouseEvent* event)
{
    QLineEdit::mouseReleaseEvent(event);
    if (m_selectsAtRelease && !hasSelectedText())
        selectAll();
    m_selectsAtRelease = false;
}

TextField::TextField(QWidget* parent)
    : LineField(parent)
{
    m_selectsAll = false;
}

void TextField::setValue(const QString& value)
{
    const bool isAnother = value != m_value;
    m_value = value;
    valueWasSet(isAnother);
}

LineField::Taken TextField::take(const QString& typed)
{
    if (const auto problem = m_check ? m_check(typed) : QString(); !problem.isEmpty())
        return { .problem = problem };
    const bool isNew = typed != m_value;
    m_value = typed;
    return { .isNew = isNew };
}

} // namespace Pallisande
