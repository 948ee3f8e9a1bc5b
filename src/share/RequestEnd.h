#pragma once

namespace sela {

class UIViewController;

/// The two ways in which a screen of the extension ends the request that it was started for. A controller
/// without a request stops the process: the extension never runs without one. Main thread only.

/// Completes the request with no items and no completion handler.
void completeRequest(const UIViewController& controller);

/// Cancels the request as the user does, with code 3072 of NSCocoaErrorDomain.
void cancelRequest(const UIViewController& controller);

} // namespace sela
