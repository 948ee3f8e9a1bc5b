#pragma once

#include "platform/uikit/UIWindow.h"

#include <string>

namespace sela {

/// The view tree as JSON, for other programs. Main thread only.
namespace TreeWriter {

/// One object: the window's root view, with everything in it as it is shown at this moment, laid out first.
/// Lengths are points of the screen, rounded to thousandths; a label whose text is cut off says so. An empty
/// object when nothing is shown.
std::string json(UIWindow& window);

} // namespace TreeWriter

} // namespace sela
