#pragma once

#include "platform/foundation/FileDescriptor.h"

#include <csignal>

namespace sela {

/// SIGINT and SIGTERM (unless ignored) as something to be asked about, for work that ends in order. From its
/// making on they no longer end the process, until one has been noticed: the next one does. Make it once, on
/// the main thread, before there are other threads.
class EndingSignals {
public:
    EndingSignals();

    /// Whether one has arrived.
    bool haveArrived() { return arriveWithin(0); }

    /// Waits until one arrives, something can be read from `source` (negative: none), or the time is over
    /// (negative: never). Returns whether one has arrived, now or earlier.
    bool arriveWithin(int milliseconds, int source = -1);

private:
    sigset_t signals_{};
    FileDescriptor pending_;
    bool haveArrived_ = false;
};

} // namespace sela
