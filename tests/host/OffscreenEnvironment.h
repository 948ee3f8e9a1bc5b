#pragma once

#include "host/QtTextMeasurer.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "support/VirtualMainLoop.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

#include <memory>

namespace sela {

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

inline const testing::Environment* const offscreenApplication =
    testing::AddGlobalTestEnvironment(new OffscreenApplication);

/// The environment of a drawing test: a main queue whose clock stands still, and text measured as it is
/// drawn. Qt's application is made before the first test and needs no display.
class OffscreenEnvironment {
public:
    OffscreenEnvironment() { TextMeasurer::setCurrent(&measurer); }
    ~OffscreenEnvironment() { TextMeasurer::setCurrent(nullptr); }
    OffscreenEnvironment(const OffscreenEnvironment&) = delete;
    OffscreenEnvironment& operator=(const OffscreenEnvironment&) = delete;

    VirtualMainLoop loop;
    ScopedMainQueue queue{loop};
    QtTextMeasurer measurer;
};

} // namespace sela
