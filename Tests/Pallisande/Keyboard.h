#pragma once

#include <QApplication>
#include <QTest>
#include <QWidget>

#include <vector>

namespace Test {

// A person who has nothing but a keyboard: keys go to whatever has the focus, or to the menu that is open.
class Keyboard {
public:
    static QWidget* focus()
    {
        auto* const popup = QApplication::activePopupWidget();
        auto* const focused = popup ? popup->focusWidget() : QApplication::focusWidget();
        return focused ? focused : popup ? popup : QApplication::activeWindow();
    }
    // What a window manager does when the window in front is closed.
    static void bringForward()
    {
        auto* next = QApplication::activeModalWidget();
        for (auto* window : QApplication::topLevelWidgets()) {
            if (!next && window->isVisible() && window->windowType() == Qt::Window)
                next = window;
        }
        if (next && !QApplication::activeWindow())
            QApplication::setActiveWindow(next);
    }
    static void press(int key, Qt::KeyboardModifiers with = Qt::NoModifier)
    {
        QTest::keyClick(focus(), Qt::Key(key), with);
        settle();
    }
    static void press(const char* keys)
    {
        const auto key = QKeySequence(QLatin1String(keys))[0];
        press(key.key(), key.keyboardModifiers());
    }
    static void type(const char* text)
    {
        QTest::keyClicks(focus(), QString::fromUtf8(text));
        settle();
    }
    // In the place of what a field holds; Return ends it.
    static void enter(const char* text)
    {
        press("Ctrl+A");
        type(text);
        press("Return");
    }
    static std::string name() { return focus() ? focus()->objectName().toStdString() : "nothing"; }
    // By Tab alone; false when it isn't on the way.
    static bool tabTo(const char* wanted, const char* key = "Tab")
    {
        for (int step = 0; step < 200; ++step) {
            if (name() == wanted)
                return true;
            press(key);
        }
        return false;
    }
    static void settle()
    {
        for (int round = 0; round < 3; ++round) {
            QCoreApplication::sendPostedEvents();
            QCoreApplication::processEvents();
            bringForward();
        }
    }
};

} // namespace Test
