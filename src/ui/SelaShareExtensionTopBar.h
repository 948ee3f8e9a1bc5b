#pragma once

#include "platform/uikit/UIButton.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIView.h"

#include <memory>
#include <utility>

namespace sela {

/// The delegate for taps on a `SelaShareExtensionTopBar`. Called on the main thread.
class SelaShareExtensionTopBarDelegate {
public:
    virtual ~SelaShareExtensionTopBarDelegate() = default;

    /// The left button was tapped.
    virtual void topBarLeftButtonTouched() = 0;

    /// The right button was tapped.
    virtual void topBarRightButtonTouched() = 0;
};

/// A bar with a button of 80 points at each end and a centred title in what is left between them, nothing
/// when the bar is 160 points wide or less. Its user sets titles and images. Main thread only.
class SelaShareExtensionTopBar : public UIView {
public:
    explicit SelaShareExtensionTopBar(const CGRect& frame);

    /// Constructs the views but neither adds nor lays out any.
    explicit SelaShareExtensionTopBar(const NSCoder& coder);

    UIButton& leftButton() { return leftButton_; }
    UIButton& rightButton() { return rightButton_; }
    UILabel& titleLabel() { return titleLabel_; }

    /// The delegate for taps on the buttons, held weakly; null at first.
    const std::weak_ptr<SelaShareExtensionTopBarDelegate>& delegate() const { return delegate_; }
    void setDelegate(std::weak_ptr<SelaShareExtensionTopBarDelegate> delegate) {
        delegate_ = std::move(delegate);
    }

    /// The actions of the two buttons.
    void onLeftButtonTouched(UIButton& button);
    void onRightButtonTouched(UIButton& button);

private:
    void applyLooks();
    void makeConstraints();

    UIButton leftButton_{"leftButton"};
    UIButton rightButton_{"rightButton"};
    UILabel titleLabel_{"titleLabel"};
    std::weak_ptr<SelaShareExtensionTopBarDelegate> delegate_;
};

} // namespace sela
