#include "commandline/Arguments.h"
#include "host/CommandLine.h"
#include "host/ShareOptions.h"
#include "vault/VaultOptions.h"

#include <gtest/gtest.h>

namespace sela {
namespace {

using Words = std::vector<std::string>;

TEST(Arguments, TheProgramUnderstandsEveryOptionOfItsTable) {
    const std::map<std::string_view, std::string> values = {
        {"--appearance", "dark"}, {"--contrast", "high"}, {"--screen", "375x667"}, {"--scale", "2"}};
    for (const OptionGroup& group : shareOptions().groups) {
        for (const Option& option : group.options) {
            Words words = {std::string(option.name)};
            if (option.name.ends_with("-file"))
                words.insert(words.begin(), "--album=Trips");
            if (option.takesValue())
                words.push_back(values.contains(option.name) ? values.at(option.name) : "1");
            const Result<CommandLine> line = CommandLine::parse(words);
            EXPECT_TRUE(line.hasValue()) << line.error()->localizedDescription();
        }
    }
}

TEST(Arguments, WhatIsWrongIsSaidWithoutTheValueOfAnOption) {
    const std::pair<Words, std::string> cases[] = {
        {{}, "a command is missing"},
        {{"moo"}, "there is no command \"moo\""},
        {{"publish", "--passcode=1234"}, "unknown option --passcode"},
        {{"publish", "--covers"}, "--covers needs a value"},
        {{"ledger", "--json=1234"}, "--json takes no value"},
        {{"init", "--keep", "--"}, "unknown option --keep"},
        {{"passcode", "--file=1234"}, "\"passcode\" needs to know what to do: set, clear"},
        {{"passcode", "1234"}, "\"passcode\" needs to know what to do: set, clear"},
        {{"passcode", "sett"}, "there is no command \"passcode sett\"; passcode takes: set, clear"},
        {{"album", "rename", "Trips"}, "album rename needs PATH NAME"},
        {{"init", "now"}, "init does not take \"now\""},
    };
    for (const auto& [words, problem] : cases) {
        const Result<Arguments> arguments = readArguments(vaultOptions(), words);
        ASSERT_FALSE(arguments) << problem;
        EXPECT_EQ(arguments.error()->localizedDescription(), problem);
    }
}

TEST(Arguments, OptionsAndOperandsStandInAnyOrder) {
    const Words words = {"a", "-q", "--tap=addButton", "-", "--wait", "-1", "--", "--scale"};
    const Arguments arguments = readArguments(shareOptions(), words).value();
    EXPECT_EQ(arguments.operands, (Words{"a", "-", "--scale"}));
    ASSERT_EQ(arguments.options.size(), 3U);
    EXPECT_EQ(arguments.options[1].value, "addButton");
    EXPECT_TRUE(arguments.has("--quiet"));
    EXPECT_EQ(arguments.valueOf("--wait"), "-1");
}

} // namespace
} // namespace sela
