#include "Pallisande/Widgets/EmptyPage.h"

#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/Painting.h"

#include <QHBoxLayout>

namespace Pallisande {

namespace {

constexpr int textWidth = 420, dropWidth = 480, dropHeight = 220;

} // namespace

EmptyPage::EmptyPage(Icon icon, const QString& sentence, QWidget* parent)
    : QWidget(parent)
    , m_icon(icon)
    , m_iconPlace(new QWidget(this))
    , m_sentence(makeSentence(sentence, this))
    , m_explanation(makeSentence({}, this, TextStyle::small, Ink::muted))
    , m_buttons(new QHBoxLayout)
{
    auto* middle = new QVBoxLayout;
    middle->setSpacing(Space::medium);
    m_iconPlace->setFixedSize(36, 36);
    middle->addWidget(m_iconPlace, 0, Qt::AlignHCenter);
    for (auto* label : { m_sentence, m_explanation }) {
        label->setAlignment(Qt::AlignHCenter);
        label->setMaximumWidth(textWidth * 2);
        label->setMinimumWidth(textWidth / 2);
        middle->addWidget(label);
    }
    m_explanation->hide();
    m_buttons->setSpacing(Space::small);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addLayout(m_buttons);
    buttons->addStretch();
    middle->addSpacing(Space::tiny);
    middle->addLayout(buttons);

    auto* box = new QGridLayout(this);
    box->setContentsMargins(Space::page, Space::page, Space::page, Space::page);
    box->addLayout(middle, 1, 1);
    box->setRowStretch(0, 2);
    box->setRowStretch(2, 3); // A little above the middle, where the eye looks for it.
    box->setColumnStretch(0, 1);
    box->setColumnStretch(1, 10);
    box->setColumnStretch(2, 1);
}

void EmptyPage::setSentence(const QString& sentence) { m_sentence->setText(sentence); }

void EmptyPage::setExplanation(const QString& sentence)
{
    m_explanation->setText(sentence);
    m_explanation->setVisible(!sentence.isEmpty());
}

QPushButton* EmptyPage::addButton(const QString& text, ButtonKind kind)
{
    auto* button = makeButton(text, kind, this);
    m_buttons->addWidget(button);
    return button;
}

void EmptyPage::setDropArea(bool isDropArea)
{
    m_isDropArea = isDropArea;
    update();
}

void EmptyPage::setMarked(bool isMarked)
{
    m_isMarked = isMarked;
    update();
}

void EmptyPage::paintEvent(QPaintEvent*)
{
    const auto& colours = Theme::of(this).colours;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_isDropArea || m_isMarked) {
        QRectF area(0, 0, std::max(dropWidth, m_sentence->width() + 2 * Space::group),
            std::max(dropHeight, layout()->itemAt(0)->geometry().height() + 2 * Space::page));
        area.moveCenter(QRectF(layout()->itemAt(0)->geometry()).center());
        area = area.intersected(QRectF(rect()).adjusted(1, 1, -1, -1));
        painter.setPen(QPen(m_isMarked ? colours.accent : colours.outline, m_isMarked ? 2 : 1, Qt::DashLine));
        painter.setBrush(m_isMarked ? blend(colours.window, colours.accent, 0.06) : QColor(Qt::transparent));
        painter.drawRoundedRect(area, Radius::sheet, Radius::sheet);
    }
    drawIcon(painter, m_icon, m_iconPlace->geometry(), colours.muted);
}

} // namespace Pallisande
