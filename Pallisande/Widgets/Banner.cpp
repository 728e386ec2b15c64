#include "Pallisande/Widgets/Banner.h"

#include "Pallisande/Widgets/Accessibility.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/Painting.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>

namespace Pallisande {

Banner::Banner(QWidget* parent)
    : QWidget(parent)
    , m_icon(new QWidget(this))
    , m_sentence(makeSentence({}, this))
    , m_act(makeButton({}, ButtonKind::plain, this))
    , m_dismiss(makeIconButton(Icon::cross, QStringLiteral("Dismiss"), this))
{
    installAccessibility();
    setObjectName(QStringLiteral("banner"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    m_sentence->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_sentence->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    auto* box = new QHBoxLayout(this);
    box->setContentsMargins(Space::large, 7, Space::small, 7);
    box->setSpacing(Space::medium);
    box->addWidget(m_icon);
    box->addWidget(m_sentence, 1);
    box->addWidget(m_act);
    box->addWidget(m_dismiss);
    connect(m_act, &QPushButton::clicked, this, &Banner::acted);
    connect(m_dismiss, &QToolButton::clicked, this, &Banner::dismissed);
    dress();
    hide();
}

QString Banner::sentence() const { return m_sentence->text(); }

void Banner::showProblem(const QString& sentence, const QString& button)
{
    const bool isAnother = sentence != m_sentence->text() || isHidden();
    m_sentence->setText(sentence);
    m_act->setText(button);
    m_act->setVisible(!button.isEmpty());
    setAccessibleName(sentence);
    setVisible(!sentence.isEmpty());
    if (isAnother)
        announce(this, sentence);
}

void Banner::hideProblem() { showProblem({}); }

void Banner::paintEvent(QPaintEvent*)
{
    const auto& theme = Theme::of(this);
    const auto& [ink, tint] = theme.colours.tone(Tone::red);
    QPainter painter(this);
    painter.fillRect(rect(), tint);
    drawLineBelow(painter, rect(), theme.colours.border);
    const int size = theme.scaled(18);
    QRectF area(0, 0, size, size);
    area.moveCenter(QRectF(m_icon->geometry()).center());
    drawIcon(painter, Icon::warning, area, ink);
}

void Banner::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        emit dismissed();
    else
        QWidget::keyPressEvent(event);
}

void Banner::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void Banner::dress()
{
    const auto& theme = Theme::of(this);
    setPalette(theme.palette(theme.colours.tone(Tone::red).tint));
    m_icon->setFixedWidth(theme.scaled(18));
}

} // namespace Pallisande
