#pragma once

#include "Pallisande/Widgets/Label.h"
#include "Tests/Pallisande/Events.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAccessible>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QToolButton>
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
            const auto* const tool = qobject_cast<const QToolButton*>(button);
            if (tool && tool->toolButtonStyle() == Qt::ToolButtonIconOnly)
                continue;
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

// The same once the layouts have settled, which takes them several steps.
inline std::vector<std::string> lastClippedTexts(QWidget& window)
{
    Test::pass(std::chrono::milliseconds(20));
    Test::waitUntil([&] { return clippedTexts(window).empty(); }, std::chrono::seconds(2));
    return clippedTexts(window);
}

// Texts and fields that stand beyond the edge of what they lie in, where no scroll bar leads.
inline std::vector<std::string> cutOffWidgets(QWidget& window)
{
    std::vector<std::string> found;
    for (auto* widget : window.findChildren<QWidget*>()) {
        const auto* const label = qobject_cast<QLabel*>(widget);
        const auto* const button = qobject_cast<QAbstractButton*>(widget);
        if ((!label && !button && !qobject_cast<QLineEdit*>(widget) && !qobject_cast<QComboBox*>(widget))
            || !widget->isVisibleTo(&window) || widget->window() != window.window())
            continue;
        bool mayBeBelow = false, mayBeBeside = false;
        for (auto* around = widget->parentWidget(); around; around = around->parentWidget()) {
            if (const auto* area = qobject_cast<QAbstractScrollArea*>(around->parentWidget());
                area && area->viewport() == around) {
                mayBeBelow = mayBeBelow || area->verticalScrollBarPolicy() != Qt::ScrollBarAlwaysOff;
                mayBeBeside = mayBeBeside || area->horizontalScrollBarPolicy() != Qt::ScrollBarAlwaysOff;
            }
            const QRect place(widget->mapTo(around, QPoint()), widget->size());
            const bool isBeside = place.left() < 0 || place.right() >= around->width();
            const bool isBelow = place.top() < 0 || place.bottom() >= around->height();
            if ((isBeside && !mayBeBeside) || (isBelow && !mayBeBelow)) {
                const auto text = label ? label->text() : button ? button->text() : QString();
                found.push_back(std::string(widget->metaObject()->className()) + " "
                    + widget->objectName().toStdString() + " " + text.toStdString());
                break;
            }
            if (around == &window)
                break;
        }
    }
    return found;
}

// All menus, with what some of them hold only once they open.
inline QList<QMenu*> menusOf(const QWidget& window)
{
    QList<QPointer<QMenu>> menus; // Those that open may make others anew.
    for (auto* menu : window.findChildren<QMenu*>())
        menus += menu;
    for (const auto& menu : menus) {
        if (menu)
            emit menu->aboutToShow();
    }
    return window.findChildren<QMenu*>();
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
