#pragma once

#include "platform/uikit/UIViewController.h"

#include <memory>

namespace sela {

/// A screen of 375 by 667 points with one of everything that can be drawn, for pictures to compare.
std::shared_ptr<UIViewController> makeGalleryScreen();

} // namespace sela
