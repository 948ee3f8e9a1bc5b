#include "platform/foundation/JSONWriter.h"

#include "platform/foundation/UTF8.h"

#include <array>
#include <charconv>
#include <cmath>

namespace sela {

void JSONWriter::separate() {
    if (needsComma_)
        text_ += ',';
    needsComma_ = true;
}

JSONWriter& JSONWriter::beginObject() {
    separate();
    text_ += '{';
    needsComma_ = false;
    return *this;
}

JSONWriter& JSONWriter::endObject() {
    text_ += '}';
    needsComma_ = true;
    return *this;
}

JSONWriter& JSONWriter::beginArray() {
    separate();
    text_ += '[';
    needsComma_ = false;
    return *this;
}

JSONWriter& JSONWriter::endArray() {
    text_ += ']';
    needsComma_ = true;
    return *this;
}

JSONWriter& JSONWriter::key(std::string_view name) {
    separate();
    quote(name);
    text_ += ':';
    needsComma_ = false;
    return *this;
}

JSONWriter& JSONWriter::string(std::string_view text) {
    separate();
    quote(text);
    return *this;
}

JSONWriter& JSONWriter::boolean(bool value) {
    separate();
    text_ += value ? "true" : "false";
    return *this;
}

JSONWriter& JSONWriter::integer(std::int64_t value) {
    separate();
    text_ += std::to_string(value);
    return *this;
}

JSONWriter& JSONWriter::number(double value) {
    separate();
    if (!std::isfinite(value)) {
        text_ += "null";
        return *this;
    }
    std::array<char, 32> digits;
    const std::to_chars_result end = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    text_.append(digits.data(), end.ptr);
    return *this;
}

JSONWriter& JSONWriter::strings(const std::vector<std::string>& texts) {
    beginArray();
    for (const std::string& text : texts)
        string(text);
    return endArray();
}

void JSONWriter::quote(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    valid_ = valid_ && isValidUTF8(text);
    text_ += '"';
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            text_ += '\\';
            text_ += c;
        } else if (byte < 0x20) {
            text_ += "\\u00";
            text_ += digits[byte >> 4];
            text_ += digits[byte & 15];
        } else {
            text_ += c;
        }
    }
    text_ += '"';
}

} // namespace sela
