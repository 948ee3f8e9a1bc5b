#include "platform/uikit/TextMeasurer.h"

#include "platform/uikit/FixedTextMeasurer.h"

namespace sela {

namespace {

const TextMeasurer* installed = nullptr;

} // namespace

const TextMeasurer& TextMeasurer::current() {
    static const FixedTextMeasurer fixed;
    return installed ? *installed : fixed;
}

void TextMeasurer::setCurrent(const TextMeasurer* measurer) {
    installed = measurer;
}

} // namespace sela
