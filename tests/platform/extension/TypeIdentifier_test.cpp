#include "platform/extension/TypeIdentifier.h"

#include "support/TemporaryHome.h"

#include <gtest/gtest.h>
#include <tuple>

namespace sela {
namespace {

TEST(TypeIdentifier, IsToldByTheNameAndElseByTheContent) {
    const TemporaryHome home;
    const std::string jpeg("\xFF\xD8\xFF\xE0\x00\x10JFIF\x00\x01\x01\x00\x00\x01\x00\x01\x00\x00\xFF\xD9",
                           22);
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"a.JPG", "x", "public.jpeg"},
        {"a.heic", jpeg, "public.heic"},
        {"a.mov", "x", "com.apple.quicktime-movie"},
        {"a.mp4", "x", "public.mpeg-4"},
        {"a.m4v", "x", "com.apple.m4v-video"},
        {"a.mpeg", "x", "public.mpeg"},
        {"a.mp3", "x", "public.mp3"},
        {"a.txt", "x", "public.plain-text"},
        {"a", jpeg, "public.jpeg"},
        {"a.unknown", jpeg, "public.jpeg"},
        {"c", "", "public.data"},
        {"d", std::string("\x01\x02\x03\x00", 4), "public.data"},
    };
    for (const auto& [name, content, identifier] : cases)
        EXPECT_EQ(typeIdentifierOfFile(URL::fileURL(home.write(name, content).string())), identifier) << name;
    EXPECT_EQ(typeIdentifierOfFile(URL::fileURL((home.path() / "missing").string())), "public.data");
    EXPECT_EQ(typeIdentifierOfFile(URL::fileURL(home.path().string())), "public.data");
}

} // namespace
} // namespace sela
