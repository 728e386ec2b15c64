#include "Pallisande/Widgets/TextArea.h"

#include "Pallisande/Widgets/Theme.h"

#include <QKeyEvent>

#include <algorithm>

namespace Pallisande {

TextArea::TextArea(QWidget* parent)
    : QPlainTextEdit(parent)
{
    setTabChangesFocus(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false); // The field’s own surface shows through.
    connect(document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
        [this](const QSizeF& size) { // Whose height is in lines.
            const int lines = std::clamp(static_cast<int>(size.height()), fewestLines, mostLines);
            setVerticalScrollBarPolicy(
                size.height() > mostLines ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
            if (lines != m_lines) {
                m_lines = lines;
                updateGeometry();
            }
        });
    dress();
}

void TextArea::setValue(const QString& value)
{
    const bool isAnother = value != m_value;
    m_value = value;
    if (isAnother || !hasFocus())
        revert();
}

bool TextArea::commit()
{
    if (isPending()) {
        m_value = toPlainText();
        emit committed();
    }
    return true;
}

void TextArea::revert()
{
    if (isPending())
        setPlainText(m_value);
}

int TextArea::heightOf(int lines) const
{
    const auto margins = viewportMargins();
    return static_cast<int>(
               QFontMetricsF(font()).lineSpacing() * lines + 2 * document()->documentMargin() + 0.99)
        + margins.top() + margins.bottom() + 2 * frameWidth();
}

QSize TextArea::sizeHint() const { return { Theme::of(this).scaled(320), heightOf(m_lines) }; }

bool TextArea::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if ((key->matches(QKeySequence::Undo) && !document()->isUndoAvailable())
            || (key->matches(QKeySequence::Redo) && !document()->isRedoAvailable())) {
            event->ignore();
            return false;
        }
    }
    return QPlainTextEdit::event(event);
}

void TextArea::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && isPending()) {
        commit();
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

void TextArea::focusOutEvent(QFocusEvent* event)
{
    QPlainTextEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason)
        commit();
}

void TextArea::changeEvent(QEvent* event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void TextArea::dress()
{
    document()->setDocumentMargin(Space::tiny);
    setViewportMargins(Space::tiny - frameWidth(), 2, 2, 2);
    updateGeometry();
}

} // namespace Pallisande
