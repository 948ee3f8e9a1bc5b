#include "platform/foundation/MonotonicClock.h"

#include <chrono>

namespace sela {

double monotonicSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace sela
