#include "Pallisande/Screens/Invoices/LockedLine.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/Painting.h"
#include "PallisandeKit/Records/Invoice.h"

#include <QGridLayout>
#include <QMouseEvent>

namespace Pallisande {

LockedLine::LockedLine(QWidget* parent)
    : QWidget(parent)
    , m_title(makeSentence({}, this))
    , m_detail(makeSentence({}, this, TextStyle::small, Ink::muted))
    , m_amount(new Label(this))
    , m_reckoning(new Label(this, TextStyle::small, Ink::muted))
{
    for (auto* label : { m_title, m_detail })
        label->setTextFormat(Qt::PlainText);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, Space::small, 0, Space::small);
    grid->setHorizontalSpacing(Space::large);
    grid->setVerticalSpacing(2);
    grid->setColumnStretch(0, 1);
    grid->addWidget(m_title, 0, 0, Qt::AlignTop);
    grid->addWidget(m_amount, 0, 1, Qt::AlignTop | Qt::AlignRight);
    grid->addWidget(m_detail, 1, 0, Qt::AlignTop);
    grid->addWidget(m_reckoning, 1, 1, Qt::AlignTop | Qt::AlignRight);
}

void LockedLine::show(const AppModel& model, const InvoiceLine& line, const QString& currency)
{
    const auto& formats = model.formats();
    m_title->setText(qt(line.title));
    m_detail->setText(qt(line.detail));
    m_detail->setVisible(!line.detail.empty());
    m_amount->setText(qt(formats.amount(line.amount, plain(currency))));
    // As it is printed: a line that is only an amount has neither quantity nor price.
    const bool isOnlyAmount = line.unit.empty() && line.quantity.magnitude() == Base::Decimal(1);
    auto text = qt(formats.number(line.quantity));
    if (!line.unit.empty())
        text += QLatin1Char(' ') + qt(line.unit);
    m_reckoning->setText(
        isOnlyAmount ? QString() : text + QStringLiteral(" × ") + qt(formats.rate(line.unitPrice)));
    m_reckoning->setVisible(!isOnlyAmount);
}

void LockedLine::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->pos()))
        emit touched();
}

void LockedLine::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    drawLineBelow(painter, rect(), Theme::of(this).colours.border);
}

} // namespace Pallisande
