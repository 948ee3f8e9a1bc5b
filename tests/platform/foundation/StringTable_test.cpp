#include "platform/foundation/StringTable.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace sela {
namespace {

TEST(StringTable, ATableThatIsCutShortAnywhereIsAnErrorAndNeverReadBeyondItsEnd) {
    std::ifstream file(SELA_BINARY_DIR "/share/locale/de/LC_MESSAGES/sela-share.mo", std::ios::binary);
    const std::string table{std::istreambuf_iterator<char>(file), {}};
    ASSERT_TRUE(StringTable::parse(asData(table), "de").hasValue());
    const std::string endOfLastText(1, '\0');
    for (std::size_t size = 0; size + endOfLastText.size() < table.size(); ++size) {
        const Data cut = toData(table.substr(0, size));
        const auto parsed = StringTable::parse(cut, "de");
        ASSERT_FALSE(parsed.hasValue()) << size;
        ASSERT_TRUE(parsed.error()->localizedDescription().starts_with("de is ")) << size;
    }
}

} // namespace
} // namespace sela
