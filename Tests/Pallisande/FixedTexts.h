#pragma once

#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Banner.h"
#include "Pallisande/Widgets/Chip.h"
#include "Pallisande/Widgets/LineField.h"
#include "Pallisande/Widgets/SheetDialog.h"
#include "Pallisande/Widgets/Toast.h"
#include "Tests/Pallisande/Events.h"
#include "Tests/Pallisande/WidgetChecks.h"
#include "Tests/Pallisande/WindowWorld.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTabBar>
#include <QTextDocumentFragment>

#include <set>

// Every sentence and word that was settled letter for letter, how it comes about, and where it stands then.
namespace Test {

enum class At { banner, toast, chooser, menu, sheet, page, window, box, popup };

struct FixedText {
    int number; // Of the list of fixed texts.
    At at;
    std::vector<std::string> texts;
    std::function<void(WindowWorld&)> lead; // On the window.
    std::function<void(Pallisande::Library&)> change = {}; // Of the library, before.
    std::function<void(WindowWorld&)> prepare = {}; // In the place of the library.
};

// All that a widget and what it holds say: words, choices, rows, tips, and what a screen reader is told.
inline std::set<std::string> wordsOf(QWidget& root)
{
    std::set<std::string> words;
    const auto add = [&](QString text) {
        if (Qt::mightBeRichText(text))
            text = QTextDocumentFragment::fromHtml(text).toPlainText();
        words.insert(text.trimmed().toStdString());
    };
    const auto read = [&](QWidget* widget) {
        if (!widget->isVisibleTo(&root) && widget != &root)
            return;
        add(widget->toolTip());
        if (const auto* interface = QAccessible::queryAccessibleInterface(widget)) {
            add(interface->text(QAccessible::Name));
            add(interface->text(QAccessible::Description));
        }
        if (const auto* label = qobject_cast<QLabel*>(widget)) {
            add(label->text());
        } else if (const auto* button = qobject_cast<QAbstractButton*>(widget)) {
            add(button->text().remove(QLatin1Char('&')));
        } else if (const auto* line = qobject_cast<QLineEdit*>(widget)) {
            add(line->text());
            add(line->placeholderText());
        } else if (const auto* area = qobject_cast<QPlainTextEdit*>(widget)) {
            add(area->toPlainText());
            add(area->placeholderText());
        } else if (const auto* box = qobject_cast<QComboBox*>(widget)) {
            for (int place = 0; place < box->count(); ++place)
                add(box->itemText(place));
        } else if (const auto* view = qobject_cast<QAbstractItemView*>(widget); view && view->model()) {
            for (int row = 0; row < view->model()->rowCount(); ++row) {
                for (int column = 0; column < view->model()->columnCount(); ++column) {
                    const auto index = view->model()->index(row, column);
                    for (int role = Qt::UserRole + 100; role < Qt::UserRole + 110; ++role) {
                        const auto value = index.data(role);
                        add(value.canConvert<Pallisande::Chip>() ? value.value<Pallisande::Chip>().word
                                                                 : value.toString());
                    }
                    add(index.data().toString());
                    add(index.data(Qt::ToolTipRole).toString());
                }
            }
        }
    };
    read(&root);
    for (auto* widget : root.findChildren<QWidget*>())
        read(widget);
    return words;
}

inline std::set<std::string> wordsOfMenus(QWidget& window)
{
    std::set<std::string> words;
    for (auto* menu : menusOf(window)) {
        for (auto* action : menu->actions()) {
            words.insert(action->text().remove(QLatin1Char('&')).toStdString());
            words.insert(action->toolTip().toStdString());
        }
    }
    return words;
}

inline std::set<std::string> wordsAt(At at, WindowWorld& world)
{
    auto& window = *world.window;
    switch (at) {
    case At::banner:
        return world.find("banner")->isVisible() ? wordsOf(*world.find("banner")) : std::set<std::string>();
    case At::toast:
        return world.find("toast")->isVisible() ? wordsOf(*world.find("toast")) : std::set<std::string>();
    case At::chooser:
        return { world.asked.message, world.asked.prompt, world.asked.fileName };
    case At::menu:
        return wordsOfMenus(window);
    case At::sheet:
        return window.sheet() ? wordsOf(*window.sheet()) : std::set<std::string>();
    case At::page:
        return window.page() ? wordsOf(*window.page()) : std::set<std::string>();
    case At::window: {
        std::set<std::string> words = wordsOf(window);
        for (auto* dialog : window.findChildren<QDialog*>()) {
            if (dialog->isVisible())
                words.merge(wordsOf(*dialog));
        }
        return words;
    }
    case At::box: {
        const auto* const box = window.findChild<QMessageBox*>();
        if (!box)
            return {};
        std::set<std::string> words { box->windowTitle().toStdString() };
        for (const auto& line : (box->text() + "\n\n" + box->informativeText()).split("\n\n"))
            words.insert(line.toStdString());
        return words;
    }
    case At::popup: {
        auto* const popup = QApplication::activePopupWidget();
        return popup ? wordsOf(*popup) : std::set<std::string>();
    }
    }
    return {};
}

// The test's own folder stands as “{}” in the texts.
inline void expectFixedTexts(const std::vector<FixedText>& table)
{
    for (const auto& [number, at, texts, lead, change, prepare] : table) {
        SCOPED_TRACE("text " + std::to_string(number));
        WindowWorld world;
        if (prepare) {
            prepare(world);
            world.open();
        } else {
            auto library = sampleLibrary();
            if (change)
                change(library);
            world.open(library);
        }
        if (lead)
            lead(world);
        WindowWorld::settleEvents();
        const auto words = wordsAt(at, world);
        for (auto text : texts) {
            if (const auto place = text.find("{}"); place != std::string::npos)
                text.replace(place, 2, world.root.path().string());
            if (words.contains(text))
                continue;
            std::string all;
            for (const auto& word : words)
                all += "\n    " + word;
            ADD_FAILURE() << "“" << text << "” isn’t among" << all;
        }
        if (auto* const popup = QApplication::activePopupWidget())
            popup->close();
        world.model->closeSheet();
    }
}

} // namespace Test
