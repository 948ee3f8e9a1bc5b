#include "faults/TracedProcess.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <map>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace sela {

namespace {

constexpr unsigned longestSeconds = 10;
constexpr unsigned long long noCall = ~0ULL;

void silence() {
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    ::close(nowhere);
}

/// Traces one process and its threads to the end.
class Tracer {
public:
    Tracer(pid_t process, SystemCallObserver& observer) : process_(process), observer_(observer) {}

    ProcessEnd run() {
        int status = 0;
        ::waitpid(process_, &status, 0);
        ::ptrace(PTRACE_SETOPTIONS, process_, nullptr,
                 PTRACE_O_EXITKILL | PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACECLONE);
        resume(process_, 0);
        while (true) {
            const pid_t thread = ::waitpid(-1, &status, __WALL);
            if (thread < 0)
                return {};
            if (WIFSTOPPED(status))
                stopped(thread, WSTOPSIG(status), status >> 16);
            else if (thread == process_)
                return {WIFEXITED(status) ? WEXITSTATUS(status) : -1,
                        WIFSIGNALED(status) ? WTERMSIG(status) : 0};
        }
    }

private:
    /// What must be done to a thread when the call that it is in returns.
    struct Undo {
        Intervention intervention;
        user_regs_struct registers = {}; ///< as they were before the call
    };

    void stopped(pid_t thread, int signal, int event) {
        if (signal == (SIGTRAP | 0x80)) {
            systemCall(thread);
            resume(thread, 0);
        } else {
            // A new thread begins with a stop of the tracer's; every other signal is its own.
            resume(thread, event || signal == SIGSTOP ? 0 : signal);
        }
    }

    static void resume(pid_t thread, int signal) { ::ptrace(PTRACE_SYSCALL, thread, nullptr, signal); }

    void systemCall(pid_t thread) {
        __ptrace_syscall_info info = {};
        if (::ptrace(PTRACE_GET_SYSCALL_INFO, thread, sizeof info, &info) <= 0)
            return;
        if (info.op == PTRACE_SYSCALL_INFO_ENTRY) {
            TracedCall& call = calls_[thread];
            call = {thread, info.entry.nr, {}};
            std::copy_n(info.entry.args, call.arguments.size(), call.arguments.begin());
            intervene(thread, observer_.entering(call));
        } else if (info.op == PTRACE_SYSCALL_INFO_EXIT && calls_.contains(thread)) {
            observer_.left(calls_[thread], undo(thread, info.exit.rval));
        }
    }

    void intervene(pid_t thread, const Intervention& intervention) {
        using enum Intervention::Kind;
        if (intervention.kind == none)
            return;
        if (intervention.kind == kill) {
            ::kill(process_, SIGKILL);
            return;
        }
        user_regs_struct registers = {};
        ::ptrace(PTRACE_GETREGS, thread, nullptr, &registers);
        undo_[thread] = {intervention, registers};
        if (intervention.kind == shorten)
            registers.rdx = std::max(1ULL, registers.rdx / 2);
        else if (registers.orig_rax == SYS_brk)
            registers.rdi = 0; // no error is known there: it fails by leaving the break where it is
        else
            registers.orig_rax = noCall;
        ::ptrace(PTRACE_SETREGS, thread, nullptr, &registers);
    }

    /// Returns what the call returns now.
    std::int64_t undo(pid_t thread, std::int64_t result) {
        const auto found = undo_.find(thread);
        if (found == undo_.end())
            return result;
        const Undo undo = found->second;
        undo_.erase(found);
        user_regs_struct registers = {};
        ::ptrace(PTRACE_GETREGS, thread, nullptr, &registers);
        registers.rdi = undo.registers.rdi;
        registers.rdx = undo.registers.rdx;
        if (undo.intervention.kind == Intervention::Kind::fail && undo.registers.orig_rax != SYS_brk) {
            result = -undo.intervention.error;
            registers.rax = static_cast<unsigned long long>(result);
        }
        ::ptrace(PTRACE_SETREGS, thread, nullptr, &registers);
        return result;
    }

    const pid_t process_;
    SystemCallObserver& observer_;
    std::map<pid_t, TracedCall> calls_;
    std::map<pid_t, Undo> undo_;
};

} // namespace

ProcessEnd runTraced(const std::function<int()>& body, SystemCallObserver& observer) {
    const pid_t process = ::fork();
    if (process == 0) {
        silence();
        ::alarm(longestSeconds);
        ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        ::raise(SIGSTOP);
        ::_exit(body());
    }
    return Tracer(process, observer).run();
}

std::string runApart(const std::function<std::string()>& body) {
    int ends[2];
    EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    const pid_t process = ::fork();
    if (process == 0) {
        silence();
        ::alarm(longestSeconds);
        const std::string text = body();
        ssize_t ignored = ::write(ends[1], text.data(), text.size());
        (void)ignored;
        ::_exit(0);
    }
    ::close(ends[1]);
    std::string text;
    char buffer[4096];
    for (ssize_t count = 0; (count = ::read(ends[0], buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(count));
    ::close(ends[0]);
    int status = 0;
    ::waitpid(process, &status, 0);
    return WIFEXITED(status) ? text : "ended by signal " + std::to_string(WTERMSIG(status));
}

bool canBeShortened(std::uint64_t number) {
    return number == SYS_read || number == SYS_write || number == SYS_pread64 || number == SYS_pwrite64;
}

} // namespace sela
