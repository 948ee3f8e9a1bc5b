#include "platform/uikit/TextMeasurer.h"

#include "platform/foundation/FatalError.h"

namespace sela {

namespace {

const TextMeasurer* installed = nullptr;

} // namespace

const TextMeasurer& TextMeasurer::current() {
    if (!installed)
        fatalError("TextMeasurer: nobody measures text");
    return *installed;
}

void TextMeasurer::setCurrent(const TextMeasurer* measurer) {
    installed = measurer;
}

} // namespace sela
