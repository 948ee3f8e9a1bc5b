#include "vault/Import.h"

#include "platform/foundation/FileManager.h"
#include "platform/foundation/StreamCopy.h"
#include "platform/foundation/TimeText.h"
#include "store/ItemsLock.h"
#include "store/ShareExtensionError.h"
#include "store/SharedFolder.h"
#include "vault/ContentComparison.h"
#include "vault/ImportJournal.h"
#include "vault/ImportLock.h"
#include "vault/KeptLedgers.h"
#include "vault/VaultPlace.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace sela {

namespace {

constexpr double dayInSeconds = 86'400;

/// What makes a batch full: larger ones need fewer flushes, smaller ones less repeated work after a kill.
constexpr std::size_t fullBatch = 256;
constexpr std::int64_t fullBatchSize = 64 << 20;

/// Each batch reads and stores all of the ledger. A long one is taken out in at most this many, so that the
/// cost of an item does not grow with it.
constexpr std::size_t mostFullBatches = 64;

template<std::size_t count>
bool isOneOf(const ErrorRef& error, const std::array<int, count>& codes) {
    const auto* const posix = dynamic_cast<const NSError*>(error.get());
    return posix && posix->domain() == NSPOSIXErrorDomain &&
           std::ranges::find(codes, posix->code()) != codes.end();
}

/// Whether an error means that the file cannot be hard-linked there.
bool cannotLink(const ErrorRef& error) {
    return isOneOf(error, std::array{EXDEV, EPERM, EOPNOTSUPP, EMLINK, ENOSYS});
}

/// Whether an error means that the file system does not allow such a name.
bool refusesName(const ErrorRef& error) {
    return isOneOf(error, std::array{EINVAL, EILSEQ, ENAMETOOLONG});
}

std::string folderOf(const URL& file) {
    return file.deletingLastPathComponent().path();
}

ErrorRef takeOutOfLedger(const std::vector<SharedItemLedger::Entry>& gone) {
    Result<SettingsTransaction> settings = changeSharedDefaults();
    if (!settings)
        return settings.error();
    const Result<std::optional<Data>> ledger = settings.value().readData(sharedItemsKey);
    if (!ledger || !ledger.value())
        return ledger.error();
    const Result<std::optional<Data>> rest = SharedItemLedger::removing(*ledger.value(), gone);
    if (!rest)
        return rest.error();
    if (rest.value())
        settings.value().setData(sharedItemsKey, *rest.value());
    else
        settings.value().removeObject(sharedItemsKey);
    return settings.value().commit();
}

} // namespace

Result<Import::Report> Import::run() {
    const Result<URL> container = vaultContainer();
    if (!container)
        return container.error();
    container_ = container.value();
    const Result<ImportLock> lock = ImportLock::take(*container_);
    if (!lock)
        return lock.error();
    if (isInsideContainer(options_.into, *container_))
        return ShareExtensionError::make(options_.into.path() +
                                         " is inside the vault's own folder; import into another one");
    if (ErrorRef error = FileManager::defaultManager().createDirectory(options_.into.path()))
        return error;
    // The partial copy of an import that was killed.
    FileManager::defaultManager().removeItem(temporaryCopy().path());
    if (ErrorRef error = recover())
        return error;
    Result<std::vector<Entry>> entries = SharedItemLedger::entries();
    if (!entries)
        return entries.error();
    const std::size_t toBeDone = report_.imported.size() + entries.value().size();
    report_.failure = importAll(std::move(entries.value()));
    report_.waiting = toBeDone - report_.imported.size() - report_.dropped.size() - report_.left.size();
    if (report_.waiting > 0 && !report_.failure)
        report_.problems.push_back("stopped; the next import goes on");
    else if (!report_.failure)
        report_.failure = findUnrecorded();
    if (report_.failure)
        report_.problems.push_back(report_.failure->localizedDescription());
    return std::move(report_);
}

ErrorRef Import::recover() {
    const Result<std::vector<ImportJournal::Note>> notes = ImportJournal::read();
    if (!notes || notes.value().empty())
        return notes ? ImportJournal::clear() : notes.error();
    const Result<std::vector<Entry>> entries = SharedItemLedger::entries();
    if (!entries)
        return entries.error();
    std::vector<Placement> placed;
    for (const ImportJournal::Note& note : notes.value()) {
        const std::optional<URL> target = URL::parse(note.target);
        if (!target || !isSinglePathComponent(note.fileName))
            continue;
        // The target is ours only if it has the same content: another program may have made a file there.
        const URL source = itemURL(note.fileName);
        const Result<bool> isPlaced = hasSameContent(source, *target);
        if (!isPlaced)
            return isPlaced.error();
        if (!isPlaced.value())
            continue;
        const auto entry = std::ranges::find_if(entries.value(), [&](const Entry& candidate) {
            return candidate.first == note.key && candidate.second.fileName == note.fileName;
        });
        // A file whose entry is removed from the ledger already must only be removed from "Items".
        placed.push_back({entry == entries.value().end() ? Entry() : *entry, source, *target});
    }
    if (ErrorRef error = takeOut(placed, {}))
        return error;
    return ImportJournal::clear();
}

