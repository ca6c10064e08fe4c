// One QApplication for all widget tests, on the offscreen platform unless
// the caller chose another.
#include <QApplication>

#include <gtest/gtest.h>

#include <memory>

namespace {

class QtEnvironment : public ::testing::Environment {
public:
    void SetUp() override {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        app_ = std::make_unique<QApplication>(argc_, argv_);
    }
    void TearDown() override { app_.reset(); }

private:
    int argc_ = 1;
    char name_[20] = "kelpa_shell_tests";
    char* argv_[2] = {name_, nullptr};
    std::unique_ptr<QApplication> app_;
};

const auto* const kEnvironment = ::testing::AddGlobalTestEnvironment(new QtEnvironment);

}  // namespace
