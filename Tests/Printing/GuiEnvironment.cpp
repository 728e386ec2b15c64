#include <gtest/gtest.h>

#include <QGuiApplication>

#include <memory>

// Fonts are there only while an application is. It needs no display.
class GuiEnvironment : public testing::Environment {
public:
    void SetUp() override
    {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        m_application = std::make_unique<QGuiApplication>(m_count, m_arguments);
    }
    void TearDown() override { m_application.reset(); }

private:
    int m_count = 1;
    char m_name[9] = "Printing";
    char* m_arguments[2] { m_name, nullptr };
    std::unique_ptr<QGuiApplication> m_application;
};

[[maybe_unused]] static const auto* const environment = testing::AddGlobalTestEnvironment(new GuiEnvironment);
