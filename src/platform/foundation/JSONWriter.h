#pragma once

#include "platform/foundation/Secret.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sela {

/// Writes one JSON text, value after value, without white space. Used by one thread at a time.
///
/// Inside an object each value follows a `key`. A text that is not UTF-8 makes the result invalid; the caller
/// checks `isValid` at the end.
class JSONWriter {
public:
    JSONWriter& beginObject();
    JSONWriter& endObject();
    JSONWriter& beginArray();
    JSONWriter& endArray();
    JSONWriter& key(std::string_view name);
    JSONWriter& string(std::string_view text);
    JSONWriter& boolean(bool value);
    JSONWriter& integer(std::int64_t value);

    /// Writes the shortest decimal form that reads back to the same number; one that is not finite as null.
    JSONWriter& number(double value);
    JSONWriter& strings(const std::vector<std::string>& texts);

    /// A key with its value; of an absent text neither is written.
    JSONWriter& member(std::string_view name, const std::string& text) { return key(name).string(text); }
    JSONWriter& member(std::string_view name, const std::optional<std::string>& text) {
        return text ? key(name).string(*text) : *this;
    }
    JSONWriter& member(std::string_view name, const std::optional<Secret>& text) {
        return text ? key(name).string(text->exposed()) : *this;
    }
    JSONWriter& member(std::string_view name, bool value) { return key(name).boolean(value); }
    JSONWriter& member(std::string_view name, const std::vector<std::string>& texts) {
        return key(name).strings(texts);
    }

    /// Whether everything written so far was valid text.
    bool isValid() const { return valid_; }

    const std::string& text() const { return text_; }

private:
    void separate();
    void quote(std::string_view text);

    std::string text_;
    bool needsComma_ = false;
    bool valid_ = true;
};

} // namespace sela
