#pragma once

#include "platform/uikit/Geometry.h"
#include "platform/uikit/NSAttributedString.h"

#include <limits>

namespace sela {

/// How large text is when drawn. The code that draws the views installs its own measurer before the first
/// layout, so that layout and drawing agree. Main thread only.
class TextMeasurer {
public:
    static constexpr double unlimitedWidth = std::numeric_limits<double>::infinity();

    virtual ~TextMeasurer() = default;

    /// The size that `text` takes when its lines are broken at `maximumWidth` points (`unlimitedWidth`: only
    /// at line ends in the text) and cut off with an ellipsis after `maximumLines` lines (0: any number).
    /// Every run has a font. Empty text is 0 by 0.
    virtual CGSize size(const NSAttributedString& text, double maximumWidth, int maximumLines) const = 0;

    /// The installed measurer; without one the process stops.
    static const TextMeasurer& current();

    /// Installs `measurer`, which the caller keeps alive (null: none).
    static void setCurrent(const TextMeasurer* measurer);
};

} // namespace sela
