#pragma once

#include "Pallisande/Widgets/Label.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAccessible>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QWidget>

#include <string>
#include <vector>

// What any window of ours must pass, whatever it shows. Each answer is empty, or names what fails.

// Texts that don't fit into the widgets that show them.
inline std::vector<std::string> clippedTexts(QWidget& window)
{
    std::vector<std::string> found;
    for (auto* widget : window.findChildren<QWidget*>()) {
        if (!widget->isVisibleTo(&window) || qobject_cast<Pallisande::ElidedLabel*>(widget))
            continue;
        const auto metrics = widget->fontMetrics();
        const auto check = [&](const QString& text, QSize room) {
            const auto size = metrics.size(Qt::TextShowMnemonic, text);
            if (!text.isEmpty() && (size.width() > room.width() || metrics.height() > room.height()))
                found.push_back(text.toStdString());
        };
        if (const auto* label = qobject_cast<QLabel*>(widget)) {
            if (label->wordWrap() && label->heightForWidth(label->width()) > label->height())
                found.push_back(label->text().toStdString());
            if (!label->wordWrap())
                check(label->text(), label->contentsRect().size());
        } else if (const auto* button = qobject_cast<QAbstractButton*>(widget)) {
            const int icon = button->icon().isNull() ? 0 : button->iconSize().width() + 4;
            check(button->text(), button->size() - QSize(icon, 0));
        } else if (const auto* line = qobject_cast<QLineEdit*>(widget)) {
            check(line->text(), line->size() - QSize(16, 2));
        } else if (const auto* box = qobject_cast<QComboBox*>(widget)) {
            check(box->currentText(), box->size() - QSize(box->iconSize().width() + 8, 2));
        }
    }
    return found;
}

// Widgets that the keyboard reaches and a screen reader can't name.
inline std::vector<std::string> namelessWidgets(QWidget& window)
{
    std::vector<std::string> found;
    for (auto* widget : window.findChildren<QWidget*>()) {
        if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisibleTo(&window)
            || widget->objectName().startsWith(QLatin1String("qt_")))
            continue;
        const auto* interface = QAccessible::queryAccessibleInterface(widget);
        if (!interface || interface->text(QAccessible::Name).isEmpty())
            found.push_back(
                std::string(widget->metaObject()->className()) + " " + widget->objectName().toStdString());
    }
    return found;
}
