#include "platform/uikit/UIAccessibility.h"

#include <utility>

namespace sela::UIAccessibility {

namespace {

bool reduceMotionEnabled = false;

std::function<void(const std::string&)>& announcementHandler() {
    static std::function<void(const std::string&)> handler;
    return handler;
}

} // namespace

bool isReduceMotionEnabled() {
    return reduceMotionEnabled;
}

void setReduceMotionEnabled(bool enabled) {
    reduceMotionEnabled = enabled;
}

void postAnnouncement(const std::string& text) {
    if (announcementHandler())
        announcementHandler()(text);
}

void setAnnouncementHandler(std::function<void(const std::string&)> handler) {
    announcementHandler() = std::move(handler);
}

} // namespace sela::UIAccessibility
