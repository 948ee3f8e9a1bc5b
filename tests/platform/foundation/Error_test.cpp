#include "platform/foundation/Error.h"

#include <cerrno>
#include <gtest/gtest.h>

namespace sela {
namespace {

TEST(ResultDeathTest, AskingAFailedResultForItsValueStopsTheProcessAtThatPlace) {
    const Result<int> failed = NSError::posix(EIO, "photo.jpg");
    EXPECT_DEATH((void)failed.value(), "photo.jpg: Input/output error(.|\n)*Error_test.cpp:");
}

} // namespace
} // namespace sela
