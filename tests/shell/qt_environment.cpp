// One QApplication for all widget tests, on the offscreen platform unless
// the caller chose another.
#include <QApplication>

#include <gtest/gtest.h>

#include <memory>

namespace {

struct QtEnvironment : ::testing::Environment {
    void SetUp() override {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        app = std::make_unique<QApplication>(argc, argv);
    }
    void TearDown() override { app.reset(); }

    int argc = 1;
    char name[20] = "kelpa_shell_tests";
    char* argv[2] = {name, nullptr};
    std::unique_ptr<QApplication> app;
};

const auto* const kEnvironment = ::testing::AddGlobalTestEnvironment(new QtEnvironment);

}  // namespace
