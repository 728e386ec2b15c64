#include "Pallisande/Widgets/Accessibility.h"

#include "Pallisande/Widgets/BandBar.h"
#include "Pallisande/Widgets/Banner.h"
#include "Pallisande/Widgets/Card.h"
#include "Pallisande/Widgets/Chip.h"
#include "Pallisande/Widgets/Toast.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace Pallisande {

namespace {

QAccessibleInterface* makeInterface(const QString&, QObject* object)
{
    auto* widget = qobject_cast<QWidget*>(object);
    if (qobject_cast<Banner*>(object) || qobject_cast<Toast*>(object))
        return new QAccessibleWidget(widget, QAccessible::AlertMessage);
    if (qobject_cast<BandBar*>(object))
        return new QAccessibleWidget(widget, QAccessible::Chart);
    if (qobject_cast<ChipLabel*>(object))
        return new QAccessibleWidget(widget, QAccessible::StaticText);
    if (qobject_cast<Card*>(object))
        return new QAccessibleWidget(widget, QAccessible::Grouping);
    return nullptr; // Qt's own.
}

} // namespace

void installAccessibility() { QAccessible::installFactory(makeInterface); } // A second time does nothing.

} // namespace Pallisande
