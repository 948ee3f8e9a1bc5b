#include "faults/FaultyGroup.h"
#include "faults/TracedProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/syscall.h>

namespace sela {
namespace {

constexpr std::size_t block = 2'097'152;

/// Whether every call meets every fault (an hour or so), rather than the faults in turn.
bool everything() {
    return std::getenv("SELA_ALL_FAULTS") != nullptr;
}

/// What happens to one system call, and whether it goes on happening to all that follow.
struct Fault {
    const char* name;
    Intervention intervention;
    bool goesOn;
};

std::vector<Fault> faults() {
    using enum Intervention::Kind;
    std::vector<Fault> list{{"kill", {kill}, false}, {"short", {shorten}, false}, {"short", {shorten}, true}};
    for (const auto& [name, error] : {std::pair("ENOSPC", ENOSPC),
                                      {"EIO", EIO},
                                      {"EINTR", EINTR},
                                      {"EMFILE", EMFILE},
                                      {"ENOMEM", ENOMEM}})
        for (const bool goesOn : {false, true})
            list.push_back({name, {fail, error}, goesOn});
    return list;
}

/// Makes a fault to the n-th system call.
class FaultAt : public SystemCallObserver {
public:
    FaultAt(std::size_t index, const Fault& fault) : index_(index), fault_(fault) {}

    /// The first call that the fault was made to; none when the process made fewer calls.
    std::optional<TracedCall> struck;

    Intervention entering(const TracedCall& call) override {
        // Calls that never fail, those by which a process stops itself included.
        constexpr std::array exempt{SYS_exit,         SYS_exit_group,      SYS_futex,
                                    SYS_getpid,       SYS_gettid,          SYS_restart_syscall,
                                    SYS_rseq,         SYS_rt_sigaction,    SYS_rt_sigprocmask,
                                    SYS_rt_sigreturn, SYS_set_robust_list, SYS_tgkill};
        const bool ends = std::ranges::count(exempt, static_cast<long>(call.number)) > 0;
        const std::size_t current = count_++;
        if (ends || current < index_ || (current > index_ && !fault_.goesOn))
            return {};
        if (!struck)
            struck = call;
        if (fault_.intervention.kind == Intervention::Kind::shorten && !canBeShortened(call.number))
            return {};
        // What is interrupted for ever is tried again for ever.
        if (fault_.intervention.error == EINTR && count_ - index_ > longestInterruption)
            return {};
        return fault_.intervention;
    }

private:
    static constexpr std::size_t longestInterruption = 50;

    const std::size_t index_;
    const Fault& fault_;
    std::size_t count_ = 0;
};

struct Operation {
    std::string name;
    int entries; ///< recorded before
    std::function<bool()> run;
    std::string saves; ///< the item that is recorded when it succeeds
    int publishes = 0;
    FaultyGroup::Records records = FaultyGroup::Records::usual;
};

class SystemCalls : public testing::Test {
protected:
    FaultyGroup group;
    int runs = 0;

    /// Makes a fault to the first call, then to the second, and so on until the operation ends before its
    /// turn comes.
    void sweep(const Operation& operation, const std::vector<Fault>& faultsInTurn) {
        for (std::size_t index = 0; meets(operation, index, faultsInTurn[index % faultsInTurn.size()]);
             ++index)
            ASSERT_LT(index, 5000u);
    }

    /// Whether the operation made so many calls that the fault met one.
    bool meets(const Operation& operation, std::size_t index, const Fault& fault) {
        group.reset(operation.entries, operation.records);
        FaultAt faultAt(index, fault);
        const ProcessEnd end = runTraced([&] { return operation.run() ? 0 : 1; }, faultAt);
        const bool untouched = !faultAt.struck;
        const std::string place = operation.name + ", " + fault.name + (fault.goesOn ? " from" : " at") +
                                  " call " + std::to_string(index) + " (number " +
                                  (untouched ? "none" : std::to_string(faultAt.struck->number)) +
                                  "), status " + std::to_string(end.status) + ", signal " +
                                  std::to_string(end.signal);
        EXPECT_TRUE(end.signal != SIGALRM && end.signal != SIGSEGV && end.signal != SIGBUS) << place;
        EXPECT_TRUE(!untouched || end.succeeded()) << place;
        const bool succeeded = end.succeeded();
        EXPECT_EQ(group.wrong(succeeded ? operation.saves : "", succeeded ? operation.publishes : 0), "")
            << place;
        ++runs;
        return !untouched;
    }

    void sweep(const Operation& operation) {
        if (everything())
            for (const Fault& fault : faults())
                sweep(operation, std::vector{fault});
        else
            sweep(operation, faults());
        std::printf("%s: %d runs\n", operation.name.c_str(), runs);
        std::fflush(stdout);
        runs = 0;
    }

    void sweepSaves(bool asData) {
        const std::vector<std::size_t> sizes =
            everything() ? std::vector<std::size_t>{1, block - 1, block, block + 1, 5 << 20}
                         : std::vector<std::size_t>{block + 1};
        for (const std::size_t size : sizes)
            sweepSave(asData, size, 2);
        if (everything())
            sweepSave(asData, block + 1, 0);
    }

    void sweepSave(bool asData, std::size_t size, int entries) {
        const std::string name = "3.5new.jpg";
        const URL source = group.source(name, size);
        const std::string& bytes = group.content(name, size);
        sweep({(asData ? "data of " : "file of ") + std::to_string(size) + " bytes beside " +
                   std::to_string(entries) + " entries",
               entries, [&] { return asData ? group.saveData(name, bytes) : group.save(name, source); },
               name});
    }
};

TEST_F(SystemCalls, SaveOfAFile) {
    sweepSaves(false);
}

TEST_F(SystemCalls, SaveOfData) {
    sweepSaves(true);
}

TEST_F(SystemCalls, Import) {
    sweep({"import", 2, [&] { return group.import(); }, ""});
    if (everything()) {
        sweep({"import to another disk", 2, [&] { return group.import(false); }, ""});
        sweep({"import from a long ledger", 4, [&] { return group.import(); }, "", 0,
               FaultyGroup::Records::longOnes});
    }
}

TEST_F(SystemCalls, Publish) {
    sweep({"publish", 1, [&] { return group.publish(2); }, "", 2});
}

} // namespace
} // namespace sela
