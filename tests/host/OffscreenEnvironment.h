#pragma once

#include "host/QtTextMeasurer.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "platform/foundation/VirtualMainLoop.h"

namespace sela {

/// What a test of drawing needs: a main queue whose clock stands still, and text measured as it is drawn.
/// Qt's application is made before the first test and needs no display.
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
