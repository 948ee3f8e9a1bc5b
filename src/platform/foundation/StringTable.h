#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/Error.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace sela {

/// The texts of one language, as `msgfmt` compiles them into a .mo file. Immutable, so any thread may use it.
class StringTable {
public:
    /// Reads a whole .mo file, whose byte order is little-endian on every machine. The error when a text is
    /// outside of the file, or it is no such file. `name` names it in the error.
    static Result<StringTable> parse(DataView file, std::string_view name);

    /// The text of a key; absent when the table has none. Valid as long as the table.
    std::optional<std::string_view> text(std::string_view key) const;

private:
    std::map<std::string, std::string, std::less<>> texts_;
};

} // namespace sela
