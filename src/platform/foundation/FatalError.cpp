#include "platform/foundation/FatalError.h"

#include "platform/foundation/NSLog.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

namespace sela {

namespace {

/// The path of a source file relative to the project's folder, so that the build machine's path is not
/// revealed.
std::string_view pathInProject(std::string_view file) {
    const std::size_t place = std::min(file.rfind("/src/"), file.rfind("/tests/"));
    return place == std::string_view::npos ? file : file.substr(place + 1);
}

} // namespace

void fatalError(std::string_view message, SourceLocation place) {
    HeldLog::release();
    NSLog(std::string(message));
    NSLog("Fatal error at " + std::string(pathInProject(place.file)) + ":" + std::to_string(place.line));
    std::abort();
}

} // namespace sela
