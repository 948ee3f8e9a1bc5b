#include "mediaservice/Sandbox.h"

#include "mediaservice/Landlock.h"
#include "mediaservice/NetworkNamespace.h"
#include "platform/media/MediaHelperProcess.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <new>
#include <poll.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace sela {
namespace {

constexpr Sandbox::Limits limits{.addressSpace = std::uint64_t{512} << 20, .cpuSeconds = 30};

enum Exit { asExpected = 10, notAsExpected, noSandbox };

/// Runs `body` in a child process that is in the sandbox; returns how the child ended (see waitpid).
int inSandbox(const std::function<bool()>& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (!Sandbox::enter(limits))
            ::_exit(noSandbox);
        ::_exit(body() ? asExpected : notAsExpected);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

bool isExit(int status, int code) {
    return WIFEXITED(status) && WEXITSTATUS(status) == code;
}

TEST(Sandbox, RefusesWhatDecodingDoesNotNeed) {
    int inherited[2];
    ASSERT_EQ(::pipe(inherited), 0);
    for (int& end : inherited) // the number of the helper's own socket is not refused
        end = ::fcntl(end, F_DUPFD, mediaHelperSocket + 1);
    struct Case {
        const char* name;
        std::function<long()> call;
    };
    sockaddr address{};
    char byte = 0;
    iovec block{&byte, 1};
    msghdr message{};
    char program[] = "/bin/true";
    char* const arguments[] = {program, nullptr};
    const Case forbidden[] = {
#ifdef SYS_open // newer processors have openat and clone alone
        {"open", [] { return ::syscall(SYS_open, "/etc/passwd", O_RDONLY); }},
        {"creat", [] { return ::syscall(SYS_creat, "/tmp/sela-sandbox", 0600); }},
        {"fork", [] { return ::syscall(SYS_fork); }},
#endif
        {"openat", [] { return ::open("/etc/passwd", O_RDONLY); }},
        {"openat of itself", [] { return ::open("/proc/self/mem", O_RDWR); }},
        {"openat2", [] { return ::syscall(SYS_openat2, AT_FDCWD, "/etc/passwd", nullptr, 0); }},
        {"stat",
         [] {
             struct stat status;
             return ::stat("/etc/passwd", &status);
         }},
        {"access", [] { return ::access("/etc/passwd", R_OK); }},
        {"getdents", [&] { return ::syscall(SYS_getdents64, inherited[0], &byte, 1); }},
        {"unlink", [] { return ::unlink("/tmp/sela-sandbox"); }},
        {"rename", [] { return ::rename("/tmp/sela-sandbox", "/tmp/sela-sandbox-2"); }},
        {"mkdir", [] { return ::mkdir("/tmp/sela-sandbox", 0700); }},
        {"symlink", [] { return ::symlink("a", "/tmp/sela-sandbox"); }},
        {"chmod", [] { return ::chmod("/tmp", 0777); }},
        {"memfd_create", [] { return ::memfd_create("more", 0); }},
        {"ftruncate", [&] { return ::ftruncate(inherited[1], 1); }},
        {"read", [&] { return ::read(inherited[0], &byte, 1); }},
        {"readv", [&] { return ::readv(inherited[0], &block, 1); }},
        {"recvmsg of another socket", [&] { return ::recvmsg(inherited[0], &message, 0); }},
        {"sendmsg to another socket", [&] { return ::sendmsg(inherited[1], &message, 0); }},
        {"write", [&] { return ::write(inherited[1], "x", 1); }},
        {"pwrite", [&] { return ::pwrite(inherited[1], "x", 1, 0); }},
        {"splice", [&] { return ::splice(inherited[0], nullptr, inherited[1], nullptr, 1, 0); }},
        {"socket", [] { return ::socket(AF_INET, SOCK_STREAM, 0); }},
        {"socketpair",
         [] {
             int ends[2];
             return ::socketpair(AF_UNIX, SOCK_STREAM, 0, ends);
         }},
        {"connect", [&] { return ::connect(inherited[0], &address, sizeof address); }},
        {"bind", [&] { return ::bind(inherited[0], &address, sizeof address); }},
        {"execve", [&] { return ::execve(program, arguments, environ); }},
        {"execveat", [&] { return ::syscall(SYS_execveat, AT_FDCWD, program, arguments, environ, 0); }},
        {"clone of a process",
         [] { return ::syscall(SYS_clone, SIGCHLD, nullptr, nullptr, nullptr, nullptr); }},
        {"ptrace", [] { return ::ptrace(PTRACE_ATTACH, ::getpid() - 1, nullptr, nullptr); }},
        {"process_vm_readv", [&] { return ::process_vm_readv(1, &block, 1, &block, 1, 0); }},
        {"kill", [] { return ::kill(1, 0); }},
        {"tgkill of another", [] { return ::syscall(SYS_tgkill, 1, 1, 0); }},
        {"pidfd_open", [] { return ::syscall(SYS_pidfd_open, 1, 0); }},
        {"prctl", [] { return ::prctl(PR_SET_DUMPABLE, 1); }},
        {"setrlimit",
         [] {
             const rlimit none{RLIM_INFINITY, RLIM_INFINITY};
             return ::setrlimit(RLIMIT_AS, &none);
         }},
        {"setuid", [] { return ::syscall(SYS_setuid, 0); }},
        {"ioctl", [&] { return ::syscall(SYS_ioctl, inherited[0], 0, 0); }},
        {"fcntl", [&] { return ::syscall(SYS_fcntl, inherited[0], F_SETFL, 0); }},
        {"dup", [&] { return ::dup(inherited[0]); }},
        {"unshare", [] { return ::unshare(CLONE_NEWUSER); }},
        {"mount", [] { return ::mount("none", "/tmp", "tmpfs", 0, nullptr); }},
        {"chdir", [] { return ::chdir("/"); }},
        {"bpf", [] { return ::syscall(SYS_bpf, 0, nullptr, 0); }},
        {"io_uring_setup", [] { return ::syscall(SYS_io_uring_setup, 1, nullptr); }},
        {"userfaultfd", [] { return ::syscall(SYS_userfaultfd, 0); }},
        {"keyctl", [] { return ::syscall(SYS_keyctl, 0, 0, 0, 0, 0); }},
        {"mmap of executable memory",
         [] {
             const void* made = ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE | PROT_EXEC,
                                       MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
             return made == MAP_FAILED ? -1L : 0L;
         }},
        {"mprotect to executable",
         [] {
             void* made = ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
             return static_cast<long>(::mprotect(made, 4096, PROT_READ | PROT_EXEC));
         }},
    };
    for (const Case& each : forbidden) {
        const int status = inSandbox([&] {
            errno = 0;
            return each.call() == -1 && errno == EPERM;
        });
        EXPECT_TRUE(isExit(status, asExpected)) << each.name << ", status " << status;
    }
    ::close(inherited[0]);
    ::close(inherited[1]);
}

TEST(Sandbox, AllowsWhatDecodingNeeds) {
    const int file = ::open(SELA_SOURCE_DIR "/LICENSE", O_RDONLY);
    ASSERT_GE(file, 0);
    EXPECT_TRUE(isExit(inSandbox([&] {
                           char bytes[16];
                           return ::pread(file, bytes, sizeof bytes, 0) == sizeof bytes;
                       }),
                       asExpected));
    ::close(file);
    EXPECT_TRUE(isExit(inSandbox([] {
                           bool ran = false;
                           std::thread([&] { ran = !std::vector<char>(8 << 20).empty(); }).join();
                           return ran;
                       }),
                       asExpected));
}

TEST(Sandbox, NobodyLooksIn) {
    int gate[2];
    ASSERT_EQ(::pipe(gate), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        // As an ordinary user, for whom the owner of a process's files in /proc decides whether others of
        // that user may read them.
        if (::geteuid() == 0 && (::setuid(65534) != 0 || ::prctl(PR_SET_DUMPABLE, 1) != 0))
            ::_exit(notAsExpected);
        ::close(gate[0]);
        const bool entered = Sandbox::enter(limits);
        ::close(gate[1]);
        if (entered)
            ::poll(nullptr, 0, -1); // until it is killed
        ::_exit(noSandbox);
    }
    ::close(gate[1]);
    char byte = 0;
    EXPECT_EQ(::read(gate[0], &byte, 1), 0) << "the end of the pipe";
    struct stat status {};
    EXPECT_EQ(::stat(("/proc/" + std::to_string(child) + "/environ").c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 0U);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ::close(gate[0]);
}

/// The confinement without the seccomp filter.
TEST(Sandbox, LayersBelowTheFilterHoldByThemselves) {
    const auto network = [] { return std::filesystem::read_symlink("/proc/self/ns/net").string(); };
    const auto inChild = [](const std::function<int()>& body) {
        const pid_t child = ::fork();
        if (child == 0)
            ::_exit(body());
        int status = 0;
        ::waitpid(child, &status, 0);
        return status;
    };
    const int alone = inChild([&] {
        const std::string before = network();
        if (!Sandbox::leaveNetwork())
            return noSandbox;
        return network() != before ? asExpected : notAsExpected;
    });
    EXPECT_TRUE(isExit(alone, asExpected) || isExit(alone, noSandbox)) << alone;
    const int fileless = inChild([] {
        if (!Sandbox::denyFiles())
            return noSandbox;
        return ::open("/etc/passwd", O_RDONLY) == -1 && errno == EACCES ? asExpected : notAsExpected;
    });
    EXPECT_TRUE(isExit(fileless, asExpected) || isExit(fileless, noSandbox)) << fileless;
}

TEST(Sandbox, ACrashEndsTheProcess) {
    const int status = inSandbox([] {
        ::signal(SIGABRT, SIG_DFL);
        std::abort();
        return true;
    });
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT) << status;
    EXPECT_FALSE(WCOREDUMP(status));
}

TEST(Sandbox, ThreadsThatExistAreShutOffToo) {
    const pid_t child = ::fork();
    if (child == 0) {
        int gate[2];
        if (::pipe(gate) != 0)
            ::_exit(notAsExpected);
        std::thread([&] {
            pollfd opening{gate[0], POLLIN, 0};
            ::poll(&opening, 1, -1);
            ::_exit(::open("/etc/passwd", O_RDONLY) == -1 && errno == EPERM ? asExpected : notAsExpected);
        }).detach();
        if (!Sandbox::enter(limits))
            ::_exit(noSandbox);
        ::close(gate[1]);
        for (;;)
            ::pause();
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(isExit(status, asExpected)) << status;
}

#ifndef SELA_SANITIZED
TEST(Sandbox, MemoryEndsAtTheLimit) {
    EXPECT_TRUE(isExit(inSandbox([] {
                           const auto size = static_cast<std::size_t>(limits.addressSpace);
                           return !std::unique_ptr<char[]>(new (std::nothrow) char[size]);
                       }),
                       asExpected));
}
#endif

} // namespace
} // namespace sela
