#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QWidget>

#include <set>
#include <string>

// All that labels and buttons of a window say; what is hidden only if it is asked for.
inline std::set<std::string> textsOf(const QWidget& window, bool alsoHidden = false)
{
    std::set<std::string> texts;
    const auto add = [&](const QWidget* widget, const QString& text) {
        if (!text.isEmpty() && (alsoHidden || widget->isVisibleTo(&window)))
            texts.insert(text.toStdString());
    };
    for (const auto* label : window.findChildren<QLabel*>())
        add(label, label->text());
    for (const auto* button : window.findChildren<QAbstractButton*>())
        add(button, button->text());
    return texts;
}
