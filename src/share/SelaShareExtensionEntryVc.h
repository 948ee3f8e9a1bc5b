#pragma once

#include "platform/uikit/UIView.h"
#include "platform/uikit/UIViewController.h"

namespace sela {

/// The extension's principal screen: dims the host application and shows the rounded card, which holds a
/// navigation controller with the share screen at its root. Main thread only.
class SelaShareExtensionEntryVc : public UIViewController {
public:
    using UIViewController::UIViewController;

    /// The size of the card in design points.
    static constexpr CGSize cardSize{320, 390};

    /// The radius of its corners in design points.
    static constexpr double cornerRadius = 13;

    void viewDidLoad() override;

private:
    void addCard(double scale);
    void addNavigation();

    UIView container_{"container"};
};

} // namespace sela
