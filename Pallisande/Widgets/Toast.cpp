#include "Pallisande/Widgets/Toast.h"

#include "Pallisande/Widgets/Accessibility.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/Painting.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QTimer>

#include <algorithm>

namespace Pallisande {

namespace {

constexpr int milliseconds = 6000, narrowest = 320, widest = 520;

} // namespace

Toast::Toast(QWidget* over)
    : QWidget(over)
    , m_sentence(makeSentence({}, this))
    , m_icon(new QWidget(this))
    , m_act(makeButton({}, ButtonKind::quiet, this))
    , m_time(new QTimer(this))
{
    installAccessibility();
    setObjectName(QStringLiteral("toast"));
    auto* box = new QHBoxLayout(this);
    box->setContentsMargins(shadowMargin + Space::large, shadowMargin + Space::medium,
        shadowMargin + Space::medium, shadowMargin + Space::medium);
    box->setSpacing(Space::medium);
    box->addWidget(m_icon);
    box->addWidget(m_sentence, 1);
    box->addWidget(m_act);
    m_time->setSingleShot(true);
    m_time->setInterval(milliseconds);
    connect(m_time, &QTimer::timeout, this, &Toast::end);
    connect(m_act, &QPushButton::clicked, this, [this] {
        emit acted();
        end();
    });
    m_act->installEventFilter(this);
    over->installEventFilter(this);
    dress();
    hide();
}

QString Toast::sentence() const { return m_sentence->text(); }

void Toast::showNotice(const QString& sentence, const QString& button)
{
    m_sentence->setText(sentence);
    m_act->setText(button);
    m_act->setVisible(!button.isEmpty());
    setAccessibleName(sentence);
    if (sentence.isEmpty())
        return hide();
    place();
    show();
    raise();
    m_time->start();
    announce(this, sentence);
}

void Toast::place()
{
    const auto& theme = Theme::of(this);
    const int room = parentWidget()->width() - 2 * Space::large;
    const int margins = 2 * shadowMargin;
    const int natural = sizeHint().width() - margins;
    const int text = m_sentence->fontMetrics().horizontalAdvance(m_sentence->text());
    const int wanted = natural - m_sentence->sizeHint().width() + text + Space::tiny;
    const int width = std::min(std::clamp(wanted, theme.scaled(narrowest),
                                   std::max(theme.scaled(widest), theme.scaled(narrowest))),
                          room)
        + margins;
    const int height
        = layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width) : sizeHint().height();
    setGeometry((parentWidget()->width() - width) / 2, parentWidget()->height() - height, width, height);
}

void Toast::end()
{
    if (isHidden())
        return;
    hide();
    m_time->stop();
    emit ended();
}

void Toast::resumeTime()
{
    if (isVisible() && !underMouse() && !m_act->hasFocus())
        m_time->start();
}

bool Toast::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize && !isHidden())
        place();
    if (watched == m_act && event->type() == QEvent::FocusIn)
        m_time->stop();
    if (watched == m_act && event->type() == QEvent::FocusOut)
        QTimer::singleShot(0, this, &Toast::resumeTime); // Once it has lost it.
    return QWidget::eventFilter(watched, event);
}

void Toast::paintEvent(QPaintEvent*)
{
    const auto& theme = Theme::of(this);
    QPainter painter(this);
    const auto surface = QRectF(rect()).adjusted(shadowMargin, shadowMargin, -shadowMargin, -shadowMargin);
    drawShadow(painter, surface, Radius::sheet, theme.colours.shadow);
    drawSurface(
        painter, surface, Radius::sheet, theme.colours.raised, theme.colours.border, hairline(painter));
    const int size = theme.scaled(18);
    QRectF area(0, 0, size, size);
    area.moveCenter(QRectF(m_icon->geometry()).center());
    drawIcon(painter, Icon::check, area, theme.colours.tone(Tone::green).text);
}

void Toast::enterEvent(QEnterEvent*) { m_time->stop(); }

void Toast::leaveEvent(QEvent*) { QTimer::singleShot(0, this, &Toast::resumeTime); }

void Toast::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void Toast::dress()
{
    const auto& theme = Theme::of(this);
    setPalette(theme.palette(theme.colours.raised));
    m_icon->setFixedWidth(theme.scaled(18));
    if (!isHidden())
        place();
}

} // namespace Pallisande
