#pragma once

namespace sela {

/// Whoever is told of taps on a `SelaShareExtensionTopBar`. Called on the main thread.
class SelaShareExtensionTopBarDelegate {
public:
    virtual ~SelaShareExtensionTopBarDelegate() = default;

    /// The left button was tapped.
    virtual void topBarLeftButtonTouched() = 0;

    /// The right button was tapped.
    virtual void topBarRightButtonTouched() = 0;
};

} // namespace sela
