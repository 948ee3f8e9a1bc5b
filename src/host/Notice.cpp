#include "host/Notice.h"

#include "platform/foundation/DispatchQueue.h"
#include "platform/uikit/UIAccessibility.h"

#include <algorithm>

namespace sela {

namespace {

/// Lengths in points.
constexpr double widest = 400;
constexpr double margin = 16;
constexpr double padding = 12;

} // namespace

Notice::Notice(UIWindow& window) : window_(window) {
    panel_.setUserInteractionEnabled(false);
    panel_.setBackgroundColor(UIColor::named("AppText"));
    panel_.layer().setCornerRadius(10);
    label_.setFont(UIFont::systemFont(15));
    label_.setTextColor(UIColor::named("AppCard"));
    label_.setTextAlignment(NSTextAlignment::center);
    label_.setNumberOfLines(0);
    panel_.addSubview(label_);
}

void Notice::show(const std::string& text) {
    label_.setText(text);
    const CGSize screen = window_.bounds().size;
    const double room = std::min(widest, screen.width - 2 * margin) - 2 * padding;
    const CGSize size = label_.sizeThatFits({room, screen.height});
    label_.setFrame({padding, padding, size.width, size.height});
    const double width = size.width + 2 * padding;
    const double height = size.height + 2 * padding;
    panel_.setFrame({(screen.width - width) / 2, screen.height - margin - height, width, height});
    window_.addSubview(panel_);
    UIAccessibility::postAnnouncement(text);
    DispatchQueue::main().asyncAfter(duration, [this, alive = ViewReference(panel_), show = ++shows_] {
        if (alive && show == shows_)
            panel_.removeFromSuperview();
    });
}

} // namespace sela
