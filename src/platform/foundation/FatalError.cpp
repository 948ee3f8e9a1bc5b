#include "platform/foundation/FatalError.h"

#include "platform/foundation/NSLog.h"

#include <cstdlib>
#include <string>

namespace sela {

void fatalError(std::string_view message, SourceLocation place) {
    NSLog(std::string(message));
    NSLog("Fatal error at " + std::string(place.file) + ":" + std::to_string(place.line));
    std::abort();
}

} // namespace sela
