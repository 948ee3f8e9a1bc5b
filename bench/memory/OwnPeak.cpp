// Preloaded into a program, writes the most memory that the program itself had resident, in KiB, to the file
// $SELA_PEAK_FILE as it ends. What a parent is told includes the children that were waited for.

#include <cstdio>
#include <cstdlib>
#include <sys/resource.h>

namespace {

struct OwnPeak {
    OwnPeak() { ::unsetenv("LD_PRELOAD"); } // not for the children
    ~OwnPeak() {
        rusage usage{};
        const char* const path = std::getenv("SELA_PEAK_FILE");
        std::FILE* const file = path ? std::fopen(path, "w") : nullptr;
        if (!file || ::getrusage(RUSAGE_SELF, &usage) != 0)
            std::abort();
        std::fprintf(file, "%ld\n", usage.ru_maxrss);
        std::fclose(file);
    }
};

const OwnPeak ownPeak;

} // namespace
