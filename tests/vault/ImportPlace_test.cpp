#include "vault/ImportPlace.h"

#include <gtest/gtest.h>

namespace sela {
namespace {

TEST(ImportPlace, NamesAreSafeAndKeepTheirExtension) {
    const std::string longName(300, 'n');
    const std::pair<std::string, std::string> cases[] = {
        {"a.jpg", "a.jpg"},
        {"", "_"},
        {".", "_."},
        {"..", "_.."},
        {".hidden", "_.hidden"},
        {"a/b", "a_b"},
        {"../../etc", "_.._.._etc"},
        {"a\nb\x1B", "a_b_"},
        {"本 é", "本 é"},
        {"a\u202Egpj.mp4", "a_gpj.mp4"},
        {"שלום\u200F.jpg", "שלום\u200F.jpg"},
        {"\xFF", "\xEF\xBF\xBD"},
        {longName + ".jpg", std::string(251, 'n') + ".jpg"},
        {"." + longName, "_." + std::string(253, 'n')},
        {"本." + std::string(253, 'n'), "本." + std::string(251, 'n')},
        {"é" + longName, "é" + std::string(253, 'n')},
    };
    for (const auto& [text, name] : cases) {
        EXPECT_EQ(safeFileName(text), name);
        EXPECT_LE(safeFileName(text).size(), 255u);
    }
}

TEST(ImportPlace, FurtherAttemptsAreNumberedBeforeTheExtension) {
    const SharedItem item{"1.5a.jpg", {"A"}, false, "a.jpg"};
    EXPECT_EQ(importName(item, 1), "a.jpg");
    EXPECT_EQ(importName(item, 2), "a (2).jpg");
    EXPECT_EQ(importName({"1.5.jpg", {}, false, std::nullopt}, 3), "1.5 (3).jpg");
    EXPECT_EQ(importName({"x", {}, false, std::string(255, 'n')}, 12), std::string(250, 'n') + " (12)");
}

} // namespace
} // namespace sela
