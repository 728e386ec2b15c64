#include "Pallisande/Widgets/Label.h"

#include "Pallisande/Widgets/Painting.h"

#include <QAccessible>
#include <QEvent>
#include <QPainter>

namespace Pallisande {

Label::Label(QWidget* parent, TextStyle style, Ink ink)
    : Label(QString(), parent, style, ink)
{
}

Label::Label(const QString& text, QWidget* parent, TextStyle style, Ink ink)
    : QLabel(text, parent)
    , m_style(style)
    , m_ink(ink)
{
    setTextFormat(Qt::PlainText); // Titles of jobs may look like markup.
    dress();
}

void Label::setInk(Ink ink)
{
    m_ink = ink;
    dress();
}

void Label::setStyle(TextStyle style)
{
    m_style = style;
    dress();
}

// Backwards, Qt finds the link that a text begins with again and again, and Shift+Tab would never leave it.
bool Label::focusNextPrevChild(bool next)
{
    return next ? QLabel::focusNextPrevChild(true) : QWidget::focusNextPrevChild(false);
}

void Label::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void Label::dress()
{
    const auto& theme = Theme::of(this);
    setFont(theme.font(m_style));
    QPalette ours;
    ours.setColor(QPalette::WindowText, theme.colours.ink(m_ink));
    ours.setColor(QPalette::Disabled, QPalette::WindowText, theme.colours.disabled);
    setPalette(ours);
}

Label* makeSentence(const QString& text, QWidget* parent, TextStyle style, Ink ink)
{
    auto* label = new Label(text, parent, style, ink);
    label->setWordWrap(true);
    return label;
}

QSize ElidedLabel::minimumSizeHint() const
{
    return { fontMetrics().averageCharWidth() * 4, QLabel::minimumSizeHint().height() };
}

void ElidedLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setPen(
        palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    drawLine(painter, contentsRect(), text(), alignment());
}

void ElidedLabel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    setToolTip(fontMetrics().horizontalAdvance(text()) > width() ? text() : QString());
}

void announce(QWidget* about, const QString& sentence)
{
    if (sentence.isEmpty())
        return;
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent event(about, sentence);
#else
    QAccessibleEvent event(about, QAccessible::Alert);
#endif
    QAccessible::updateAccessibility(&event);
}

} // namespace Pallisande
