#include "support/FixedTextMeasurer.h"

#include "platform/foundation/UTF8.h"

#include <algorithm>
#include <cmath>

namespace sela {

CGSize FixedTextMeasurer::size(const NSAttributedString& text, double maximumWidth, int maximumLines) const {
    double width = 0;
    double fontSize = 0;
    for (const NSAttributedString::Run& run : text.runs()) {
        const double size = run.attributes.font ? run.attributes.font->size() : 0;
        width += static_cast<double>(characterCount(run.text)) * size * widthPerSize;
        fontSize = std::max(fontSize, size);
    }
    double lines = width == 0 ? 0 : std::max(1.0, std::ceil(width / maximumWidth));
    if (maximumLines > 0)
        lines = std::min(lines, static_cast<double>(maximumLines));
    return {std::min(width, maximumWidth), lines * fontSize * heightPerSize};
}

} // namespace sela
