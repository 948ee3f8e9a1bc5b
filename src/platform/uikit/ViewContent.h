#pragma once

#include "platform/media/UIImage.h"
#include "platform/uikit/Geometry.h"
#include "platform/uikit/NSAttributedString.h"
#include "platform/uikit/UIColor.h"
#include "platform/uikit/UIFont.h"

#include <variant>

namespace sela {

/// Where a line begins or lies; `natural`: where reading begins.
enum class NSTextAlignment { natural, left, center, right };

/// Text, vertically centred, cut off with an ellipsis where it does not fit.
struct TextContent {
    NSAttributedString text;                           ///< as it is drawn: every run has a font and a colour
    UIFont font;                                       ///< the view's own, before shrinking
    int maximumLines = 1;                              ///< 0: any number
    NSTextAlignment alignment = NSTextAlignment::left; ///< never natural

    /// Whether `size` holds less than the whole text.
    bool isTruncated(CGSize size) const;
};

/// A picture.
struct ImageContent {
    UIImage image;
    CGRect rect; ///< where the whole of it is drawn, in the view's coordinates; may exceed its bounds
    bool isTemplate = false; ///< drawn as a stencil filled with `tint`
    UIColor tint;
    bool isFlipped = false; ///< drawn mirrored
};

/// A wheel of spokes, each fainter than the one that it follows clockwise.
struct SpinnerContent {
    UIColor color;
    int spokes = 1;
    int leadingSpoke = 0; ///< the darkest one, counted clockwise from the top
};

/// What a view itself shows between its background and its subviews: a value, so that code that draws or
/// describes a view need not know its class.
using ViewContent = std::variant<std::monostate, TextContent, ImageContent, SpinnerContent>;

} // namespace sela
