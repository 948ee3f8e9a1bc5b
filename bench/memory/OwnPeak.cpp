// Preloaded into a program, writes the most memory that the program itself had resident, in KiB, to the file
// $SELA_PEAK_FILE as it ends. The peak that a parent gets from wait4 includes the children that the program
// waited for.

#include <cstdlib>
#include <fstream>
#include <string>

namespace {

struct OwnPeak {
    OwnPeak() { ::unsetenv("LD_PRELOAD"); } // not for the children
    ~OwnPeak() {
        const char* const path = std::getenv("SELA_PEAK_FILE");
        std::ofstream file(path ? path : "");
        // Not getrusage's, which begins with what the parent had when it started the program.
        std::ifstream status("/proc/self/status");
        for (std::string line; std::getline(status, line);)
            if (line.starts_with("VmHWM:"))
                file << std::strtol(line.c_str() + 6, nullptr, 10) << std::endl;
        if (!file)
            std::abort();
    }
};

const OwnPeak ownPeak;

} // namespace
