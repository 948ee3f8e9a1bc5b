#include "vault/ImportLock.h"

#include "platform/foundation/Disk.h"
#include "platform/foundation/UserDefaults.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

namespace sela {

namespace {

constexpr std::string_view importErrorDomain = "ImportErrorDomain";

} // namespace

Result<ImportLock> ImportLock::take(const URL& container) {
    FileDescriptor folder(Disk::inUse().open(container.path(), O_RDONLY | O_DIRECTORY));
    const int result = folder.isOpen() ? Disk::inUse().flock(folder.get(), LOCK_EX | LOCK_NB) : folder.get();
    if (result == -EWOULDBLOCK)
        return ErrorRef(std::make_shared<NSError>(importErrorDomain, EWOULDBLOCK,
                                                  "another import of this group is running"));
    if (result < 0)
        return NSError::posix(-result, container.path());
    return ImportLock(std::move(folder));
}

bool isPassing(const ErrorRef& error) {
    const auto* const known = dynamic_cast<const NSError*>(error.get());
    return (known && known->domain() == importErrorDomain) || isBusy(error);
}

} // namespace sela
