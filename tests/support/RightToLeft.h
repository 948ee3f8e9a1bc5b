#pragma once

#include "platform/uikit/UIApplication.h"

namespace sela {

/// The application reads from the right while this lives. One at a time.
class RightToLeft {
public:
    RightToLeft() { set(UIUserInterfaceLayoutDirection::rightToLeft); }
    ~RightToLeft() { set(UIUserInterfaceLayoutDirection::leftToRight); }
    RightToLeft(const RightToLeft&) = delete;
    RightToLeft& operator=(const RightToLeft&) = delete;

private:
    static void set(UIUserInterfaceLayoutDirection direction) {
        UIApplication::shared().setUserInterfaceLayoutDirection(direction);
    }
};

} // namespace sela
