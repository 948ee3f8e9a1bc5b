#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <sys/types.h>

namespace sela {

/// One system call of a traced process.
struct TracedCall {
    pid_t thread = 0;
    std::uint64_t number = 0;
    std::array<std::uint64_t, 6> arguments = {};
};

/// What is done to a system call.
struct Intervention {
    enum class Kind {
        none,
        kill,   ///< the whole process ends before the call, by SIGKILL
        fail,   ///< the call is not made and returns the error
        shorten ///< a read or write is asked for half the bytes (at least one)
    };
    Kind kind = Kind::none;
    int error = 0;
};

/// Watches every system call of a traced process, on the thread that called `runTraced`, in the order in
/// which they are made.
class SystemCallObserver {
public:
    virtual ~SystemCallObserver() = default;
    virtual Intervention entering(const TracedCall& call) = 0;
    /// After the call; `result` is what it returned, a negative error number on failure.
    virtual void left(const TracedCall& /*call*/, std::int64_t /*result*/) {}
};

/// How a process ended.
struct ProcessEnd {
    int status = -1; ///< what its function returned; -1 when a signal ended it
    int signal = 0;  ///< that signal
    bool succeeded() const { return status == 0; }
};

/// Runs `body` in a process of its own, a fork of this one, whose standard output and error are silent. It is
/// ended by SIGALRM when it takes longer than ten seconds. The calling process has a single thread.
ProcessEnd runTraced(const std::function<int()>& body, SystemCallObserver& observer);

/// The same without an observer: returns the text that `body` returned, or how the process ended instead.
std::string runApart(const std::function<std::string()>& body);

/// Whether a call of this number reads or writes a number of bytes that is its third argument.
bool canBeShortened(std::uint64_t number);

} // namespace sela
