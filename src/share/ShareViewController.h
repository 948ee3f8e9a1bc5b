#pragma once

#include "platform/extension/SLComposeServiceViewController.h"

namespace sela {

/// The extension on the platform's own compose screen: a fallback principal class, which accepts any content
/// and completes the request without saving anything. Main thread only.
class ShareViewController : public SLComposeServiceViewController {
public:
    using SLComposeServiceViewController::SLComposeServiceViewController;

    bool isContentValid() override { return true; }

    /// Completes the request at once with no items. Without a request the process stops.
    void didSelectPost() override;

    std::vector<std::string> configurationItems() override { return {}; }
};

} // namespace sela
