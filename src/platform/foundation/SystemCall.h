#pragma once

#include <cerrno>

namespace sela {

/// Makes a system call again for as long as a signal interrupts it, and returns what it returned. `call`
/// returns a negative number on failure and tells why in errno.
template<class Call>
auto retryingInterrupted(Call call) {
    while (true) {
        const auto result = call();
        if (result >= 0 || errno != EINTR)
            return result;
    }
}

} // namespace sela
