#include "faults/FaultyGroup.h"
#include "faults/RecordedDisk.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <set>
#include <sys/syscall.h>

namespace sela {
namespace {

/// How many states are made at random behind each change, besides the four extremes.
int randomStates() {
    const char* const text = std::getenv("SELA_POWER_CUTS");
    return text ? std::atoi(text) : 1;
}

struct Operation {
    const char* name;
    std::function<bool()> run;
    std::string saves; ///< the item that is recorded when it has succeeded
    int publishes = 0; ///< the catalogue that is published then
};

/// Kills a process at its n-th call.
class KillAt : public SystemCallObserver {
public:
    explicit KillAt(int calls) : left_(calls) {}
    bool killed() const { return left_ < 0; }
    Intervention entering(const TracedCall& call) override {
        if (call.number == SYS_exit_group || --left_ >= 0)
            return {};
        return {Intervention::Kind::kill};
    }

private:
    int left_;
};

/// Kills a process between the truncation of a file and its flush.
class KillBehindTruncation : public SystemCallObserver {
public:
    Intervention entering(const TracedCall& call) override {
        if (truncates_ && (call.number == SYS_fsync || call.number == SYS_fdatasync))
            return {Intervention::Kind::kill};
        truncates_ |= call.number == SYS_ftruncate;
        return {};
    }

private:
    bool truncates_ = false;
};

class PowerCuts : public testing::Test {
protected:
    const bool takesTime = std::getenv("SELA_POWER_CUTS") != nullptr;

    /// Two blocks where time allows.
    const std::size_t size = takesTime ? 2'097'153 : 5000;

    FaultyGroup group;
    std::mt19937 chance{20'240'817};
    int states = 0;

    void TearDown() override { std::printf("%d states\n", states); }

    /// Looks at one state, unless the same was looked at before.
    void look(const RecordedDisk& disk, std::set<std::size_t>& seen, std::size_t changes,
              RecordedDisk::Survival contents, RecordedDisk::Survival entries, const Operation& operation) {
        const RecordedDisk::State state = disk.state(changes, contents, entries, chance);
        std::size_t hash = changes == disk.changes();
        for (const auto& [path, item] : state.items)
            hash = hash * 31 + std::hash<std::string>()(path) + 7 * std::hash<std::string>()(item.content);
        if (!seen.insert(hash).second)
            return;
        disk.restore(state);
        const bool succeeded = changes == disk.changes();
        ++states;
        EXPECT_EQ(group.wrong(succeeded ? operation.saves : "", succeeded ? operation.publishes : 0), "")
            << operation.name << ", cut behind change " << changes << " of " << disk.changes()
            << ", contents " << static_cast<int>(contents) << ", entries " << static_cast<int>(entries);
    }

    void cutEverywhere(const Operation& operation, int entries,
                       FaultyGroup::Records records = FaultyGroup::Records::usual) {
        using enum RecordedDisk::Survival;
        group.reset(entries, records);
        RecordedDisk disk(group.home());
        ASSERT_TRUE(runTraced([&] { return operation.run() ? 0 : 1; }, disk).succeeded());
        std::set<std::size_t> seen;
        for (std::size_t changes = 0; changes <= disk.changes(); ++changes) {
            if (!takesTime && changes % 3 != 0 && changes != disk.changes())
                continue;
            for (const auto contents : {nothing, everything})
                for (const auto survivingEntries : {nothing, everything})
                    look(disk, seen, changes, contents, survivingEntries, operation);
            for (int i = 0; i < randomStates(); ++i)
                for (const auto survival : {start, some})
                    look(disk, seen, changes, survival, survival, operation);
        }
    }

    /// A kill first, then a run to the end on what it left in the memory of the system, then the cut.
    void cutAfterAKill(const Operation& operation, const Operation& again, int entries) {
        using enum RecordedDisk::Survival;
        for (int call = 0;; call += takesTime ? 3 : 13) {
            group.reset(entries);
            RecordedDisk disk(group.home());
            KillAt killer(call);
            disk.companion = &killer;
            runTraced([&] { return operation.run() ? 0 : 1; }, disk);
            if (!killer.killed())
                return;
            disk.companion = nullptr;
            const std::size_t before = disk.changes();
            ASSERT_TRUE(runTraced([&] { return again.run() ? 0 : 1; }, disk).succeeded()) << call;
            std::set<std::size_t> seen;
            look(disk, seen, disk.changes(), nothing, nothing, again);
            for (int i = 0; i < randomStates(); ++i)
                look(disk, seen, before + chance() % (disk.changes() - before + 1), some, some, again);
        }
    }
};

TEST_F(PowerCuts, Save) {
    const std::string name = "3.5new.jpg";
    const std::string other = "4.5other.jpg";
    const URL source = group.source(name, size);
    const URL otherSource = group.source(other, 1000);
    const std::string bytes = group.content(name, size);
    const Operation file{"save of a file", [&] { return FaultyGroup::save(name, source); }, name};
    const Operation data{"save of data", [&] { return FaultyGroup::saveData(name, bytes); }, name};
    const Operation again{"save after a kill", [&] { return FaultyGroup::save(other, otherSource); }, other};
    for (const int entries : {0, 2}) {
        cutEverywhere(file, entries);
        cutEverywhere(data, entries);
    }
    cutEverywhere(file, 2, FaultyGroup::Records::longOnes);
    cutAfterAKill(data, again, 0);
}

TEST_F(PowerCuts, Import) {
    const Operation linking{"import", [&] { return group.import(); }, ""};
    const Operation copying{"import to another disk", [&] { return group.import(false); }, ""};
    cutEverywhere(linking, 2);
    cutEverywhere(copying, 2);
    // Of four the first leaves blanks behind.
    cutEverywhere(linking, 4, FaultyGroup::Records::longOnes);
    cutAfterAKill(linking, linking, 2);
}

TEST_F(PowerCuts, AfterAKillThatLeftTheJournalTruncatedAndUnflushed) {
    using enum RecordedDisk::Survival;
    const Operation operation{"import", [&] { return group.import(); }, ""};
    group.reset(2);
    RecordedDisk disk(group.home());
    KillBehindTruncation killer;
    disk.companion = &killer;
    ASSERT_FALSE(runTraced([&] { return operation.run() ? 0 : 1; }, disk).succeeded());
    disk.companion = nullptr;
    const std::size_t before = disk.changes();
    ASSERT_TRUE(runTraced([&] { return operation.run() ? 0 : 1; }, disk).succeeded());
    std::set<std::size_t> seen;
    // The next transaction begins here.
    for (std::size_t changes = before; changes < before + 12; ++changes)
        for (int i = 0; i < 20; ++i)
            look(disk, seen, changes, some, everything, operation);
}

TEST_F(PowerCuts, Publish) {
    const Operation publish{"publish", [&] { return group.publish(2); }, "", 2};
    cutEverywhere(publish, 2);
}

} // namespace
} // namespace sela
