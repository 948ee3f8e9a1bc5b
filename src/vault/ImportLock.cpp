#include "vault/ImportLock.h"

#include "platform/foundation/Disk.h"
#include "store/ShareExtensionError.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

namespace sela {

Result<ImportLock> ImportLock::take(const URL& container) {
    FileDescriptor folder(Disk::inUse().open(container.path(), O_RDONLY | O_DIRECTORY));
    const int result = folder.isOpen() ? Disk::inUse().flock(folder.get(), LOCK_EX | LOCK_NB) : folder.get();
    if (result == -EWOULDBLOCK)
        return ShareExtensionError::make("another import of this group is running");
    if (result < 0)
        return NSError::posix(-result, container.path());
    return ImportLock(std::move(folder));
}

} // namespace sela
