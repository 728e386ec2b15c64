#include "Pallisande/Widgets/Popup.h"

#include "Pallisande/Widgets/Painting.h"
#include "Pallisande/Widgets/Theme.h"

#include <QScreen>
#include <QVBoxLayout>

namespace Pallisande {

Popup::Popup(QWidget* opener)
    : QFrame(opener, Qt::Popup)
    , m_content(new QVBoxLayout(this))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_WindowPropagation);
    setPalette(Theme::of(opener).palette(Theme::of(opener).colours.raised));
    m_content->setContentsMargins(Space::small, Space::small, Space::small, Space::small);
    m_content->setSpacing(Space::tiny);
}

void Popup::showBelow(const QWidget* field)
{
    adjustSize();
    const auto screen = field->screen()->availableGeometry();
    auto place = field->mapToGlobal(QPoint(0, field->height() + Space::tiny));
    if (place.y() + height() > screen.bottom())
        place.setY(field->mapToGlobal(QPoint(0, 0)).y() - Space::tiny - height());
    place.setX(std::clamp(place.x(), screen.left(), std::max(screen.left(), screen.right() - width())));
    place.setY(std::max(place.y(), screen.top()));
    move(place);
    show();
}

void Popup::paintEvent(QPaintEvent*)
{
    const auto& colours = Theme::of(this).colours;
    QPainter painter(this);
    painter.fillRect(rect(), colours.raised);
    drawSurface(painter, rect(), 0, Qt::transparent, colours.border, hairline(painter));
}

} // namespace Pallisande
