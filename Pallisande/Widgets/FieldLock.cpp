#include "Pallisande/Widgets/FieldLock.h"

#include "Pallisande/Widgets/LineField.h"
#include "Pallisande/Widgets/TextArea.h"

#include <QCheckBox>
#include <QComboBox>
#include <QVariant>

namespace Pallisande {

namespace {

constexpr const char *marked = "marksChange", *locked = "isLocked", *ownTip = "ownToolTip";

// Whether the widget is one that is locked, and then does it.
bool lock(QWidget& widget, bool isLocked)
{
    if (auto* line = qobject_cast<LineField*>(&widget))
        line->setReadOnly(isLocked);
    else if (auto* area = qobject_cast<TextArea*>(&widget))
        area->setReadOnly(isLocked);
    else if (qobject_cast<QComboBox*>(&widget) || qobject_cast<QCheckBox*>(&widget)
        || widget.property(marked).toBool())
        widget.setEnabled(!isLocked);
    else
        return false;
    return true;
}

} // namespace

void marksChange(QAbstractButton* button) { button->setProperty(marked, true); }

void setLocked(QWidget& page, bool isLocked, const QString& reason)
{
    for (auto* widget : page.findChildren<QWidget*>()) {
        if (widget->property(locked).toBool() == isLocked || !lock(*widget, isLocked))
            continue;
        widget->setProperty(locked, isLocked);
        if (isLocked)
            widget->setProperty(ownTip, widget->toolTip());
        widget->setToolTip(isLocked ? reason : widget->property(ownTip).toString());
    }
}

} // namespace Pallisande
