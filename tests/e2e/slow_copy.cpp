/// Preloaded into a program, makes each block that the kernel copies for it take 20 ms longer, so that a test
/// can act while a file is being copied.

#include <cstddef>
#include <dlfcn.h>
#include <sys/types.h>
#include <unistd.h>

extern "C" ssize_t copy_file_range(int from, off_t* fromPlace, int to, off_t* toPlace, std::size_t length,
                                   unsigned flags) {
    static const auto original =
        reinterpret_cast<decltype(&copy_file_range)>(::dlsym(RTLD_NEXT, "copy_file_range"));
    ::usleep(20'000);
    return original(from, fromPlace, to, toPlace, length, flags);
}
