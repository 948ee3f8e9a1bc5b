#include "host/TerminationSignals.h"

#include "platform/foundation/DispatchQueue.h"

#include <cerrno>
#include <cstdint>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace sela {

namespace {

constexpr std::array caughtSignals{SIGINT, SIGTERM, SIGHUP};

/// Milliseconds between `begin` and `insist`.
constexpr int graceTime = 1000;

/// The eventfd of the only instance, for the signal handler.
std::atomic<int> eventOfSignals = -1;

void raiseEvent(int descriptor) {
    const std::uint64_t one = 1;
    // A write that fails because the event is already set is harmless.
    [[maybe_unused]] const ssize_t written = ::write(descriptor, &one, sizeof one);
}

void handleSignal(int) {
    const int error = errno;
    raiseEvent(eventOfSignals);
    errno = error;
}

/// Whether the event is set within that time (-1: forever); resets it.
bool waitForEvent(int descriptor, int milliseconds) {
    pollfd waited{descriptor, POLLIN, 0};
    while (::poll(&waited, 1, milliseconds) < 0 && errno == EINTR) {
    }
    std::uint64_t raised = 0;
    return (waited.revents & POLLIN) && ::read(descriptor, &raised, sizeof raised) > 0;
}

} // namespace

TerminationSignals::TerminationSignals(std::function<void()> begin, std::function<void()> insist)
    : begin_(std::move(begin)), insist_(std::move(insist)), event_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    eventOfSignals = event_.get();
    try {
        thread_ = std::thread([this] { wait(); });
    } catch (const std::system_error&) {
        // Without a thread the signals end the process at once.
    }
    struct sigaction action {};
    action.sa_handler = handleSignal;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    for (std::size_t i = 0; i < caughtSignals.size(); ++i) {
        ::sigaction(caughtSignals[i], nullptr, &before_[i]);
        if (before_[i].sa_handler != SIG_IGN && thread_.joinable())
            ::sigaction(caughtSignals[i], &action, nullptr);
    }
}

TerminationSignals::~TerminationSignals() {
    for (std::size_t i = 0; i < caughtSignals.size(); ++i)
        ::sigaction(caughtSignals[i], &before_[i], nullptr);
    isOver_ = true;
    raiseEvent(event_.get());
    if (thread_.joinable())
        thread_.join();
    eventOfSignals = -1;
}

void TerminationSignals::wait() {
    waitForEvent(event_.get(), -1);
    if (isOver_)
        return;
    DispatchQueue::main().async(begin_);
    waitForEvent(event_.get(), graceTime);
    if (!isOver_)
        insist_();
}

} // namespace sela
