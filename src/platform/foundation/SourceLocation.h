#pragma once

namespace sela {

/// A place in the source, for reporting where a programming error was made. A value.
///
/// As a default argument, `SourceLocation place = SourceLocation::current()`, it is the place of the call.
/// The standard library's class does the same, but clang 14 cannot compile the one of g++ 12.
struct SourceLocation {
    const char* file;
    int line;

    static constexpr SourceLocation current(const char* file = __builtin_FILE(),
                                            int line = __builtin_LINE()) {
        return {file, line};
    }
};

} // namespace sela
