#include "mediaservice/Sandbox.h"

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

// Calls that need no look at their arguments: each works on what the process already holds.
constexpr std::array allowedCalls = {
    SCMP_SYS(read),
    SCMP_SYS(pread64),
    SCMP_SYS(lseek),
    SCMP_SYS(close),
    SCMP_SYS(recvmsg),
    SCMP_SYS(sendmsg),
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

// What makes a new task a thread of this process rather than a process of its own.
constexpr scmp_datum_t threadFlags = CLONE_VM | CLONE_THREAD | CLONE_SIGHAND;

bool addRules(scmp_filter_ctx filter) {
    bool good = true;
    for (const int call : allowedCalls)
        good = good && seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 0) == 0;

    // Memory, but none that can be executed.
    for (const int call : {SCMP_SYS(mmap), SCMP_SYS(mprotect)})
        good = good && seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 1,
                                        SCMP_A2(SCMP_CMP_MASKED_EQ, PROT_EXEC, 0)) == 0;
    for (const int call : {SCMP_SYS(write), SCMP_SYS(writev)})
        good = good &&
               seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 1, SCMP_A0(SCMP_CMP_EQ, STDERR_FILENO)) == 0;
    good = good && seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(clone), 1,
                                    SCMP_A0(SCMP_CMP_MASKED_EQ, threadFlags, threadFlags)) == 0;
    // The C library falls back to clone, whose flags can be looked at, when clone3 is not there.
    good = good && seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0) == 0;
    good = good && seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(prctl), 1,
                                    SCMP_A0(SCMP_CMP_EQ, PR_SET_NAME)) == 0;
    // abort() raises a signal in its own process.
    good = good && seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(tgkill), 1,
                                    SCMP_A0(SCMP_CMP_EQ, static_cast<scmp_datum_t>(::getpid()))) == 0;
    return good;
}

bool setLimit(__rlimit_resource resource, std::uint64_t value) {
    const rlimit limit{value, value};
    return ::setrlimit(resource, &limit) == 0;
}

} // namespace

bool enter(const Limits& limits) {
    const bool limited = setLimit(RLIMIT_CPU, limits.cpuSeconds) && setLimit(RLIMIT_FSIZE, 0) &&
                         setLimit(RLIMIT_CORE, 0) && ::prctl(PR_SET_DUMPABLE, 0) == 0 &&
                         (!limitsAddressSpace || setLimit(RLIMIT_AS, limits.addressSpace));
    if (!limited)
        return false;
    const Filter filter(seccomp_init(SCMP_ACT_ERRNO(EPERM)), &seccomp_release);
    // Loading the filter also sets no_new_privs; TSYNC puts threads that libraries started under it.
    return filter && seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_TSYNC, 1) == 0 &&
           addRules(filter.get()) && seccomp_load(filter.get()) == 0;
}

} // namespace sela::Sandbox
