#include "share/RequestEnd.h"

#include "platform/extension/NSExtensionContext.h"
#include "platform/foundation/FatalError.h"
#include "platform/uikit/UIViewController.h"

#include <memory>

namespace sela {

namespace {

NSExtensionContext& contextOf(const UIViewController& controller) {
    const std::shared_ptr<NSExtensionContext> context = controller.extensionContext();
    if (!context)
        fatalError("the extension has no request to end");
    return *context;
}

} // namespace

void completeRequest(const UIViewController& controller) {
    contextOf(controller).completeRequestReturningItems({}, nullptr);
}

void cancelRequest(const UIViewController& controller) {
    contextOf(controller)
        .cancelRequestWithError(std::make_shared<NSError>(NSCocoaErrorDomain, NSUserCancelledError,
                                                          "The user cancelled the operation."));
}

} // namespace sela
