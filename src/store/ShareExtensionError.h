#pragma once

#include "platform/foundation/Error.h"

#include <memory>
#include <string>
#include <utility>

namespace sela {

/// The one kind of error that the extension makes itself: a value with a text. It is handed to completions.
class ShareExtensionError : public Error {
public:
    explicit ShareExtensionError(std::string text) : message(std::move(text)) {}

    /// The error as completions take it.
    static ErrorRef make(std::string text) { return std::make_shared<ShareExtensionError>(std::move(text)); }

    std::string localizedDescription() const override { return message; }

    const std::string message;
};

} // namespace sela
