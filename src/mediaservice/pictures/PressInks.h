#pragma once

#include "platform/media/UIImage.h"

namespace sela {

/// Turns pixels of cyan, magenta, yellow and black (255 is full ink) into opaque red, green, blue as a press
/// on coated paper would print them: for pictures that bring no profile of their press. Thread-safe.
void convertPressInks(PixelBuffer& pixels);

} // namespace sela