ErrorRef Import::importAll(std::vector<Entry> entries) {
    const std::size_t count = entries.size();
    std::size_t done = 0;
    while (!entries.empty() && !options_.isStopped()) {
        std::vector<Entry> again;
        Batch batch;
        for (const Entry& entry : entries) {
            if (options_.isStopped())
                break;
            if (options_.progress)
                options_.progress(std::min(++done, count), count);
            if (ErrorRef error = plan(entry, batch))
                addLeft(entry.second, error);
            const std::size_t planned = batch.placements.size();
            const bool isFull = planned >= fullBatch || batch.bytes >= fullBatchSize;
            if (!isFull || planned < count / mostFullBatches)
                continue;
            if (ErrorRef error = finish(std::exchange(batch, {}), again))
                return error;
        }
        if (ErrorRef error = finish(batch, again))
            return error;
        entries = std::move(again);
    }
    return journalNoted_ ? ImportJournal::clear() : nullptr;
}

ErrorRef Import::plan(const Entry& entry, Batch& batch) {
    const SharedItem& item = entry.second;
    if (!isSinglePathComponent(item.fileName))
        return ShareExtensionError::make("the name of its file leads elsewhere");
    const URL source = itemURL(item.fileName);
    const Result<FileAttributes> attributes = FileManager::defaultManager().attributesOfEntry(source.path());
    if (isOneOf(attributes.error(), std::array{ENOENT})) {
        if (!options_.dropMissing || options_.keep)
            return ShareExtensionError::make("its file is missing; --drop-missing drops such entries");
        batch.missing.push_back(entry);
        return nullptr;
    }
    if (!attributes)
        return attributes.error();
    if (attributes.value().type != FileAttributes::Type::regular)
        return ShareExtensionError::make("what the group has under its name is no file");
    const Result<URL> folder = makeFolder(item);
    if (!folder)
        return folder.error();
    batch.placements.push_back({entry, source, freePlace(folder.value(), item), form_});
    batch.bytes += attributes.value().size;
    return nullptr;
}

Result<URL> Import::makeFolder(const SharedItem& item) {
    const URL folder = importFolder(options_.into, item.fake, defaultAlbum_.pathOf(item.albumNames), form_);
    if (madeFolders_.contains(folder.path()))
        return folder;
    const ErrorRef error = FileManager::defaultManager().createDirectory(folder.path());
    if (refusesName(error) && form_ == NameForm::own) {
        form_ = NameForm::portable;
        return makeFolder(item);
    }
    if (error)
        return error;
    madeFolders_.insert(folder.path());
    return folder;
}

URL Import::freePlace(const URL& folder, const SharedItem& item) {
    int& attempt = attempts_[folder.appendingPathComponent(importName(item, 1, form_)).path()];
    URL place = folder;
    do
        place = folder.appendingPathComponent(importName(item, ++attempt, form_));
    while (FileManager::defaultManager().attributesOfEntry(place.path()));
    return place;
}

ErrorRef Import::finish(const Batch& batch, std::vector<Entry>& again) {
    if (!options_.keep && !batch.placements.empty()) {
        std::vector<ImportJournal::Note> notes;
        for (const Placement& placement : batch.placements)
            notes.push_back(
                {placement.entry.first, placement.entry.second.fileName, placement.target.absoluteString()});
        if (ErrorRef error = ImportJournal::write(notes))
            return error;
        journalNoted_ = true;
    }
    return takeOut(putInPlace(batch, again), batch.missing);
}

std::vector<Import::Placement> Import::putInPlace(const Batch& batch, std::vector<Entry>& again) {
    std::vector<Placement> placed;
    for (const Placement& placement : batch.placements) {
        if (options_.isStopped())
            break;
        const ErrorRef error = putAt(placement.source, placement.target);
        if (!error) {
            placed.push_back(placement);
        } else if (isOneOf(error, std::array{EEXIST})) {
            again.push_back(placement.entry);
        } else if (refusesName(error) && placement.form == NameForm::own) {
            form_ = NameForm::portable;
            again.push_back(placement.entry);
        } else {
            addLeft(placement.entry.second, error);
        }
    }
    return placed;
}

ErrorRef Import::putAt(const URL& source, const URL& target) {
    if (options_.keep)
        return copyTo(source, target);
    ErrorRef error = FileManager::defaultManager().linkItem(source.path(), target.path());
    return cannotLink(error) ? copyTo(source, target) : error;
}

