#include "platform/foundation/URL.h"

#include <gtest/gtest.h>

namespace sela {
namespace {

TEST(URL, ParsesFileURLsOnly) {
    struct Case {
        const char* text;
        std::optional<std::string> path;
    };
    const Case cases[] = {
        {"file:///tmp/a.jpg", "/tmp/a.jpg"},
        {"FILE:///tmp/a.jpg", "/tmp/a.jpg"},
        {"file://localhost/tmp/a.jpg", "/tmp/a.jpg"},
        {"file:///a%20b%2Fc%25.jpg", "/a b/c%.jpg"},
        {"file:///%c3%A9", "/\xC3\xA9"},
        {"file:///%FF", "/\xFF"},
        {"file:///a+b", "/a+b"},
        {"file://", std::nullopt},
        {"file://other/tmp", std::nullopt},
        {"file:tmp", std::nullopt},
        {"file:///a%0", std::nullopt},
        {"file:///a%", std::nullopt},
        {"file:///a%zz", std::nullopt},
        {"file:///a%00b", std::nullopt},
        {"https://localhost/a", std::nullopt},
        {"", std::nullopt},
    };
    for (const Case& c : cases) {
        const std::optional<URL> url = URL::parse(c.text);
        EXPECT_EQ(url.has_value(), c.path.has_value()) << c.text;
        if (url && c.path) {
            EXPECT_EQ(url->path(), *c.path) << c.text;
        }
    }
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
    struct Case {
        std::string path;
        std::string last;
    };
    const Case cases[] = {
        {"/a/b.jpg", "b.jpg"},
        {"/a/b/", "b"},
        {"/a//", "a"},
        {"/", "/"},
        {"/\xFF.jpg", "\xEF\xBF\xBD.jpg"},
        {"/\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"}, // a surrogate
        {"/\xC3\xA9\xE2\x82", "\xC3\xA9\xEF\xBF\xBD\xEF\xBF\xBD"}, // cut short
        {"/a\nb", "a\nb"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(URL::fileURL(c.path).lastPathComponent(), c.last) << c.path;
    }
}

TEST(URL, ComponentsAreAddedAndTakenAway) {
    EXPECT_EQ(URL::fileURL("/a").appendingPathComponent("b").path(), "/a/b");
    EXPECT_EQ(URL::fileURL("/a/").appendingPathComponent("b").path(), "/a/b");
    EXPECT_EQ(URL::fileURL("/").appendingPathComponent("b").path(), "/b");
    EXPECT_EQ(URL::fileURL("/a/b").deletingLastPathComponent().path(), "/a");
    EXPECT_EQ(URL::fileURL("/a").deletingLastPathComponent().path(), "/");
}

TEST(URL, PathExtension) {
    const std::pair<const char*, const char*> cases[] = {
        {"a.jpg", "jpg"}, {"a.tar.GZ", "GZ"}, {"a", ""}, {".jpg", ""}, {"a.", ""}, {"a.b c", "b c"}, {"", ""},
    };
    for (const auto& [name, extension] : cases)
        EXPECT_EQ(pathExtension(name), extension) << name;
}

} // namespace
} // namespace sela
