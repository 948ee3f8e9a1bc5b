#include "faults/FaultyGroup.h"
#include "faults/RecordingDisk.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <optional>

namespace sela {
namespace {

using Survival = RecordingDisk::Survival;

/// How many random states are made after each change, besides the four extremes.
int randomStates() {
    const char* const text = std::getenv("SELA_POWER_CUTS");
    return text ? std::atoi(text) : 1;
}

/// From one call on, nothing that a program does reaches the disk, as if it were killed there.
class Kill : public DiskWrapper {
public:
    /// After this many calls.
    explicit Kill(int calls) : left_(calls) {}

    /// At the first fsync after a truncation.
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
    RecordingDisk::State last; ///< that was checked

    void TearDown() override { std::printf("%d states\n", states); }

    /// Checks one state, unless the same was checked just before.
    void look(const RecordingDisk& disk, std::size_t changes, Survival contents, Survival entries,
              const Operation& operation) {
        const RecordingDisk::State state = disk.stateAfter(changes, contents, entries, chance);
        const bool succeeded = changes == disk.changes();
        if (!succeeded && state == last)
            return;
        last = state;
        disk.restore(state);
        ++states;
        EXPECT_EQ(group.wrongBehind(operation, succeeded), "")
            << operation.name << ", cut behind change " << changes << " of " << disk.changes()
            << ", contents " << static_cast<int>(contents) << ", entries " << static_cast<int>(entries);
    }

    void cutEverywhere(const Operation& operation) {
        group.reset(operation.entries, operation.records);
        RecordingDisk disk(group.home());
        EXPECT_TRUE(operation.run(group)) << operation.name;
        disk.takeOutOfUse();
        for (std::size_t changes = 0; changes <= disk.changes(); ++changes) {
            if (!takesTime && changes % 3 != 0 && changes != disk.changes())
                continue;
            for (const auto contents : {Survival::nothing, Survival::everything})
                for (const auto entries : {Survival::nothing, Survival::everything})
                    look(disk, changes, contents, entries, operation);
            for (int i = 0; i < randomStates(); ++i)
                look(disk, changes, Survival::some, Survival::some, operation);
        }
    }

    /// The changes recorded of a run that was killed and of another that then completed.
    struct TwoRuns {
        std::unique_ptr<RecordingDisk> disk;
        std::size_t killedAt; ///< after this many changes
    };

    /// Kills a run and then completes another one on what the first left in the page cache. Absent when the
    /// first run ended before the kill.
    template<class... Place>
    std::optional<TwoRuns> runAfterAKill(const Operation& operation, const Operation& again, Place... place) {
        group.reset(operation.entries, operation.records);
        TwoRuns runs{std::make_unique<RecordingDisk>(group.home()), 0};
        {
            const Kill kill(place...);
            operation.run(group);
            if (!kill.struck)
                return std::nullopt;
        }
        runs.killedAt = runs.disk->changes();
        EXPECT_TRUE(again.run(group));
        runs.disk->takeOutOfUse();
        return runs;
    }

    void cutAfterKillsEverywhere(const Operation& operation, const Operation& again) {
        for (int calls = 0;; calls += takesTime ? 1 : 3) {
            const std::optional<TwoRuns> runs = runAfterAKill(operation, again, calls);
            if (!runs)
                return;
            const std::size_t later = runs->disk->changes() - runs->killedAt + 1;
            look(*runs->disk, runs->disk->changes(), Survival::nothing, Survival::nothing, again);
            for (int i = 0; i < randomStates(); ++i)
                look(*runs->disk, runs->killedAt + chance() % later, Survival::some, Survival::some, again);
        }
    }
};

TEST_F(PowerCuts, LoseNothing) {
    for (const Operation& operation : operations(size))
        cutEverywhere(operation);
}

const Operation otherSave{"save after a kill", 0, FaultyGroup::Records::usual,
                          [](FaultyGroup& group) { return group.save("4.5other.jpg", 1000); },
                          "4.5other.jpg"};
const Operation import{"import after a kill", 2, FaultyGroup::Records::usual,
                       [](const FaultyGroup& group) { return group.import(); }};

TEST_F(PowerCuts, LoseNothingBehindAKill) {
    cutAfterKillsEverywhere(operations(size)[1], otherSave);
    cutAfterKillsEverywhere(import, import);
}

TEST_F(PowerCuts, LoseNothingBehindAKillThatLeftTheJournalTruncatedAndUnflushed) {
    const std::optional<TwoRuns> runs = runAfterAKill(import, import);
    ASSERT_TRUE(runs);
    // The next transaction begins here.
    for (std::size_t changes = runs->killedAt; changes < runs->killedAt + 12; ++changes)
        for (int i = 0; i < 20; ++i)
            look(*runs->disk, changes, Survival::some, Survival::everything, import);
}

} // namespace
} // namespace sela
