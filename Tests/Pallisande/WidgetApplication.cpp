#include "Tests/Pallisande/WidgetApplication.h"

#include <gtest/gtest.h>

#include <QApplication>

using namespace Pallisande;

namespace {

SystemLook desktop;
ThemeController* controller;

// Widgets live only while an application does. It needs no display, and its font is always the same.
class Environment : public testing::Environment {
public:
    void SetUp() override
    {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        m_application = std::make_unique<QApplication>(m_count, m_arguments);
        QFont font(QStringLiteral("Noto Sans"));
        font.setPixelSize(13);
        m_application->setFont(font);
        m_controller = std::make_unique<ThemeController>(*m_application, [] { return desktop; });
        controller = m_controller.get();
    }
    void TearDown() override
    {
        m_controller.reset();
        m_application.reset();
    }

private:
    int m_count = 1;
    char m_name[12] = "WidgetTests";
    char* m_arguments[2] { m_name, nullptr };
    std::unique_ptr<QApplication> m_application;
    std::unique_ptr<ThemeController> m_controller;
};

[[maybe_unused]] const auto* const environment = testing::AddGlobalTestEnvironment(new Environment);

} // namespace

ThemeController& themeController() { return *controller; }
SystemLook& systemLook() { return desktop; }
