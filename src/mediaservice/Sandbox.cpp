#include "mediaservice/Sandbox.h"

#include "mediaservice/Landlock.h"
#include "mediaservice/NetworkNamespace.h"
#include "platform/foundation/Dumpable.h"
#include "platform/media/MediaHelperProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <linux/sched.h>
#include <memory>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <seccomp.h>

namespace sela::Sandbox {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define SELA_SANITIZED_BUILD
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define SELA_SANITIZED_BUILD
#endif
#endif

#ifdef SELA_SANITIZED_BUILD
constexpr bool limitsAddressSpace = false;
#else
constexpr bool limitsAddressSpace = true;
#endif

using Filter = std::unique_ptr<void, decltype(&seccomp_release)>;

// Calls allowed with any arguments: each works only on what the process already holds.
constexpr std::array allowedCalls = {
    SCMP_SYS(pread64),
    SCMP_SYS(lseek),
    SCMP_SYS(close),
    SCMP_SYS(poll),
    SCMP_SYS(ppoll),
    SCMP_SYS(munmap),
    SCMP_SYS(mremap),
    SCMP_SYS(madvise),
    SCMP_SYS(brk),
    SCMP_SYS(futex),
    SCMP_SYS(sched_yield),
    SCMP_SYS(set_robust_list),
    SCMP_SYS(rseq),
    SCMP_SYS(exit),
    SCMP_SYS(exit_group),
    SCMP_SYS(gettid),
    SCMP_SYS(getpid),
    SCMP_SYS(rt_sigaction),
    SCMP_SYS(rt_sigprocmask),
    SCMP_SYS(rt_sigreturn),
    SCMP_SYS(sigaltstack),
    SCMP_SYS(clock_gettime),
    SCMP_SYS(clock_nanosleep),
    SCMP_SYS(nanosleep),
    SCMP_SYS(restart_syscall),
    SCMP_SYS(sched_getaffinity),
    SCMP_SYS(getrandom),
    SCMP_SYS(gettimeofday),
    SCMP_SYS(getrusage),
};

// The clone flags that make a new task a thread of this process.
constexpr scmp_datum_t threadFlags = CLONE_VM | CLONE_THREAD | CLONE_SIGHAND;

/// Allows a call when one of its arguments, masked with `mask`, has this value.
bool allowWhen(scmp_filter_ctx filter, int call, unsigned argument, scmp_datum_t mask, scmp_datum_t value) {
    const scmp_arg_cmp condition{argument, SCMP_CMP_MASKED_EQ, mask, value};
    return seccomp_rule_add_array(filter, SCMP_ACT_ALLOW, call, 1, &condition) == 0;
}

bool addRules(scmp_filter_ctx filter) {
    constexpr scmp_datum_t wholeArgument = ~scmp_datum_t{0};
    bool good = true;
    for (const int call : allowedCalls)
        good = good && seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 0) == 0;

    // Memory that is not executable.
    for (const int call : {SCMP_SYS(mmap), SCMP_SYS(mprotect)})
        good = good && allowWhen(filter, call, 2, PROT_EXEC, 0);
    for (const int call : {SCMP_SYS(recvmsg), SCMP_SYS(sendmsg)})
        good = good && allowWhen(filter, call, 0, wholeArgument, mediaHelperSocket);
    // A library's last message before it aborts; it is not read.
    for (const int call : {SCMP_SYS(write), SCMP_SYS(writev)})
        good = good && allowWhen(filter, call, 0, wholeArgument, STDERR_FILENO);
    good = good && allowWhen(filter, SCMP_SYS(clone), 0, threadFlags, threadFlags);
    // The C library falls back to clone, whose flags can be looked at, when clone3 is not there.
    good = good && seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0) == 0;
    good = good && allowWhen(filter, SCMP_SYS(prctl), 0, wholeArgument, PR_SET_NAME);
    // abort() raises a signal in its own process.
    const auto self = static_cast<scmp_datum_t>(::getpid());
    return good && allowWhen(filter, SCMP_SYS(tgkill), 0, wholeArgument, self);
}

bool setLimit(__rlimit_resource resource, std::uint64_t value) {
    const rlimit limit{value, value};
    return ::setrlimit(resource, &limit) == 0;
}

} // namespace

bool enter(const Limits& limits) {
    const bool limited = setLimit(RLIMIT_CPU, limits.cpuSeconds) && setLimit(RLIMIT_FSIZE, 0) &&
                         (!limitsAddressSpace || setLimit(RLIMIT_AS, limits.addressSpace));
    if (!limited)
        return false;
    makeUndumpable();
    // The filter below is complete without these two; they are a second layer behind a hole in it.
    leaveNetwork();
    denyFiles();
    const Filter filter(seccomp_init(SCMP_ACT_ERRNO(EPERM)), &seccomp_release);
    // Loading the filter also sets no_new_privs; TSYNC puts threads that libraries started under it.
    return filter && seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_TSYNC, 1) == 0 &&
           addRules(filter.get()) && seccomp_load(filter.get()) == 0;
}

} // namespace sela::Sandbox
