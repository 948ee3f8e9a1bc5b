#include "platform/foundation/Error.h"

#include <system_error>

namespace sela {

ErrorRef NSError::posix(int code, std::string_view what) {
    std::string description(what);
    description += ": " + std::generic_category().message(code);
    return std::make_shared<NSError>(NSPOSIXErrorDomain, code, std::move(description));
}

std::string NSError::localizedFailureReason() const {
    return domain_ == NSPOSIXErrorDomain ? std::generic_category().message(code_) : description_;
}

} // namespace sela
