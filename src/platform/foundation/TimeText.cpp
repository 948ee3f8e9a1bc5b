#include "platform/foundation/TimeText.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <limits>
#include <mutex>

namespace sela {

std::string describe(double value) {
    std::array<char, 400> digits; // enough for the longest text, that of the smallest number
    const std::to_chars_result end =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed);
    std::string text(digits.data(), end.ptr);
    if (text.find('.') == std::string::npos)
        text += ".0";
    return text;
}

double secondsSince1970() {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::string uniqueTimeText() {
    return uniqueTimeText(secondsSince1970());
}

std::string uniqueTimeText(double now) {
    static std::mutex mutex;
    static double last = 0;
    const std::lock_guard lock(mutex);
    last = now > last ? now : std::nextafter(last, std::numeric_limits<double>::infinity());
    return describe(last);
}

} // namespace sela
