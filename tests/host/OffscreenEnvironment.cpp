#include "host/OffscreenEnvironment.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

#include <memory>

namespace sela {

namespace {

class OffscreenApplication : public testing::Environment {
public:
    void SetUp() override {
        static char name[] = "host_test";
        static char* arguments[] = {name, nullptr};
        static int count = 1;
        qputenv("QT_QPA_PLATFORM", "offscreen");
        QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
        application_ = std::make_unique<QGuiApplication>(count, arguments);
    }
    void TearDown() override { application_.reset(); }

private:
    std::unique_ptr<QGuiApplication> application_;
};

[[maybe_unused]] const testing::Environment* const application =
    testing::AddGlobalTestEnvironment(new OffscreenApplication);

} // namespace

} // namespace sela
