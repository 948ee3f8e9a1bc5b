#pragma once

#include "platform/uikit/UIViewController.h"

#include <string>
#include <vector>

namespace sela {

/// The platform's ready-made screen for posting to a service, as far as an extension overrides it. Main
/// thread only.
class SLComposeServiceViewController : public UIViewController {
public:
    using UIViewController::UIViewController;

    /// Whether what was entered may be posted.
    virtual bool isContentValid() { return true; }

    /// Called when the user posts; the extension ends the request.
    virtual void didSelectPost() {}

    /// The titles of the rows of options below the text.
    virtual std::vector<std::string> configurationItems() { return {}; }
};

} // namespace sela
