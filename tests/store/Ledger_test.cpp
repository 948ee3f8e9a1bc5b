#include "store/SharedItemLedger.h"

#include "platform/foundation/UTF8.h"
#include "store/FileKind.h"

#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstring>

namespace sela {
namespace {

TEST(FileKind, IsToldByTheExtensionAlone) {
    const std::pair<const char*, FileKind> cases[] = {
        {"a.jpg", FileKind::image},  {"a.JPEG", FileKind::image},      {"a.HeIc", FileKind::image},
        {"a.heif", FileKind::image}, {"a.png", FileKind::image},       {"a.gif", FileKind::image},
        {"a.bmp", FileKind::image},  {"a.webp", FileKind::image},      {"a.dng", FileKind::image},
        {"a.pic", FileKind::image},  {"a.raw-image", FileKind::image}, {"a.pict", FileKind::image},
        {"a.mp4", FileKind::video},  {"a.m4v", FileKind::video},       {"a.MOV", FileKind::video},
        {"a.mpeg", FileKind::video}, {"a.mp3", FileKind::audio},       {"a.m4a", FileKind::audio},
        {"a.aac", FileKind::audio},  {"a.aiff", FileKind::audio},      {"a.au", FileKind::audio},
        {"a.flac", FileKind::audio}, {"a.wav", FileKind::audio},       {"a.txt", FileKind::other},
        {"a", FileKind::other},      {"a.jpg ", FileKind::other},      {"jpg", FileKind::other},
        {".jpg", FileKind::other},   {"a.jpg.", FileKind::other},      {"public.mp3", FileKind::audio},
        {"a.mpg", FileKind::other},  {"a.tiff", FileKind::other},      {"", FileKind::other},
    };
    for (const auto& [name, kind] : cases)
        EXPECT_EQ(fileKind(name), kind) << name;
}

TEST(SharedItemLedger, KeysKeepAlbumPathsApart) {
    const auto key = [](std::vector<std::string> albums, bool fake) {
        return SharedItemLedger::key({"1.5a.png", std::move(albums), fake, std::nullopt});
    };
    EXPECT_EQ(key({"Trips", "2020-Rome"}, false), "Trips-2020--Rome-normal1.5a.png");
    EXPECT_EQ(key({"a-b"}, false), "a--b-normal1.5a.png");
    EXPECT_EQ(key({"a", "b"}, false), "a-b-normal1.5a.png");
    EXPECT_EQ(key({"a"}, true), "a-fake1.5a.png");
    EXPECT_EQ(key({}, false), "normal1.5a.png");
    EXPECT_EQ(key({"-", ""}, false), "----normal1.5a.png");
}

TEST(SharedItemLedger, AFreshLedgerHasItsMembersInOrder) {
    const SharedItem item{"1.5a.png", {"A\"B"}, false, "a.png"};
    EXPECT_EQ(asText(*SharedItemLedger::fresh("k", item)),
              R"({"k":{"fileName":"1.5a.png","albumNames":["A\"B"],"fake":false,"preferredName":"a.png"}})");
    const SharedItem unnamed{"1.5.jpg", {}, true, std::nullopt};
    EXPECT_EQ(asText(*SharedItemLedger::fresh("k", unnamed)),
              R"({"k":{"fileName":"1.5.jpg","albumNames":[],"fake":true}})");
}

TEST(SharedItemLedger, WhatWasThereStaysByteForByte) {
    const SharedItem item{"n", {"A"}, false, std::nullopt};
    const std::string entry = R"("k":{"fileName":"n","albumNames":["A"],"fake":false}})";
    const std::string old = R"({"fileName":"o","albumNames":[],"fake":false,"later":[1,{}]})";
    const std::pair<std::string, std::string> cases[] = {
        {"{}", "{" + entry},
        {" { \n } \n", " { \n " + entry},
        {R"({"a":)" + old + "}", R"({"a":)" + old + "," + entry},
        {R"({"a":)" + old + R"(,"a":)" + old + " }\n", R"({"a":)" + old + R"(,"a":)" + old + " ," + entry},
    };
    for (const auto& [before, after] : cases) {
        ASSERT_TRUE(SharedItemLedger::keys(asData(before))) << before;
        EXPECT_FALSE(SharedItemLedger::keys(asData(before)).value().contains("k")) << before;
        const std::optional<Data> grown = SharedItemLedger::adding(asData(before), "k", item);
        ASSERT_TRUE(grown);
        EXPECT_EQ(asText(*grown), after);
        EXPECT_TRUE(SharedItemLedger::keys(*grown).value().contains("k"));
    }
}

