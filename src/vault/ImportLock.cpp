#include "vault/ImportLock.h"

#include "platform/foundation/SystemCall.h"
#include "store/ShareExtensionError.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

namespace sela {

Result<ImportLock> ImportLock::take(const URL& container) {
    FileDescriptor folder(retryingInterrupted(
        [&] { return ::open(container.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!folder.isOpen())
        return NSError::posix(errno, "open");
    if (retryingInterrupted([&] { return ::flock(folder.get(), LOCK_EX | LOCK_NB); }) != 0)
        return errno == EWOULDBLOCK ? ShareExtensionError::make("another import of this group is running")
                                    : NSError::posix(errno, "flock");
    return ImportLock(std::move(folder));
}

} // namespace sela
