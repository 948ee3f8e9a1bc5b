#include "platform/foundation/Dumpable.h"

#include <sys/prctl.h>
#include <sys/resource.h>

namespace sela {

void makeUndumpable() {
    // A core that goes to a program knows one limit only: 1, which Linux keeps for that program itself. For a
    // core that goes to a file it is too small for anything. See core(5).
    constexpr rlimit noCore{1, 1};
    ::setrlimit(RLIMIT_CORE, &noCore);
    ::prctl(PR_SET_DUMPABLE, 0);
}

DumpableScope::DumpableScope() : before_(::prctl(PR_GET_DUMPABLE)) {
    ::prctl(PR_SET_DUMPABLE, 1);
}

DumpableScope::~DumpableScope() {
    ::prctl(PR_SET_DUMPABLE, before_);
}

} // namespace sela
