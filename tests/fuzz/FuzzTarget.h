#pragma once

#include "platform/foundation/Data.h"

#include <cstdint>
#include <cstdlib>

// What a fuzz target is: `fuzz` looks at arbitrary bytes and stops the process when a promise about them does
// not hold. libFuzzer calls it in the preset "fuzz"; in the other sanitized builds Replay.cpp calls it with
// the corpus.

void fuzz(sela::DataView input);

inline void require(bool condition) {
    if (!condition)
        std::abort();
}
