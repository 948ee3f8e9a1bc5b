#pragma once

#include "platform/foundation/FileDescriptor.h"

#include <array>
#include <atomic>
#include <csignal>
#include <functional>
#include <thread>

namespace sela {

/// Turns the first SIGINT, SIGTERM or SIGHUP into an orderly end while this object lives; a second one has
/// its default effect. A signal that the process was started to ignore, as under nohup, stays ignored. One at
/// a time, made and destroyed on the main thread.
class TerminationSignals {
public:
    /// `begin` is called on the main queue at the signal, and `insist` on another thread a second later, for
    /// work that has not ended by then. Both may be called for as long as this object lives.
    TerminationSignals(std::function<void()> begin, std::function<void()> insist);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

private:
    void wait();

    const std::function<void()> begin_;
    const std::function<void()> insist_;
    FileDescriptor event_;
    std::atomic<bool> isOver_ = false;
    std::array<struct sigaction, 3> before_;
    std::thread thread_;
};

} // namespace sela
