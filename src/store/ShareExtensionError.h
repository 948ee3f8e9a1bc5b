#pragma once

#include "platform/foundation/Error.h"

#include <memory>
#include <string>
#include <utility>

namespace sela {

/// The only kind of error that the extension itself makes: a value with a text. It is passed to completions.
class ShareExtensionError : public Error {
public:
    explicit ShareExtensionError(std::string text) : message(std::move(text)) {}

    /// The error in the form that completions take.
    static ErrorRef make(std::string text) { return std::make_shared<ShareExtensionError>(std::move(text)); }

    std::string localizedDescription() const override { return message; }

    const std::string message;
};

} // namespace sela
