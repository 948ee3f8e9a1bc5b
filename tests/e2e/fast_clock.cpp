/// Preloaded into a program, makes its monotonic clock run SELA_CLOCK_SPEED times as fast, so that animations
/// and delays take a test hardly any time. Nothing else changes.

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <dlfcn.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

std::int64_t nanosecondsOf(const timespec& time) {
    return time.tv_sec * nanosecondsPerSecond + time.tv_nsec;
}

timespec timeOf(std::int64_t nanoseconds) {
    return {nanoseconds / nanosecondsPerSecond, nanoseconds % nanosecondsPerSecond};
}

std::int64_t realNow() {
    timespec time = {};
    ::syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &time);
    return nanosecondsOf(time);
}

std::int64_t start() {
    static const std::int64_t time = realNow();
    return time;
}

std::int64_t speed() {
    static const char* const text = std::getenv("SELA_CLOCK_SPEED");
    static const std::int64_t factor = text ? std::atoll(text) : 1;
    return factor;
}

} // namespace

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    if (clock != CLOCK_MONOTONIC)
        return static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
    const std::int64_t begin = start();
    *time = timeOf(begin + (realNow() - begin) * speed());
    return 0;
}

extern "C" int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                                      const timespec* until) {
    static const auto original =
        reinterpret_cast<decltype(&pthread_cond_clockwait)>(::dlsym(RTLD_NEXT, "pthread_cond_clockwait"));
    if (clock != CLOCK_MONOTONIC)
        return original(condition, mutex, clock, until);
    const timespec real = timeOf(start() + (nanosecondsOf(*until) - start()) / speed());
    return original(condition, mutex, clock, &real);
}
