#include "share/PrincipalClasses.h"

#include "share/SelaShareExtensionEntryVc.h"
#include "share/SelaShareExtensionVc.h"
#include "share/ShareViewController.h"

namespace sela {

std::shared_ptr<UIViewController> makePrincipalViewController(std::string_view className) {
    if (className == "SelaShareExtensionEntryVc")
        return std::make_shared<SelaShareExtensionEntryVc>();
    if (className == "SelaShareExtension.ShareViewController")
        return std::make_shared<ShareViewController>();
    return nullptr;
}

SelaShareExtensionVc* shareScreenOf(UIViewController& principal) {
    if (auto* const screen = dynamic_cast<SelaShareExtensionVc*>(&principal))
        return screen;
    for (const std::shared_ptr<UIViewController>& child : principal.children())
        if (SelaShareExtensionVc* const screen = shareScreenOf(*child))
            return screen;
    return nullptr;
}

} // namespace sela
