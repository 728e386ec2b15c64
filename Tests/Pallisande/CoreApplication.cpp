#include <gtest/gtest.h>

#include <QCoreApplication>

#include <memory>

// Timers and sockets work only while an application is. It needs no display.
class CoreApplication : public testing::Environment {
public:
    void SetUp() override { m_application = std::make_unique<QCoreApplication>(m_count, m_arguments); }
    void TearDown() override { m_application.reset(); }

private:
    int m_count = 1;
    char m_name[11] = "Pallisande";
    char* m_arguments[2] { m_name, nullptr };
    std::unique_ptr<QCoreApplication> m_application;
};

[[maybe_unused]] static const auto* const environment
    = testing::AddGlobalTestEnvironment(new CoreApplication);
