#include "store/ItemsLock.h"

#include "platform/foundation/Disk.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <utility>

namespace sela {

ItemsLock ItemsLock::forSaving(const URL& items) {
    FileDescriptor folder(Disk::inUse().open(items.path(), O_RDONLY | O_DIRECTORY));
    if (folder.isOpen())
        Disk::inUse().flock(folder.get(), LOCK_SH);
    return ItemsLock(std::move(folder));
}

std::optional<ItemsLock> ItemsLock::forRemoving(const URL& items) {
    FileDescriptor folder(Disk::inUse().open(items.path(), O_RDONLY | O_DIRECTORY));
    if (folder.isOpen() && Disk::inUse().flock(folder.get(), LOCK_EX | LOCK_NB) == -EWOULDBLOCK)
        return std::nullopt;
    return ItemsLock(std::move(folder));
}

} // namespace sela
