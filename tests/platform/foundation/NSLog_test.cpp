#include "platform/foundation/NSLog.h"

#include "platform/foundation/TimeText.h"
#include "platform/foundation/UTF8.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <set>

namespace sela {
namespace {

TEST(NSLog, ALineStaysALineAndDrivesNoTerminal) {
    const std::pair<std::string, std::string> cases[] = {
        {"a\nb\r\tc", "a\\nb\\r\\tc"},
        {"\x1B[31m", "\\u001b[31m"},
        {"\u009B31m", "\\u009b31m"},   // the one-character form of the escape sequence
        {"a\u202Egpj", "a\\u202egpj"}, // right-to-left override
        {"a\u2028b", "a\\u2028b"},     // line separator
        {"\xFF", "\xEF\xBF\xBD"},
        {"Bücher 本 \\", "Bücher 本 \\"},
        {std::string("a\0b", 3), "a\\u0000b"},
    };
    for (const auto& [text, line] : cases)
        EXPECT_EQ(escapedForLog(text), line);
}

RC_GTEST_PROP(NSLog, AnyBytesBecomeOneValidLine, (const std::string& bytes)) {
    const std::string line = escapedForLog(bytes);
    RC_ASSERT(isValidUTF8(line));
    for (const char c : line)
        RC_ASSERT(static_cast<unsigned char>(c) >= 0x20);
}

TEST(TimeText, IsUniqueWhenTheClockStandsStillOrStepsBack) {
    std::set<std::string> texts;
    for (const double now : {5e9, 5e9, 5e9, 4e9, 5e9, 6e9, 6e9})
        texts.insert(uniqueTimeText(now));
    EXPECT_EQ(texts.size(), 7u);
    EXPECT_EQ(describe(5e9), "5000000000.0") << "written with an exponent";
}

} // namespace
} // namespace sela
