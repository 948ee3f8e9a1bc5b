#pragma once

#include "platform/foundation/Data.h"

#include <cstdint>
#include <cstdlib>

// The interface of a fuzz target: `fuzz` processes arbitrary bytes and stops the process when an invariant is
// violated. libFuzzer calls it in the preset "fuzz"; in the other sanitized builds Replay.cpp calls it with
// the corpus.

void fuzz(sela::DataView input);

inline void require(bool condition) {
    if (!condition)
        std::abort();
}
