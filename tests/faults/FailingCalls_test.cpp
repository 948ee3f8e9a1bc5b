#include "faults/FaultyGroup.h"
#include "support/DiskWrapper.h"

#include <cerrno>
#include <cstdlib>
#include <gtest/gtest.h>

namespace sela {
namespace {

constexpr std::size_t block = 2'097'152;

/// Whether every call gets every fault, rather than one of them in turn.
bool everything() {
    return std::getenv("SELA_ALL_FAULTS") != nullptr;
}

/// The fault of one call, and whether all later calls have it too. A lasting EIO has the same effect on the
/// disk as a kill: nothing that the program does reaches it any more.
struct Fault {
    int error; ///< 0: only half of the bytes, or one, are read or written
    bool goesOn;
};

/// Injects a fault into the call of that number.
class FaultAt : public DiskWrapper {
public:
    FaultAt(std::size_t place, const Fault& fault) : place_(place), fault_(fault) {}

    /// The call that got the fault; empty when there were fewer calls.
    std::string struck;

    std::int64_t read(int descriptor, std::span<std::byte> buffer) override {
        return DiskWrapper::read(descriptor, shortened(buffer));
    }
    std::int64_t pread(int descriptor, std::span<std::byte> buffer, std::int64_t offset) override {
        return DiskWrapper::pread(descriptor, shortened(buffer), offset);
    }
    std::int64_t copyFileRange(int from, int to, std::int64_t offset, std::int64_t length) override {
        const bool isShort = fault_.error == 0 && meets(count_) && length > 1;
        return DiskWrapper::copyFileRange(from, to, offset, isShort ? length / 2 : length);
    }
    std::int64_t pwrite(int descriptor, DataView bytes, std::int64_t offset) override {
        return DiskWrapper::pwrite(descriptor, shortened(bytes), offset);
    }

private:
    bool meets(std::size_t call) const { return call == place_ || (call > place_ && fault_.goesOn); }

    int refusal(const char* name) override {
        const bool met = meets(count_++);
        if (met && struck.empty())
            struck = name;
        return met ? -fault_.error : 0;
    }
    template<class Bytes>
    std::span<Bytes> shortened(std::span<Bytes> bytes) const {
        const bool isShort = fault_.error == 0 && meets(count_) && bytes.size() > 1;
        return isShort ? bytes.first(bytes.size() / 2) : bytes;
    }

    const std::size_t place_;
    const Fault fault_;
    std::size_t count_ = 0;
};

class FailingCalls : public testing::Test {
protected:
    FaultyGroup group;

    /// Injects a fault into the first call, then into the second, and so on until the operation makes no call
    /// of that number.
    void sweep(const Operation& operation) {
        int runs = 0;
        std::vector<Fault> faults;
        for (const int error : {EIO, ENOSPC, EMFILE, ENOMEM, 0})
            faults.insert(faults.end(), {{error, false}, {error, true}});
        std::size_t place = 0;
        for (bool met = true; met; ++place) {
            ASSERT_LT(place, 5000u);
            met = false;
            for (std::size_t i = 0; i < faults.size(); ++i)
                if (everything() || place % faults.size() == i) {
                    met |= meets(operation, place, faults[i]);
                    ++runs;
                }
        }
        std::printf("%s: %zu calls, %d runs\n", operation.name.c_str(), place - 1, runs);
    }

    /// Whether the operation made enough calls to get the fault.
    bool meets(const Operation& operation, std::size_t place, const Fault& fault) {
        group.reset(operation.entries, operation.records);
        bool succeeded = false;
        std::string struck;
        {
            FaultAt disk(place, fault);
            succeeded = operation.run(group);
            struck = disk.struck;
        }
        EXPECT_TRUE(!struck.empty() || succeeded) << operation.name;
        EXPECT_EQ(group.wrongBehind(operation, succeeded), "")
            << operation.name << ": error " << fault.error << (fault.goesOn ? " from" : " at") << " call "
            << place << ", " << struck;
        return !struck.empty();
    }
};

TEST_F(FailingCalls, LoseNothing) {
    for (const std::size_t size : everything()
                                      ? std::vector<std::size_t>{1, block - 1, block, block + 1, 5 << 20}
                                      : std::vector<std::size_t>{block + 1})
        for (const Operation& operation : operations(size))
            if (everything() || operation.records == FaultyGroup::Records::usual)
                sweep(operation);
}

} // namespace
} // namespace sela
