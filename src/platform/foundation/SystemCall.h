#pragma once

#include <cerrno>

namespace sela {

/// Repeats a system call while a signal interrupts it (EINTR), and returns its result. `call` returns a
/// negative number on failure and sets errno.
template<class Call>
auto retryingInterrupted(Call call) {
    while (true) {
        const auto result = call();
        if (result >= 0 || errno != EINTR)
            return result;
    }
}

} // namespace sela
