#pragma once

#include "platform/extension/NSObject.h"
#include "platform/foundation/Error.h"

#include <atomic>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace sela {

/// One share request: what the host application passes, and the way to end it. The input items may be read
/// from any thread; ending is for the main thread.
class NSExtensionContext {
public:
    /// How a request ended: completed (no error) or cancelled with an error.
    using EndHandler = std::function<void(const ErrorRef& cancellation)>;

    explicit NSExtensionContext(std::vector<std::shared_ptr<NSObject>> items)
        : inputItems(std::move(items)) {}

    const std::vector<std::shared_ptr<NSObject>> inputItems;

    /// Completes the request, returning `items` to the host; `completionHandler` (which may be empty) is
    /// called with false, since the process goes on until the host ends it. A request that has ended already
    /// is left as it is, and that is logged.
    void completeRequestReturningItems(const std::vector<std::shared_ptr<NSObject>>& items,
                                       const std::function<void(bool expired)>& completionHandler);

    /// Cancels the request. A request that has ended already is left as it is, and that is logged.
    void cancelRequestWithError(const ErrorRef& error);

    /// Any thread.
    bool hasEnded() const { return ended_; }
    bool isCancelled() const { return cancelled_; }

    /// Called once, when the request ends, on the main thread. Set by the host.
    EndHandler onEnd;

private:
    bool end(const ErrorRef& cancellation);

    std::atomic<bool> ended_ = false;
    std::atomic<bool> cancelled_ = false;
};

} // namespace sela
