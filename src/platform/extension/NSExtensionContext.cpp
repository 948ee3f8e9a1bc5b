#include "platform/extension/NSExtensionContext.h"

#include "platform/foundation/NSLog.h"

namespace sela {

void NSExtensionContext::completeRequestReturningItems(const std::vector<std::shared_ptr<NSObject>>&,
                                                       const std::function<void(bool)>& completionHandler) {
    if (end(nullptr) && completionHandler)
        completionHandler(false);
}

void NSExtensionContext::cancelRequestWithError(const ErrorRef& error) {
    end(error);
}

bool NSExtensionContext::end(const ErrorRef& cancellation) {
    if (ended_) {
        NSLog("NSExtensionContext: the request has ended already");
        return false;
    }
    cancelled_ = cancellation != nullptr;
    ended_ = true;
    if (onEnd)
        onEnd(cancellation);
    return true;
}

} // namespace sela
