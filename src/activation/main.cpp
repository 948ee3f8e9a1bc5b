#include "activation/ShareApplication.h"

#include <filesystem>
#include <string>
#include <system_error>

namespace {

/// `sela-share` is beside this program in a build tree, and in `bin` of the same prefix where both are
/// installed.
std::string shareProgram() {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path own = fs::read_symlink("/proc/self/exe", error).parent_path();
    if (const fs::path beside = own / "sela-share"; fs::exists(beside, error))
        return beside;
    return own.parent_path().parent_path() / "bin" / "sela-share";
}

} // namespace

int main(int argc, char** argv) {
    const std::string program = shareProgram();
    GApplication* const application = sela::makeShareApplication(program.c_str());
    const int status = g_application_run(application, argc, argv);
    g_object_unref(application);
    return status;
}
