#include "platform/foundation/Error.h"

#include <cstring>

namespace sela {

std::string systemErrorText(int code) {
    const char* const text = ::strerrordesc_np(code);
    return text ? text : "Unknown error " + std::to_string(code);
}

ErrorRef NSError::posix(int code, std::string_view what) {
    std::string description(what);
    description += ": " + systemErrorText(code);
    return std::make_shared<NSError>(NSPOSIXErrorDomain, code, std::move(description));
}

std::string NSError::localizedFailureReason() const {
    return domain_ == NSPOSIXErrorDomain ? systemErrorText(code_) : description_;
}

} // namespace sela