TEST(SharedItemLedger, WhatIsLeftStaysByteForByte) {
    const SharedItem item{"n", {"A\"}"}, false, std::nullopt};
    const std::string entry = R"("k":{"fileName":"n","albumNames":["A\"}"],"fake":false})";
    const std::string old = R"("\"{": {"fileName":"o,","albumNames":[ ],"fake":false,"later":[1,{}]})";
    const std::pair<std::string, std::string> cases[] = {
        {"{}", ""},
        {"{" + entry + "}", ""},
        {"{" + entry + "," + entry + "}", ""},
        {"{" + old + "}", "{" + old + "}"},
        {" {\n" + old + " , " + entry + "}", "{" + old + "}"},
        {"{" + entry + "," + old + "} ", "{" + old + "}"},
        {"{" + old + "," + entry + "," + old + "}", "{" + old + "," + old + "}"},
    };
    for (const auto& [before, after] : cases) {
        const Result<std::optional<Data>> left = SharedItemLedger::removing(asData(before), {{"k", item}});
        ASSERT_TRUE(left) << before;
        EXPECT_EQ(left.value() ? asText(*left.value()) : std::string_view(), after);
    }
    EXPECT_TRUE(SharedItemLedger::removing(asData("{]"), {{"k", item}}).error());
}

SharedItemLedger::Entry numbered(int number) {
    const SharedItem item{std::to_string(number) + ".jpg", {"Trips"}, false, "IMG.JPG"};
    return {SharedItemLedger::key(item), item};
}

/// In how many blocks of 256 bytes two texts of one length differ.
int changedBlocks(DataView before, DataView after) {
    int changed = 0;
    for (std::size_t at = 0; at < before.size(); at += 256)
        changed += std::memcmp(&before[at], &after[at], std::min<std::size_t>(256, before.size() - at)) != 0;
    return changed;
}

TEST(SharedItemLedger, ALongOneChangesInOnePlace) {
    std::vector<SharedItemLedger::Entry> model;
    model.reserve(1000);
    for (int i = 0; i < 1000; ++i)
        model.push_back(numbered(i));
    Data ledger = *SharedItemLedger::encode(model);
    int lengths = 0;
    for (int i = 1000; i < 2000; ++i) {
        model.push_back(numbered(i));
        const Data grown = *SharedItemLedger::adding(ledger, model.back().first, model.back().second);
        if (grown.size() != ledger.size())
            ++lengths;
        else
            EXPECT_LE(changedBlocks(ledger, grown), 2);
        ledger = grown;
    }
    EXPECT_LE(lengths, 3) << "of 100 kB that were added";
    ASSERT_TRUE(SharedItemLedger::decode(ledger).value() == model);
    while (!model.empty()) {
        const auto gone = model.begin() + static_cast<std::ptrdiff_t>(model.size() * 7 / 10);
        const std::optional<Data> left = SharedItemLedger::removing(ledger, {*gone}).value();
        model.erase(gone);
        ASSERT_EQ(left.has_value(), !model.empty());
        if (!left)
            break;
        if (left->size() == ledger.size())
            EXPECT_LE(changedBlocks(ledger, *left), 2);
        else
            EXPECT_TRUE(ledger.size() <= 65536 || left->size() <= ledger.size() / 2 + model.size() + 2);
        ledger = *left;
        if (model.size() % 100 == 0) {
            ASSERT_TRUE(SharedItemLedger::decode(ledger).value() == model);
        }
    }
}

TEST(SharedItemLedger, TextsThatAreNotUTF8CannotBeRecorded) {
    EXPECT_FALSE(SharedItemLedger::fresh("k", {"\xFF.jpg", {}, false, std::nullopt}));
    EXPECT_FALSE(SharedItemLedger::adding(asData("{}"), "k", {"a.jpg", {"\xFF"}, false, std::nullopt}));
}

RC_GTEST_PROP(SharedItemLedger, GrowsLikeAListOfEntries,
              (const std::vector<std::pair<std::string, std::string>>& additions)) {
    std::vector<SharedItemLedger::Entry> model;
    Data ledger = toData("{}");
    for (const auto& [album, name] : additions) {
        const SharedItem item{name, {album, "x"}, name.size() % 2 == 0, album};
        const std::string key = SharedItemLedger::key(item);
        const std::optional<Data> grown = SharedItemLedger::adding(ledger, key, item);
        const bool text = isValidUTF8(album) && isValidUTF8(name);
        RC_ASSERT(grown.has_value() == text);
        if (!grown)
            continue;
        ledger = *grown;
        model.emplace_back(key, item);
        RC_ASSERT(SharedItemLedger::keys(ledger).value().contains(key));
    }
    const bool same = SharedItemLedger::decode(ledger).value() == model;
    RC_ASSERT(same);
    const bool encodedAlike = *SharedItemLedger::encode(model) == ledger;
    RC_ASSERT(encodedAlike);
}

} // namespace
} // namespace sela
