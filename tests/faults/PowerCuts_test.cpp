#include "faults/FaultyGroup.h"
#include "faults/RecordingDisk.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>

namespace sela {
namespace {

using Survival = RecordingDisk::Survival;

/// How many states are made at random behind each change, besides the four extremes.
int randomStates() {
    const char* const text = std::getenv("SELA_POWER_CUTS");
    return text ? std::atoi(text) : 1;
}

struct Operation {
    const char* name;
    std::function<bool()> run;
    std::string saves = {}; ///< the item that is recorded when it has succeeded
    int publishes = 0;      ///< the catalogue that is published then
};

/// Nothing that a program does reaches the disk any more from one call on, as if it were killed there.
class Kill : public DiskWrapper {
public:
    /// At the call behind so many.
    explicit Kill(int calls) : left_(calls) {}

    /// At the first flush behind a truncation.
    Kill() = default;

    bool struck = false;

private:
    int refusal(const char* call) override {
        if (left_)
            struck |= (*left_)-- == 0;
        else
            struck |= truncated_ && std::strcmp(call, "fdatasync") == 0;
        truncated_ |= std::strcmp(call, "ftruncate") == 0;
        return struck ? -EIO : 0;
    }

    std::optional<int> left_;
    bool truncated_ = false;
};

class PowerCuts : public testing::Test {
protected:
    const bool takesTime = std::getenv("SELA_POWER_CUTS") != nullptr;

    /// Two blocks where time allows.
    const std::size_t size = takesTime ? 2'097'153 : 5000;

    FaultyGroup group;
    std::mt19937 chance{20'240'817};
    int states = 0;
    RecordingDisk::State last; ///< that was looked at

    void TearDown() override { std::printf("%d states\n", states); }

    /// Looks at one state, unless the same was looked at just before.
    void look(const RecordingDisk& disk, std::size_t changes, Survival contents, Survival entries,
              const Operation& operation) {
        const RecordingDisk::State state = disk.stateAfter(changes, contents, entries, chance);
        const bool succeeded = changes == disk.changes();
        if (!succeeded && state == last)
            return;
        last = state;
        disk.restore(state);
        ++states;
        EXPECT_EQ(group.wrong(succeeded ? operation.saves : "", succeeded ? operation.publishes : 0), "")
            << operation.name << ", cut behind change " << changes << " of " << disk.changes()
            << ", contents " << static_cast<int>(contents) << ", entries " << static_cast<int>(entries);
    }

    /// Records an operation on the group as it stands.
    static std::unique_ptr<RecordingDisk> record(const FaultyGroup& on, const Operation& operation) {
        auto disk = std::make_unique<RecordingDisk>(on.home());
        EXPECT_TRUE(operation.run()) << operation.name;
        disk->takeOutOfUse();
        return disk;
    }

    void cutEverywhere(const Operation& operation, int entries,
                       FaultyGroup::Records records = FaultyGroup::Records::usual) {
        group.reset(entries, records);
        const std::unique_ptr<RecordingDisk> disk = record(group, operation);
        for (std::size_t changes = 0; changes <= disk->changes(); ++changes) {
            if (!takesTime && changes % 3 != 0 && changes != disk->changes())
                continue;
            for (const auto contents : {Survival::nothing, Survival::everything})
                for (const auto entriesThen : {Survival::nothing, Survival::everything})
                    look(*disk, changes, contents, entriesThen, operation);
            for (int i = 0; i < randomStates(); ++i)
                for (const auto survival : {Survival::start, Survival::some})
                    look(*disk, changes, survival, survival, operation);
        }
    }

    /// What was recorded of a run that was killed and another that then went to its end.
    struct TwoRuns {
        std::unique_ptr<RecordingDisk> disk;
        std::size_t killedAt; ///< behind so many changes
    };

    /// Lets a kill strike and then another run go to its end on what that left in the memory of the system.
    /// Absent when the first run ended before the kill.
    template<class... Place>
    std::optional<TwoRuns> runAfterAKill(const Operation& operation, const Operation& again, int entries,
                                         Place... place) {
        group.reset(entries);
        TwoRuns runs{std::make_unique<RecordingDisk>(group.home()), 0};
        {
            const Kill kill(place...);
            operation.run();
            if (!kill.struck)
                return std::nullopt;
        }
        runs.killedAt = runs.disk->changes();
        EXPECT_TRUE(again.run());
        runs.disk->takeOutOfUse();
        return runs;
    }

    void cutAfterKillsEverywhere(const Operation& operation, const Operation& again, int entries) {
        for (int calls = 0;; calls += takesTime ? 1 : 3) {
            const std::optional<TwoRuns> runs = runAfterAKill(operation, again, entries, calls);
            if (!runs)
                return;
            const std::size_t later = runs->disk->changes() - runs->killedAt + 1;
            look(*runs->disk, runs->disk->changes(), Survival::nothing, Survival::nothing, again);
            for (int i = 0; i < randomStates(); ++i)
                look(*runs->disk, runs->killedAt + chance() % later, Survival::some, Survival::some, again);
        }
    }
};

TEST_F(PowerCuts, Save) {
    const std::string name = "3.5new.jpg";
    const std::string other = "4.5other.jpg";
    const Operation file{"save of a file", [&] { return group.save(name, size); }, name};
    const Operation data{"save of data", [&] { return group.saveData(name, size); }, name};
    const Operation again{"save after a kill", [&] { return group.save(other, 1000); }, other};
    for (const int entries : {0, 2}) {
        cutEverywhere(file, entries);
        cutEverywhere(data, entries);
    }
    cutEverywhere(file, 2, FaultyGroup::Records::longOnes);
    cutAfterKillsEverywhere(data, again, 0);
}

TEST_F(PowerCuts, Import) {
    const Operation linking{"import", [&] { return group.import(); }};
    cutEverywhere(linking, 2);
    cutEverywhere({"import to another disk", [&] { return group.import(false); }}, 2);
    // Of four the first leaves blanks behind.
    cutEverywhere(linking, 4, FaultyGroup::Records::longOnes);
    cutAfterKillsEverywhere(linking, linking, 2);
}

TEST_F(PowerCuts, AfterAKillThatLeftTheJournalTruncatedAndUnflushed) {
    const Operation linking{"import", [&] { return group.import(); }};
    const std::optional<TwoRuns> runs = runAfterAKill(linking, linking, 2);
    ASSERT_TRUE(runs);
    // The next transaction begins here.
    for (std::size_t changes = runs->killedAt; changes < runs->killedAt + 12; ++changes)
        for (int i = 0; i < 20; ++i)
            look(*runs->disk, changes, Survival::some, Survival::everything, linking);
}

TEST_F(PowerCuts, Publish) {
    cutEverywhere({"publish", [&] { return group.publish(2); }, "", 2}, 2);
}

} // namespace
} // namespace sela
