#include "platform/snapkit/ViewConstraints.h"

#include "platform/snapkit/SubtreeLayout.h"
#include "platform/uikit/UIView.h"

namespace sela {

const ViewConstraints* ViewConstraints::of(const UIView& view) {
    return dynamic_cast<const ViewConstraints*>(view.layoutConstraints());
}

void ViewConstraints::layoutSubtree(UIView& root) const {
    SubtreeLayout(root).apply();
}

} // namespace sela
