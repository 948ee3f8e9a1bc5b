#include "platform/foundation/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace sela {

void openStandardStreams() {
    // The lowest free number is the one that open gives.
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor)
        if (::fcntl(descriptor, F_GETFD) < 0)
            ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

} // namespace sela
