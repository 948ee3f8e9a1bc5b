#include "vault/ImportWatch.h"

#include "platform/foundation/BaseDirectories.h"
#include "platform/foundation/FileDescriptor.h"
#include "platform/foundation/FileManager.h"
#include "platform/foundation/SystemCall.h"
#include "store/ShareExtensionError.h"
#include "store/SharedFolder.h"
#include "store/SharedItemLedger.h"
#include "vault/ImportLock.h"
#include "vault/VaultPlace.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <iterator>
#include <poll.h>
#include <set>
#include <string>
#include <sys/inotify.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace sela {

namespace {

/// The signals that end a watch, blocked until they are waited for.
FileDescriptor endingSignals() {
    sigset_t signals;
    ::sigemptyset(&signals);
    ::sigaddset(&signals, SIGTERM);
    ::sigaddset(&signals, SIGINT);
    ::sigprocmask(SIG_BLOCK, &signals, nullptr);
    return FileDescriptor(::signalfd(-1, &signals, SFD_CLOEXEC));
}

/// Watches the folder of the settings (inotify), which is made if missing: the file itself may not exist yet.
Result<FileDescriptor> settingsChanges() {
    const std::optional<URL> config = BaseDirectories::config();
    if (!config)
        return ShareExtensionError::make("there is no place for settings");
    const std::string folder = config->appendingPathComponent("sela").path();
    if (ErrorRef error = FileManager::defaultManager().createDirectory(folder))
        return error;
    FileDescriptor changes(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    if (!changes.isOpen() || ::inotify_add_watch(changes.get(), folder.c_str(), IN_MODIFY | IN_MOVED_TO) < 0)
        return NSError::posix(errno, "inotify");
    return changes;
}

/// Discards the events so far.
void drain(const FileDescriptor& changes) {
    std::array<std::byte, 4096> events;
    while (retryingInterrupted([&] { return ::read(changes.get(), events.data(), events.size()); }) > 0) {
    }
}

Result<std::set<std::string>> ledgerKeys() {
    const Result<std::vector<SharedItemLedger::Entry>> entries = SharedItemLedger::entries();
    if (!entries)
        return entries.error();
    std::set<std::string> keys;
    for (const SharedItemLedger::Entry& entry : entries.value())
        keys.insert(entry.first);
    return keys;
}

} // namespace

ErrorRef watchAndImport(const std::function<Result<Import::Report>()>& import) {
    const Result<URL> container = vaultContainer();
    if (!container)
        return container.error();
    const FileDescriptor signals = endingSignals();
    // Each import locks the container, and each save locks "Items"; the watch locks the remaining folder.
    const Result<ImportLock> lock =
        ImportLock::take(container.value().appendingPathComponent(albumThumbnailsFolderName));
    if (!lock)
        return lock.error();
    const Result<FileDescriptor> changes = settingsChanges();
    if (!changes)
        return changes.error();
    std::set<std::string> left;
    while (true) {
        // An import changes the settings itself, and its own changes must be distinguished from those of
        // others.
        drain(changes.value());
        const Result<std::set<std::string>> keys = ledgerKeys();
        if (!keys)
            return keys.error();
        pollfd sources[] = {{signals.get(), POLLIN, 0}, {changes.value().get(), POLLIN, 0}};
        const bool isNew = !std::ranges::includes(left, keys.value());
        retryingInterrupted([&] { return ::poll(sources, std::size(sources), isNew ? 0 : -1); });
        if (sources[0].revents)
            return nullptr;
        if (!isNew)
            continue;
        const Result<Import::Report> report = import();
        if (!report)
            return report.error();
        const Result<std::set<std::string>> after = ledgerKeys();
        if (!after)
            return after.error();
        left.clear();
        std::ranges::set_intersection(keys.value(), after.value(), std::inserter(left, left.end()));
    }
}

} // namespace sela
