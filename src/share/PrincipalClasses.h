#pragma once

#include "platform/uikit/UIViewController.h"

#include <memory>
#include <string_view>

namespace sela {

class SelaShareExtensionVc;

/// The screen that the extension's configuration names as its start: "SelaShareExtensionEntryVc", or the
/// fallback "SelaShareExtension.ShareViewController". Null for any other name. Main thread only.
std::shared_ptr<UIViewController> makePrincipalViewController(std::string_view className);

/// The share screen inside a principal screen whose view is loaded; null when it has none.
SelaShareExtensionVc* shareScreenOf(UIViewController& principal);

/// The class that the platform starts.
inline constexpr std::string_view principalClassName = "SelaShareExtensionEntryVc";

} // namespace sela