ErrorRef Import::copyTo(const URL& source, const URL& target) {
    FileManager& files = FileManager::defaultManager();
    const URL temporary = temporaryCopy();
    Result<InputStream> input = files.inputStream(source);
    if (!input)
        return input.error();
    // An existing file may be open in another program, which could read the content.
    Result<OutputStream> output =
        files.outputStream(temporary, input.value().expectedSize(), WhenThere::fail);
    if (!output)
        return output.error();
    StreamCopy copy(input.value(), output.value());
    std::int64_t count = 0;
    do {
        count = copy.copyBlock();
        // The file is finished all the same, but once the first signal was seen a second one ends the
        // process.
        options_.isStopped();
    } while (count > 0 && !output.value().streamError());
    ErrorRef error = count < 0 ? input.value().streamError() : output.value().synchronizeContent();
    if (!error)
        error = files.moveItem(temporary.path(), target.path());
    if (error)
        files.removeItem(temporary.path());
    return error;
}

ErrorRef Import::takeOut(const std::vector<Placement>& placed, const std::vector<Entry>& missing) {
    FileManager& files = FileManager::defaultManager();
    std::set<std::string> folders;
    std::vector<Entry> gone = missing;
    for (const Placement& placement : placed) {
        folders.insert(folderOf(placement.target));
        gone.push_back(placement.entry);
    }
    for (const std::string& folder : folders)
        if (ErrorRef error = files.synchronizeDirectory(folder))
            return error;
    if (!options_.keep && !gone.empty())
        if (ErrorRef error = takeOutOfLedger(gone))
            return error;
    for (const Placement& placement : placed) {
        report_.imported.push_back(placement.target.path());
        const ErrorRef error = options_.keep ? nullptr : files.removeItem(placement.source.path());
        if (error)
            report_.problems.push_back(
                placement.target.path() +
                " is imported, but its file in Items cannot be removed: " + error->localizedFailureReason());
    }
    for (const Entry& entry : missing)
        report_.dropped.push_back(entry.second.preferredName.value_or(entry.second.fileName));
    return nullptr;
}

URL Import::temporaryCopy() const {
    // Named after the group, since imports of two groups may have the same target folder.
    return options_.into.appendingPathComponent(".sela-import-" + container_->lastPathComponent());
}

URL Import::itemURL(const std::string& fileName) const {
    return container_->appendingPathComponent(itemsFolderName).appendingPathComponent(fileName);
}

void Import::addLeft(const SharedItem& item, const ErrorRef& error) {
    report_.left.push_back(item.preferredName.value_or(item.fileName) + ": " + error->localizedDescription());
}

ErrorRef Import::findUnrecorded() {
    FileManager& files = FileManager::defaultManager();
    const URL items = container_->appendingPathComponent(itemsFolderName);
    if (!files.fileExists(items.path()))
        return nullptr;
    const std::optional<ItemsLock> lock = options_.prune ? ItemsLock::forRemoving(items) : std::nullopt;
    // The names are listed first, so that a file that is recorded in between counts as recorded.
    const Result<std::vector<std::string>> names = files.contentsOfDirectory(items.path());
    if (!names)
        return names.error();
    const Result<std::vector<Entry>> entries = SharedItemLedger::entries();
    if (!entries)
        return entries.error();
    const Result<std::string> obstacle = obstacleToPruning(lock.has_value());
    if (!obstacle)
        return obstacle.error();
    std::set<std::string_view> recorded;
    for (const Entry& entry : entries.value())
        recorded.insert(entry.second.fileName);
    bool isObstructed = false;
    for (const std::string& name : names.value()) {
        if (recorded.contains(name))
            continue;
        const std::string path = items.appendingPathComponent(name).path();
        const Result<FileAttributes> attributes = files.attributesOfEntry(path);
        if (!attributes)
            continue;
        const bool isOld = secondsSince1970() - attributes.value().modificationDate > dayInSeconds;
        const bool isRemovable = options_.prune && isOld && obstacle.value().empty();
        const ErrorRef error = isRemovable ? files.removeItem(path) : nullptr;
        (isRemovable && !error ? report_.pruned : report_.unrecorded).push_back(name);
        if (error)
            report_.problems.push_back(name + " cannot be removed: " + error->localizedFailureReason());
        isObstructed = isObstructed || (options_.prune && isOld && !isRemovable);
    }
    if (isObstructed)
        report_.problems.push_back("no file is pruned: " + obstacle.value());
    return nullptr;
}

/// Why nothing may be removed; empty when it may.
Result<std::string> Import::obstacleToPruning(bool isLocked) const {
    if (!isLocked)
        return std::string("something is being shared");
    Result<std::string> reason = reasonToKeepUnrecorded();
    const Result<std::vector<std::string>> kept = keptLedgers();
    if (reason && kept && !kept.value().empty())
        reason.value() += "; " + howToDiscard(kept.value().front());
    return reason;
}

} // namespace sela
