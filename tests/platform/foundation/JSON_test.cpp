#include "platform/foundation/JSONRecords.h"

#include <array>
#include <gmock/gmock.h>
#include <limits>
#include <rapidcheck/gtest.h>

namespace sela {
namespace {

struct Record {
    std::string name;
    bool flag = false;
    std::vector<std::string> path;
    std::optional<std::string> note;

    static constexpr auto jsonMembers() {
        return std::array<JSONMember<Record>, 4>{{{"name", &Record::name},
                                                  {"flag", &Record::flag},
                                                  {"path", &Record::path},
                                                  {"note", &Record::note}}};
    }
    bool operator==(const Record&) const = default;
};

TEST(JSONRecords, ReadsWhatIsRight) {
    const auto read = [](std::string_view text) {
        const Result<std::vector<Record>> records = decodeJSONArray<Record>(asData(text));
        EXPECT_TRUE(records) << text << ": " << (records ? "" : records.error()->localizedDescription());
        return records ? records.value() : std::vector<Record>();
    };
    EXPECT_TRUE(read(" [ ] \n").empty());
    const Record plain{"a", true, {"x", "y"}, std::nullopt};
    EXPECT_EQ(read(R"([{"name":"a","flag":true,"path":["x","y"]}])").at(0), plain);
    EXPECT_EQ(read(R"([{"note":null,"path":["x","y"],"flag":true,"name":"a"}])").at(0), plain);
    EXPECT_EQ(read(R"([{"name":"z","flag":true,"path":[],"name":"a","path":["x","y"]}])").at(0), plain)
        << "the last of two counts";
    EXPECT_EQ(read(R"([{"name":"\u00e9\ud83d\ude00\n","flag":false,"path":[],"note":""}])").at(0),
              (Record{"é😀\n", false, {}, ""}));
    const auto skipping = read(R"([{"more":{"name":"no","deep":[[1,{"flag":2}],null]},"name":"a","flag":true,
        "n":1.5e3,"list":[{"path":1}],"path":["x","y"]},{"name":"b","flag":false,"path":[],"x":{}}])");
    ASSERT_EQ(skipping.size(), 2u);
    EXPECT_EQ(skipping[0], plain);
    EXPECT_EQ(skipping[1].name, "b");
}

TEST(JSONRecords, RefusesWhatIsWrong) {
    const std::string deep =
        R"([{"name":"a","flag":true,"path":[],"x":)" + std::string(40, '[') + std::string(40, ']') + "}]";
    const std::pair<std::string, const char*> cases[] = {
        {"[", "JSON"},
        {"[]]", "extra data"},
        {"{}", "expected an array"},
        {"null", "null where a collection is expected"},
        {"[1]", "a number where a record is expected"},
        {"[[]]", "record 0 is no object"},
        {R"([{"name":"a","path":[]}])", R"("flag" is missing in record 0)"},
        {R"([{"name":1,"flag":true,"path":[]}])", R"("name" of record 0 is a number)"},
        {R"([{"name":null,"flag":true,"path":[]}])", R"("name" of record 0 is null)"},
        {R"([{"name":"a","flag":"true","path":[]}])", R"("flag" of record 0 is a text)"},
        {R"([{"name":"a","flag":true,"path":[true]}])", R"("path" of record 0 is a Boolean)"},
        {R"([{"name":"a","flag":true,"path":[["x"]]}])", R"("path" of record 0 is nested values)"},
        {R"([{"name":"a","flag":true,"path":[],"note":7}])", R"("note" of record 0 is a number)"},
        {"[{\"name\":\"\xFF\",\"flag\":true,\"path\":[]}]", "JSON"},
        {"[1,] // comment", "JSON"},
        {deep, "JSON"},
    };
    for (const auto& [text, reason] : cases) {
        const ErrorRef error = decodeJSONArray<Record>(asData(text)).error();
        ASSERT_TRUE(error) << text;
        EXPECT_THAT(error->localizedDescription(), testing::HasSubstr(reason)) << text;
    }
}

RC_GTEST_PROP(JSONRecords, WhatIsWrittenReadsBack,
              (const std::string& name, bool flag, const std::vector<std::string>& path)) {
    const Record record{name, flag, path, name};
    JSONWriter writer;
    writer.beginArray();
    writeJSONRecord(writer, record);
    writer.endArray();
    const Result<std::vector<Record>> back = decodeJSONArray<Record>(asData(writer.text()));
    RC_ASSERT(writer.isValid() == back.hasValue());
    if (back)
        RC_ASSERT(back.value().at(0) == record);
}

TEST(JSONWriter, NumbersThatAreNoneAreNull) {
    EXPECT_EQ(JSONWriter().number(std::numeric_limits<double>::infinity()).text(), "null");
}

} // namespace
} // namespace sela
