#include "platform/foundation/Error.h"

#include "platform/foundation/FatalError.h"
#include "platform/foundation/NSLog.h"

#include <cerrno>
#include <gtest/gtest.h>

namespace sela {
namespace {

TEST(ResultDeathTest, AskingAFailedResultForItsValueStopsTheProcessAtThatPlace) {
    const Result<int> failed = NSError::posix(EIO, "photo.jpg");
    EXPECT_DEATH((void)failed.value(), "photo.jpg: Input/output error(.|\n)*Error_test.cpp:");
}

TEST(FatalErrorDeathTest, TellsWhatWasHeldBack) {
    EXPECT_DEATH(
        {
            const HeldLog held;
            NSLog("held back");
            fatalError("broken");
        },
        "held back\nbroken\nFatal error at ");
}

} // namespace
} // namespace sela
