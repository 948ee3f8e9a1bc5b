#include "platform/foundation/Secret.h"

#include <gtest/gtest.h>

#include <fstream>
#include <optional>
#include <string>
#include <sys/mman.h>

namespace sela {
namespace {

TEST(Secret, IsOverwrittenWhereverItWas) {
    const Secret original("1234567890123456");
    const auto change = [](std::optional<Secret>& secret, int way) {
        if (way == 0)
            secret->append('7');
        else if (way == 1)
            secret->clear();
        else if (way == 2)
            secret = Secret("0");
        else
            secret.reset();
    };
    for (int way = 0; way < 4; ++way) {
        std::optional<Secret> secret = original;
        const char* const place = secret->exposed().data();
        change(secret, way);
        // The allocator stores its own data at the start of a freed block.
        EXPECT_EQ(std::string(place + sizeof(void*), place + 16), std::string(16 - sizeof(void*), '\0'))
            << way;
    }
    EXPECT_EQ(original, "1234567890123456");
}

std::string lockedMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmLck:"))
            return line;
    return {};
}

TEST(Secret, LiesInLockedMemory) {
    const Secret secret("123456");
    const std::string locked = lockedMemory();
    static char other[8192];
    ::mlock(other, sizeof other);
    if (lockedMemory() == locked)
        GTEST_SKIP() << "no memory can be locked here, as in builds with sanitizers";
    EXPECT_FALSE(locked.ends_with(" 0 kB")) << locked;
    ::munlock(other, sizeof other);
}

} // namespace
} // namespace sela
