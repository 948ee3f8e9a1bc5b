#include "platform/snapkit/ConstraintAttribute.h"

namespace sela {

const char* nameOf(ConstraintAttribute attribute) {
    switch (attribute) {
    case ConstraintAttribute::left:
        return "left";
    case ConstraintAttribute::right:
        return "right";
    case ConstraintAttribute::leading:
        return "leading";
    case ConstraintAttribute::trailing:
        return "trailing";
    case ConstraintAttribute::top:
        return "top";
    case ConstraintAttribute::bottom:
        return "bottom";
    case ConstraintAttribute::width:
        return "width";
    case ConstraintAttribute::height:
        return "height";
    case ConstraintAttribute::centerX:
        return "centerX";
    case ConstraintAttribute::centerY:
        return "centerY";
    }
    return "";
}

} // namespace sela
