#include "platform/foundation/URL.h"

#include <gtest/gtest.h>

namespace sela {
namespace {

TEST(URL, ParsesFileURLsOnly) {
    const std::pair<const char*, const char*> good[] = {
        {"file:///tmp/a.jpg", "/tmp/a.jpg"},          {"FILE:///tmp/a.jpg", "/tmp/a.jpg"},
        {"file://localhost/tmp/a.jpg", "/tmp/a.jpg"}, {"file:///a%20b%2Fc%25.jpg", "/a b/c%.jpg"},
        {"file:///%c3%A9%FF+", "/\xC3\xA9\xFF+"},
    };
    for (const auto& [text, path] : good) {
        const std::optional<URL> url = URL::parse(text);
        ASSERT_TRUE(url) << text;
        EXPECT_EQ(url->path(), path);
    }
    for (const char* const text : {"file://", "file://other/tmp", "file:tmp", "file:///a%0", "file:///a%",
                                   "file:///a%zz", "file:///a%00b", "https://localhost/a", ""})
        EXPECT_FALSE(URL::parse(text)) << text;
}

TEST(URL, EveryByteOfAPathSurvivesTheTextForm) {
    std::string path = "/";
    for (int byte = 1; byte < 256; ++byte)
        path += static_cast<char>(byte);
    const URL url = URL::fileURL(path);
    const std::optional<URL> back = URL::parse(url.absoluteString());
    ASSERT_TRUE(back);
    EXPECT_EQ(back->path(), path);
}

TEST(URL, LastComponentIsAlwaysText) {
    const std::pair<const char*, const char*> cases[] = {
        {"/a/b.jpg", "b.jpg"},
        {"/a//", "a"},
        {"/", "/"},
        {"/\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"}, // a surrogate
        {"/\xC3\xA9\xE2\x82", "\xC3\xA9\xEF\xBF\xBD\xEF\xBF\xBD"}, // cut short
        {"/a\nb", "a\nb"},
    };
    for (const auto& [path, last] : cases)
        EXPECT_EQ(URL::fileURL(path).lastPathComponent(), last) << path;
}

TEST(URL, ComponentsAreAddedAndTakenAwayWhateverSlashesThereAre) {
    EXPECT_EQ(URL::fileURL("/a/").appendingPathComponent("b").path(), "/a/b");
    EXPECT_EQ(URL::fileURL("/").appendingPathComponent("b").path(), "/b");
    EXPECT_EQ(URL::fileURL("/a/b/").deletingLastPathComponent().path(), "/a");
}

} // namespace
} // namespace sela
