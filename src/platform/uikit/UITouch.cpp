#include "platform/uikit/UITouch.h"

#include "platform/uikit/UIView.h"

namespace sela {

CGPoint UITouch::location(const UIView& view) const {
    return view.treeRoot().convert(locationInWindow, view);
}

} // namespace sela
