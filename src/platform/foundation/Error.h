#pragma once

#include "platform/foundation/FatalError.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace sela {

/// What went wrong, as a value: immutable, shared, and free to pass between threads.
class Error {
public:
    virtual ~Error() = default;

    /// One line for a log or a person, in English; never empty.
    virtual std::string localizedDescription() const = 0;

    /// The cause alone, for a message that already says what failed.
    virtual std::string localizedFailureReason() const { return localizedDescription(); }
};

/// An optional error: null means success. Completions and operations that return nothing else use it.
using ErrorRef = std::shared_ptr<const Error>;

/// Domains of the platform's own errors.
inline constexpr std::string_view NSCocoaErrorDomain = "NSCocoaErrorDomain";
inline constexpr std::string_view NSPOSIXErrorDomain = "NSPOSIXErrorDomain";

/// Code of a cancellation by the user in NSCocoaErrorDomain (the platform's constant).
inline constexpr int NSUserCancelledError = 3072;

/// Codes of the platform in NSCocoaErrorDomain for data that cannot be decoded.
inline constexpr int NSCoderReadCorruptError = 4864;
inline constexpr int NSCoderInvalidValueError = 4866;

/// The system's text for an errno, in English whatever the locale, as all that programs print. Any thread.
std::string systemErrorText(int code);

/// An error of the platform: a domain, a code of that domain, and a description.
class NSError : public Error {
public:
    NSError(std::string_view domain, int code, std::string description)
        : domain_(domain), code_(code), description_(std::move(description)) {}

    /// The error of a failed system call: `code` is its errno, `what` says what was attempted.
    static ErrorRef posix(int code, std::string_view what);

    const std::string& domain() const { return domain_; }
    int code() const { return code_; }
    std::string localizedDescription() const override { return description_; }

    /// For a failed system call, the system's text for its errno.
    std::string localizedFailureReason() const override;

private:
    std::string domain_;
    int code_;
    std::string description_;
};

/// A value, or the error that kept it from being made.
template<class T>
class Result {
public:
    Result(T value) : content_(std::move(value)) {}
    Result(ErrorRef error) : content_(std::move(error)) {}

    explicit operator bool() const { return content_.index() == 0; }
    bool hasValue() const { return content_.index() == 0; }

    /// The value. Calling this on a failed result is a programming error and stops the process.
    T& value(SourceLocation place = SourceLocation::current()) {
        require(place);
        return *std::get_if<0>(&content_);
    }
    const T& value(SourceLocation place = SourceLocation::current()) const {
        require(place);
        return *std::get_if<0>(&content_);
    }

    /// The error, or null when there is a value.
    ErrorRef error() const { return hasValue() ? nullptr : *std::get_if<1>(&content_); }

private:
    void require(SourceLocation place) const {
        if (!hasValue())
            fatalError("A result without a value: " + error()->localizedDescription(), place);
    }

    std::variant<T, ErrorRef> content_;
};

} // namespace sela
