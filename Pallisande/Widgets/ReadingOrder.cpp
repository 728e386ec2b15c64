#include "Pallisande/Widgets/ReadingOrder.h"

#include <QLayout>
#include <QWidget>

#include <vector>

namespace Pallisande {

namespace {

void gather(const QLayout* layout, std::vector<QWidget*>& found)
{
    for (int place = 0; layout && place < layout->count(); ++place) {
        auto* const item = layout->itemAt(place);
        if (item->layout())
            gather(item->layout(), found);
        auto* widget = item->widget();
        if (!widget)
            continue;
        if (widget->focusPolicy() & Qt::TabFocus && !widget->focusProxy())
            found.push_back(widget);
        else
            gather(widget->layout(), found);
    }
}

} // namespace

void orderByReading(QWidget* page)
{
    std::vector<QWidget*> found;
    gather(page->layout(), found);
    for (std::size_t place = 1; place < found.size(); ++place)
        QWidget::setTabOrder(found[place - 1], found[place]);
}

} // namespace Pallisande
