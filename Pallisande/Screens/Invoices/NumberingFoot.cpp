#include "Pallisande/Screens/Invoices/NumberingFoot.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/Painting.h"
#include "Pallisande/Widgets/Popup.h"

#include <QEvent>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace Pallisande {

NumberingFoot::NumberingFoot(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_finding(makeSentence({}, this, TextStyle::small, Ink::muted))
    , m_open(makeButton(QStringLiteral("Show in Full"), ButtonKind::quiet, this))
{
    m_finding->setObjectName(QStringLiteral("numbering"));
    m_open->setObjectName(QStringLiteral("numberingOpen"));
    auto* box = new QVBoxLayout(this);
    box->setSpacing(0);
    box->addWidget(m_finding);
    box->addWidget(m_open, 0, Qt::AlignLeft);
    connect(m_open, &QPushButton::clicked, this, &NumberingFoot::openFindings);
    dress();
}

void NumberingFoot::refresh()
{
    const auto& findings = m_model.invoices().numbering();
    m_isSound = m_model.invoices().numberingIsSound();
    auto text = findings.empty() ? QString() : qt(findings.front());
    if (text.size() > 120)
        text = text.left(119) + QStringLiteral("…");
    if (findings.size() > 1)
        text += QStringLiteral(" (and %1 more)").arg(findings.size() - 1);
    m_finding->setText(text);
    m_finding->setInk(m_isSound ? Ink::muted : Ink::amber);
    m_open->setVisible(!m_isSound);
    update();
}

void NumberingFoot::openFindings()
{
    auto* popup = new Popup(window());
    popup->setObjectName(QStringLiteral("numberingFindings"));
    popup->content()->setContentsMargins(Space::large, Space::medium, Space::large, Space::medium);
    popup->content()->setSpacing(Space::small);
    popup->content()->addWidget(new Label(QStringLiteral("Numbering"), popup, TextStyle::bodyStrong));
    for (const auto& finding : m_model.invoices().numbering()) {
        auto* line = makeSentence(qt(finding), popup);
        line->setFixedWidth(Theme::of(this).scaled(320));
        line->setTextInteractionFlags(Qt::TextSelectableByMouse);
        popup->content()->addWidget(line);
    }
    popup->showBelow(this);
}

void NumberingFoot::paintEvent(QPaintEvent*)
{
    const auto& theme = Theme::of(this);
    QPainter painter(this);
    painter.fillRect(QRectF(0, 0, width(), hairline(painter)), theme.colours.border);
    const int side = theme.scaled(14), line = m_finding->fontMetrics().height();
    drawIcon(painter, m_isSound ? Icon::check : Icon::warning,
        QRectF(Space::medium, m_finding->y() + (line - side) / 2.0, side, side),
        theme.colours.tone(m_isSound ? Tone::green : Tone::amber).text);
}

void NumberingFoot::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && !m_isSound)
        openFindings();
}

void NumberingFoot::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void NumberingFoot::dress()
{
    const auto& theme = Theme::of(this);
    setPalette(theme.palette(theme.colours.content));
    layout()->setContentsMargins(
        Space::medium + theme.scaled(14) + Space::small, Space::small, Space::medium, Space::small);
}

} // namespace Pallisande
