#include "mediaservice/NetworkNamespace.h"

#include <linux/capability.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace sela::Sandbox {

bool leaveNetwork() {
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0)
        return false;
    // The creator of a user namespace has all capabilities in it, which would expose more of the kernel than
    // before.
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    const __user_cap_data_struct none[2]{};
    return ::syscall(SYS_capset, &header, none) == 0;
}

} // namespace sela::Sandbox
