#include "vault/Import.h"

#include "platform/foundation/FileManager.h"
#include "platform/foundation/JSONRecords.h"
#include "store/ShareExtensionError.h"
#include "store/SharedFolder.h"
#include "vault/ContentComparison.h"
#include "vault/ImportLock.h"
#include "vault/ImportPlace.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <set>
#include <utility>

namespace sela {

namespace {

constexpr std::string_view journalKey = "importJournal";
constexpr double dayInSeconds = 86'400;
constexpr std::size_t copyBlockSize = 2'097'152;

bool isError(const ErrorRef& error, int code) {
    const auto* const posix = dynamic_cast<const NSError*>(error.get());
    return posix && posix->domain() == NSPOSIXErrorDomain && posix->code() == code;
}

/// Whether a file system says that it cannot give this file a second name there.
bool cannotLink(const ErrorRef& error) {
    return std::ranges::any_of(std::array{EXDEV, EPERM, EOPNOTSUPP, EMLINK, ENOSYS},
                               [&](int code) { return isError(error, code); });
}

double secondsSince1970() {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

} // namespace

struct Import::Journal {
    std::string key;
    std::string fileName;
    std::string target; ///< a file URL, since a path need not be text

    static constexpr auto jsonMembers() {
        return std::array<JSONMember<Journal>, 3>{
            {{"key", &Journal::key}, {"fileName", &Journal::fileName}, {"target", &Journal::target}}};
    }
};

Result<Import::Report> Import::run() {
    container_ = sharedFolderUrl();
    if (!container_)
        return ShareExtensionError::make("the group is not provisioned; run \"sela-vault init\" first");
    const Result<ImportLock> lock = ImportLock::take(*container_);
    if (!lock)
        return lock.error();
    if (ErrorRef error = FileManager::defaultManager().createDirectory(options_.into.path()))
        return error;
    // What an import that was killed had not finished copying.
    FileManager::defaultManager().removeItem(temporaryCopy().path());
    if (ErrorRef error = recover())
        return error;
    const Result<std::vector<SharedItemLedger::Entry>> entries = SharedItemLedger::entries();
    if (!entries)
        return entries.error();
    for (const SharedItemLedger::Entry& entry : entries.value()) {
        const ErrorRef error = importEntry(entry);
        if (!error)
            continue;
        report_.problems.push_back(entry.second.fileName + ": " + error->localizedDescription());
        // Its place is noted and perhaps taken; the next import must find that note to finish it.
        if (journalNoted_)
            return std::move(report_);
    }
    if (ErrorRef error = findUnrecorded())
        return error;
    return std::move(report_);
}

ErrorRef Import::recover() {
    std::optional<UserDefaults> defaults = sharedDefaults();
    if (!defaults)
        return ShareExtensionError::make("UserDefaults is nil");
    const Result<std::optional<Data>> text = defaults->readData(journalKey);
    if (!text)
        return text.error();
    if (!text.value())
        return nullptr;
    // One that cannot be read is of no use to anybody.
    if (const Result<std::vector<Journal>> notes = decodeJSONArray<Journal>(*text.value()))
        for (const Journal& note : notes.value())
            if (const std::optional<URL> target = URL::parse(note.target);
                target && isSinglePathComponent(note.fileName))
                if (ErrorRef error = finish(note, *target))
                    return error;
    return defaults->removeObject(journalKey);
}

ErrorRef Import::finish(const Journal& journal, const URL& target) {
    const URL source = itemURL(journal.fileName);
    // The target is ours only if it holds the very content: somebody else may have made a file there.
    const Result<bool> placed = hasSameContent(source, target);
    if (!placed)
        return placed.error();
    if (!placed.value())
        return nullptr;
    FileManager& files = FileManager::defaultManager();
    if (ErrorRef error = files.synchronizeDirectory(target.deletingLastPathComponent().path()))
        return error;
    const Result<std::vector<SharedItemLedger::Entry>> entries = SharedItemLedger::entries();
    if (!entries)
        return entries.error();
    for (const SharedItemLedger::Entry& entry : entries.value())
        if (entry.first == journal.key && entry.second.fileName == journal.fileName)
            if (ErrorRef error = takeOutOfLedger(entry))
                return error;
    if (ErrorRef error = files.removeItem(source.path()))
        return error;
    report_.imported.push_back(target.path());
    return nullptr;
}

URL Import::itemURL(const std::string& fileName) const {
    return container_->appendingPathComponent(itemsFolderName).appendingPathComponent(fileName);
}

ErrorRef Import::importEntry(const SharedItemLedger::Entry& entry) {
    const SharedItem& item = entry.second;
    if (!isSinglePathComponent(item.fileName))
        return ShareExtensionError::make("the file name leads elsewhere");
    FileManager& files = FileManager::defaultManager();
    const URL source = itemURL(item.fileName);
    const Result<FileAttributes> attributes = files.attributesOfEntry(source.path());
    if (!attributes)
        return attributes.error();
    if (attributes.value().type != FileAttributes::Type::regular)
        return ShareExtensionError::make("not a file");
    const URL folder = importFolder(options_.into, item);
    if (!madeFolders_.contains(folder.path()))
        if (ErrorRef error = files.createDirectory(folder.path()))
            return error;
    madeFolders_.insert(folder.path());
    const Result<URL> target = place(entry, source, folder);
    if (!target)
        return target.error();
    if (!options_.keep) {
        if (ErrorRef error = takeOutOfLedger(entry))
            return error;
        if (ErrorRef error = files.removeItem(source.path()))
            return error;
        if (std::optional<UserDefaults> defaults = sharedDefaults())
            if (ErrorRef error = defaults->removeObject(journalKey))
                return error;
        journalNoted_ = false;
    }
    report_.imported.push_back(target.value().path());
    return nullptr;
}

Result<URL> Import::place(const SharedItemLedger::Entry& entry, const URL& source, const URL& folder) {
    for (int attempt = 1;; ++attempt) {
        const URL target = folder.appendingPathComponent(importName(entry.second, attempt));
        if (FileManager::defaultManager().attributesOfEntry(target.path()))
            continue;
        if (!options_.keep)
            if (ErrorRef error = noteJournal({entry.first, entry.second.fileName, target.absoluteString()}))
                return error;
        const ErrorRef error = putAt(source, target);
        if (!error)
            return target;
        if (!isError(error, EEXIST))
            return error;
    }
}

ErrorRef Import::putAt(const URL& source, const URL& target) {
    if (options_.keep)
        return copyTo(source, target);
    ErrorRef error = FileManager::defaultManager().linkItem(source.path(), target.path());
    return cannotLink(error) ? copyTo(source, target) : error;
}

URL Import::temporaryCopy() const {
    // Named after the group, since imports of two groups may go to one folder.
    return options_.into.appendingPathComponent(".sela-import-" + container_->lastPathComponent());
}

ErrorRef Import::copyTo(const URL& source, const URL& target) {
    FileManager& files = FileManager::defaultManager();
    const URL temporary = temporaryCopy();
    Result<InputStream> input = files.inputStream(source);
    if (!input)
        return input.error();
    Result<OutputStream> output = files.outputStream(temporary, input.value().expectedSize());
    if (!output)
        return output.error();
    std::vector<std::byte> buffer(copyBlockSize);
    std::int64_t count = 0;
    while ((count = input.value().read(buffer)) > 0)
        if (output.value().write(DataView(buffer).first(static_cast<std::size_t>(count))) < 0)
            break;
    ErrorRef error = count < 0 ? input.value().streamError() : output.value().synchronize();
    if (!error)
        error = files.moveItem(temporary.path(), target.path());
    if (error)
        files.removeItem(temporary.path());
    return error;
}

ErrorRef Import::noteJournal(const Journal& journal) {
    JSONWriter writer;
    writer.beginArray();
    writeJSONRecord(writer, journal);
    writer.endArray();
    std::optional<UserDefaults> defaults = sharedDefaults();
    if (!defaults)
        return ShareExtensionError::make("UserDefaults is nil");
    journalNoted_ = true;
    return defaults->setData(journalKey, asData(writer.text()));
}

ErrorRef Import::takeOutOfLedger(const SharedItemLedger::Entry& entry) {
    std::optional<UserDefaults> defaults = sharedDefaults();
    if (!defaults)
        return ShareExtensionError::make("UserDefaults is nil");
    Result<SettingsTransaction> settings = SettingsTransaction::begin(std::move(*defaults));
    if (!settings)
        return settings.error();
    const Result<std::optional<Data>> ledger = settings.value().readData(sharedItemsKey);
    if (!ledger || !ledger.value())
        return ledger.error();
    const Result<std::optional<Data>> rest = SharedItemLedger::removing(*ledger.value(), entry);
    if (!rest)
        return rest.error();
    if (rest.value())
        settings.value().setData(sharedItemsKey, *rest.value());
    else
        settings.value().removeObject(sharedItemsKey);
    return settings.value().commit();
}

ErrorRef Import::findUnrecorded() {
    FileManager& files = FileManager::defaultManager();
    const URL items = container_->appendingPathComponent(itemsFolderName);
    if (!files.fileExists(items.path()))
        return nullptr;
    // The names first: a file that is recorded in between then counts as recorded.
    const Result<std::vector<std::string>> names = files.contentsOfDirectory(items.path());
    if (!names)
        return names.error();
    const Result<std::vector<SharedItemLedger::Entry>> entries = SharedItemLedger::entries();
    if (!entries)
        return entries.error();
    const std::optional<UserDefaults> defaults = sharedDefaults();
    bool prune = false;
    if (options_.prune && defaults) {
        const Result<std::vector<std::string>> keptLedgers = defaults->keys(unreadableItemsKeyPrefix);
        if (!keptLedgers)
            return keptLedgers.error();
        // A ledger that is kept aside may still know some of the files.
        prune = keptLedgers.value().empty();
    }
    std::set<std::string_view> recorded;
    for (const SharedItemLedger::Entry& entry : entries.value())
        recorded.insert(entry.second.fileName);
    for (const std::string& name : names.value()) {
        if (recorded.contains(name))
            continue;
        const std::string path = items.appendingPathComponent(name).path();
        const Result<FileAttributes> attributes = files.attributesOfEntry(path);
        if (!attributes)
            continue;
        const bool old = secondsSince1970() - attributes.value().modificationDate > dayInSeconds;
        if (prune && old && !files.removeItem(path))
            report_.pruned.push_back(name);
        else
            report_.unrecorded.push_back(name);
    }
    return nullptr;
}

} // namespace sela
