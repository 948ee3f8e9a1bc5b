#include "vault/SettingsFolder.h"

#include "platform/foundation/SystemCall.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <sys/inotify.h>

namespace sela {

namespace {

/// Milliseconds between two looks, and without changes in a folder that is whole again.
constexpr int quietTime = 1000;

} // namespace

ErrorRef SettingsFolder::watch() {
    constexpr std::uint32_t mask = IN_MODIFY | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
    events_ = FileDescriptor(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    if (!events_.isOpen() || ::inotify_add_watch(events_.get(), folder_.path().c_str(), mask) < 0)
        return NSError::posix(errno, "inotify: " + folder_.path());
    // A folder above it may be moved with all that is in it. One that cannot be read cannot be watched.
    for (URL above = folder_; above.path() != "/";) {
        above = above.deletingLastPathComponent();
        ::inotify_add_watch(events_.get(), above.path().c_str(), IN_MOVE_SELF);
    }
    return nullptr;
}

SettingsFolder::Changes SettingsFolder::changes() {
    constexpr std::uint32_t ends = IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_IGNORED;
    std::array<std::byte, 4096> events;
    Changes changes = Changes::none;
    while (true) {
        const auto size =
            retryingInterrupted([&] { return ::read(events_.get(), events.data(), events.size()); });
        if (size <= 0)
            return changes;
        for (std::size_t place = 0; place < static_cast<std::size_t>(size);) {
            inotify_event event{};
            std::memcpy(&event, &events[place], sizeof event);
            place += sizeof event + event.len;
            if (changes != Changes::end)
                changes = event.mask & ends ? Changes::end : Changes::some;
        }
    }
}

bool SettingsFolder::awaitNext(EndingSignals& signals) {
    Changes since = Changes::end;
    while (since != Changes::none) {
        const bool isWatched = since == Changes::some || !watch();
        if (signals.arriveWithin(quietTime, isWatched ? descriptor() : -1))
            return false;
        since = isWatched ? changes() : Changes::end;
    }
    return true;
}

} // namespace sela
