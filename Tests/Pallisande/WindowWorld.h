#pragma once

#include "Pallisande/Shell/MainWindow.h"
#include "Tests/Pallisande/ModelWorld.h"
#include "Tests/Pallisande/WidgetApplication.h"

#include <QApplication>
#include <QtTest/QTest>

#include <memory>

namespace Test {

// The whole window on a library of its own. What is done goes through its widgets; what came of it is looked
// up in the model and in the files.
struct WindowWorld : World {
    Pallisande::MainWindow& open()
    {
        window.reset();
        return show(start());
    }
    Pallisande::MainWindow& open(const Pallisande::Library& holding)
    {
        window.reset();
        return show(start(holding));
    }
    ~WindowWorld() { window.reset(); } // Before the model.

    Pallisande::MainWindow& show(Pallisande::AppModel& shown)
    {
        window = std::make_unique<Pallisande::MainWindow>(shown,
            Pallisande::WindowServices { .theme = themeController(),
                .updates = updates,
                .openAddress
                = [this](const QString& address) { openedAddresses.push_back(address.toStdString()); } });
        window->resize(Pallisande::MainWindow::usualWidth, Pallisande::MainWindow::usualHeight);
        window->show();
        QApplication::setActiveWindow(window.get());
        settleEvents();
        return *window;
    }
    static void settleEvents()
    {
        for (int round = 0; round < 3; ++round) {
            QCoreApplication::sendPostedEvents();
            QCoreApplication::processEvents();
        }
    }
    template <typename Widget = QWidget> Widget* find(const char* name) const
    {
        return window->findChild<Widget*>(QLatin1String(name));
    }
    QAction* action(Pallisande::Command command) const { return window->commands().action(command); }
    void keys(const QString& sequence, QWidget* at = nullptr) const
    {
        QTest::keySequence(at ? at : window.get(), QKeySequence(sequence));
        settleEvents();
    }

    Pallisande::UpdateCheck* updates = nullptr;
    std::unique_ptr<Pallisande::MainWindow> window;
};

} // namespace Test
