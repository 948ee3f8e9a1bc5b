#include "vault/EndingSignals.h"

#include "platform/foundation/SystemCall.h"

#include <iterator>
#include <poll.h>
#include <sys/signalfd.h>

namespace sela {

EndingSignals::EndingSignals() {
    ::sigemptyset(&signals_);
    for (const int signal : {SIGTERM, SIGINT}) {
        struct sigaction action {};
        // A blocked signal would arrive even if it is ignored, as that of a job in the background.
        if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN)
            ::sigaddset(&signals_, signal);
    }
    ::sigprocmask(SIG_BLOCK, &signals_, nullptr);
    pending_ = FileDescriptor(::signalfd(-1, &signals_, SFD_CLOEXEC));
}

bool EndingSignals::arriveWithin(int milliseconds, int source) {
    if (haveArrived_)
        return true;
    pollfd sources[] = {{pending_.get(), POLLIN, 0}, {source, POLLIN, 0}};
    retryingInterrupted([&] { return ::poll(sources, std::size(sources), milliseconds); });
    if (!sources[0].revents)
        return false;
    signalfd_siginfo first{};
    retryingInterrupted([&] { return ::read(pending_.get(), &first, sizeof first); });
    ::sigprocmask(SIG_UNBLOCK, &signals_, nullptr);
    haveArrived_ = true;
    return true;
}

} // namespace sela
