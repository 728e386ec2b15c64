#include "Pallisande/Widgets/NoteLine.h"

#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/Painting.h"

#include <QEvent>
#include <QVBoxLayout>

namespace Pallisande {

QString linkText(const QString& before, const QString& link)
{
    auto text = before.toHtmlEscaped();
    if (!link.isEmpty())
        text += (before.isEmpty() ? QString() : QStringLiteral("  "))
            + QStringLiteral("<a href=\"#\" style=\"text-decoration:none\">%1</a>").arg(link.toHtmlEscaped());
    return text;
}

NoteLine::NoteLine(QWidget* parent)
    : QWidget(parent)
    , m_text(makeSentence({}, this))
{
    auto* box = new QVBoxLayout(this);
    box->setSpacing(Space::tiny);
    auto* line = new QHBoxLayout;
    line->addWidget(m_text);
    box->addLayout(line);
    m_text->setTextFormat(Qt::RichText);
    connect(m_text, &QLabel::linkActivated, this, &NoteLine::followed);
    dress();
}

NoteLine::NoteLine(Icon icon, Tone tone, const QString& sentence, QWidget* parent)
    : NoteLine(parent)
{
    show(icon, tone, sentence);
}

void NoteLine::show(Icon icon, Tone tone, const QString& sentence, const QString& link)
{
    if (m_sentence == sentence && m_link == link && m_icon == icon && m_tone == tone)
        return;
    m_icon = icon;
    m_tone = tone;
    m_sentence = sentence;
    m_link = link;
    m_text->setInk(tone == Tone::grey ? Ink::muted : Ink::text);
    m_text->setText(linkText(sentence, link));
    m_text->setTextInteractionFlags(link.isEmpty() ? Qt::TextSelectableByMouse : Qt::TextBrowserInteraction);
    m_text->setFocusPolicy(link.isEmpty() ? Qt::NoFocus : Qt::StrongFocus);
    m_text->setAccessibleName(link.isEmpty() ? sentence : sentence + QStringLiteral(" ") + link);
    update();
}

void NoteLine::setSentence(const QString& sentence)
{
    show(m_icon, m_tone, sentence, m_link);
    setVisible(!sentence.isEmpty());
}

void NoteLine::setTinted(bool isTinted)
{
    m_isTinted = isTinted;
    dress();
}

QPushButton* NoteLine::addButton(const QString& text)
{
    m_button = makeButton(text, ButtonKind::quiet, this);
    static_cast<QVBoxLayout*>(layout())->addWidget(m_button, 0, Qt::AlignLeft);
    dress();
    return m_button;
}

void NoteLine::paintEvent(QPaintEvent*)
{
    const auto& theme = Theme::of(this);
    const auto& tone = theme.colours.tone(m_tone);
    QPainter painter(this);
    if (m_isTinted)
        drawSurface(painter, rect(), Radius::field, tone.tint);
    const int side = theme.iconSize(), line = m_text->fontMetrics().height(),
              edge = m_isTinted ? Space::medium : 0;
    const int left = layoutDirection() == Qt::RightToLeft ? width() - side - edge : edge;
    drawIcon(painter, m_icon, QRectF(left, m_text->y() + (line - side) / 2.0, side, side),
        m_tone == Tone::grey ? theme.colours.muted : tone.text);
}

void NoteLine::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void NoteLine::dress()
{
    const auto& theme = Theme::of(this);
    if (m_isTinted)
        setPalette(theme.palette(theme.colours.tone(m_tone).tint));
    // A quiet button has a margin before its text, with which it stands under the sentence.
    const int edge = m_isTinted ? Space::medium : 0, beside = theme.iconSize() + Space::small,
              own = m_button ? Space::small : 0, along = m_isTinted ? Space::small : 0;
    layout()->itemAt(0)->layout()->setContentsMargins(own, 0, 0, 0);
    layout()->setContentsMargins(edge + beside - own, along, edge, along);
}

NoteList::NoteList(QWidget* parent)
    : QWidget(parent)
{
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(Space::tiny);
    hide();
}

void NoteList::setNotes(std::vector<Note> notes)
{
    m_notes = std::move(notes);
    while (m_lines.size() < m_notes.size()) {
        auto* line = new NoteLine(this);
        connect(line, &NoteLine::followed, this, [this, at = m_lines.size()] {
            if (at < m_notes.size() && m_notes[at].follow) {
                const auto follow = m_notes[at].follow; // It may change the notes.
                follow();
            }
        });
        layout()->addWidget(line);
        m_lines.push_back(line);
    }
    for (std::size_t at = 0; at < m_lines.size(); ++at) {
        const bool isThere = at < m_notes.size();
        m_lines[at]->setVisible(isThere);
        if (isThere)
            m_lines[at]->show(m_notes[at].icon, m_notes[at].tone, m_notes[at].sentence, m_notes[at].link);
    }
    setVisible(!m_notes.empty());
}

} // namespace Pallisande
