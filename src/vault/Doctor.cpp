#include "vault/Doctor.h"

#include "platform/foundation/Disk.h"
#include "platform/foundation/FileManager.h"
#include "store/AlbumPath.h"
#include "store/ItemsLock.h"
#include "store/SharedAlbumManager.h"
#include "store/SharedFolder.h"
#include "vault/Catalogue.h"
#include "vault/Covers.h"
#include "vault/KeptLedgers.h"
#include "vault/PublicationRules.h"
#include "vault/VaultPlace.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <functional>
#include <optional>
#include <set>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace sela {

namespace {

constexpr mode_t folderMode = 0700;
constexpr mode_t fileMode = 0600;

/// SQLite's codes for a file that is damaged, or none of its own.
constexpr int sqliteCorrupt = 11;
constexpr int sqliteNoDatabase = 26;

/// Checks the group and collects the findings.
class Examination {
public:
    Examination(URL container, bool mend) : container_(std::move(container)), mend_(mend) {}

    std::vector<Finding> run() {
        examineContainer();
        if (examineSettings() && examineLedger())
            examineCatalogue();
        return std::move(findings_);
    }

private:
    void tell(std::string text) { findings_.push_back({std::move(text), Finding::State::forTheUser}); }

    /// Reports a finding that `mending` repairs, and repairs it when that was asked for.
    void mend(const std::string& text, const std::function<ErrorRef()>& mending) {
        const ErrorRef error = mend_ ? mending() : nullptr;
        if (error)
            tell(text + "; it cannot be mended: " + error->localizedFailureReason());
        else
            findings_.push_back({text, mend_ ? Finding::State::mended : Finding::State::mendable});
    }

    /// Reports and repairs the mode of a file or folder.
    void mendMode(const std::string& text, const std::string& path, mode_t mode) {
        mend(text, [&] {
            const int result = Disk::inUse().chmod(path, mode);
            return result < 0 ? NSError::posix(-result, path) : nullptr;
        });
    }

    void examineMode(const std::string& path, mode_t mode) {
        struct stat status {};
        if (Disk::inUse().lstat(path, status) != 0 || S_ISLNK(status.st_mode) || (status.st_mode & 077) == 0)
            return;
        mendMode("others may look into " + path, path, mode);
    }

    /// Whether the user may do there what the mode is for, or nothing is there.
    bool examineAccess(const std::string& path, mode_t mode) {
        const int result = Disk::inUse().access(path, mode == folderMode ? R_OK | W_OK | X_OK : R_OK | W_OK);
        struct stat status {};
        if (result == 0 || result == -ENOENT || Disk::inUse().stat(path, status) != 0)
            return true;
        if (result == -EACCES && status.st_uid == ::geteuid())
            mendMode("you cannot read and change " + path, path, mode);
        else
            tell("you cannot read and change " + path + ": " + systemErrorText(-result));
        return false;
    }

    void examineFolder(const URL& folder) {
        FileManager& files = FileManager::defaultManager();
        if (!files.fileExists(folder.path())) {
            mend("the folder " + folder.path() + " is missing",
                 [&] { return files.createDirectory(folder.path()); });
            return;
        }
        examineMode(folder.path(), folderMode);
        const bool isAccessible = examineAccess(folder.path(), folderMode);
        const Result<std::vector<std::string>> names = files.contentsOfDirectory(folder.path());
        if (!names) {
            if (isAccessible)
                tell(names.error()->localizedDescription());
            return;
        }
        for (const std::string& name : names.value())
            examineMode(folder.appendingPathComponent(name).path(), fileMode);
    }

    void examineContainer() {
        examineMode(container_.path(), folderMode);
        for (const std::string_view folder : {itemsFolderName, albumThumbnailsFolderName})
            examineFolder(container_.appendingPathComponent(folder));
        if (const std::optional<URL> file = settingsFile()) {
            const std::string folder = file->deletingLastPathComponent().path();
            examineMode(folder, folderMode);
            examineAccess(folder, folderMode);
            for (const std::string& path : {file->path(), file->path() + "-journal"}) {
                examineMode(path, fileMode);
                examineAccess(path, fileMode);
            }
        }
    }

    /// Whether the settings are readable, so that their checks can go on.
    bool examineSettings() {
        const Result<UserDefaults> defaults = openSharedDefaults();
        const ErrorRef damage = defaults ? defaults.value().checkIntegrity() : defaults.error();
        if (damage) {
            tell(damage->localizedDescription() + nextStepAfter(damage));
            return false;
        }
        if (const Result<std::vector<std::string>> kept = keptLedgers(); kept)
            for (const std::string& key : kept.value())
                tell("an earlier ledger could not be read and is kept in the settings; " + howToDiscard(key));
        const std::optional<Secret> passcode = SharedAlbumManager::sharedPassword();
        if (!passcode)
            tell(std::string(noPasscode));
        if (const ErrorRef problem = problemWithPasscodes(passcode, SharedAlbumManager::sharedFakePassword()))
            tell(problem->localizedDescription());
        return true;
    }

    /// What the user can do about settings that cannot be used.
    static std::string nextStepAfter(const ErrorRef& damage) {
        const auto* const known = dynamic_cast<const NSError*>(damage.get());
        if (isBusy(damage))
            return "; another program is using it, so try again";
        constexpr std::array isDamage = {NSCoderReadCorruptError, sqliteCorrupt, sqliteNoDatabase};
        if (!known || known->domain() == NSPOSIXErrorDomain ||
            std::ranges::find(isDamage, known->code()) == isDamage.end())
            return {};
        return "; put a copy of the file in its place, or move it away and set passcodes and albums anew, "
               "and "
               "then nothing records the files that wait in Items";
    }

    void examineCatalogue() {
        const Result<Catalogue> catalogue = Catalogue::published();
        if (!catalogue) {
            tell(catalogue.error()->localizedDescription());
            return;
        }
        const std::vector<SharedAlbum>& albums = catalogue.value().albums();
        if (const ErrorRef problem = problemWithPasswords(albums))
            tell(problem->localizedDescription());
        for (const std::string& warning : warningsOfAlbums(albums))
            tell(warning);
        for (const SharedAlbum& album : albums)
            if (album.thumbNailName && !SharedAlbumManager::thumbnail(album.thumbNailName))
                tell("album " + albumPathText(album.namePath) + ": its cover " + *album.thumbNailName +
                     " is missing or cannot be shown");
        const Result<std::vector<std::string>> unused = unusedCovers();
        if (!unused)
            return;
        for (const std::string& name : unused.value())
            mend("no album has the cover " + name, [&] {
                return FileManager::defaultManager().removeItem(
                    container_.appendingPathComponent(albumThumbnailsFolderName)
                        .appendingPathComponent(name)
                        .path());
            });
    }

    /// Whether the ledger can be read, without which the catalogue's checks cannot go on.
    bool examineLedger() {
        const URL items = container_.appendingPathComponent(itemsFolderName);
        // While something is being shared, a file that no entry knows is being copied.
        const std::optional<ItemsLock> lock = ItemsLock::forRemoving(items);
        const Result<std::vector<SharedItemLedger::Entry>> entries = SharedItemLedger::entries();
        const Result<std::vector<std::string>> names =
            FileManager::defaultManager().contentsOfDirectory(items.path());
        if (!entries)
            tell(entries.error()->localizedDescription() +
                 "; the next share sets it aside and begins another one");
        if (!entries || !names)
            return entries.hasValue();
        const std::set<std::string> present(names.value().begin(), names.value().end());
        std::set<std::string> unrecorded = present;
        for (const auto& [key, item] : entries.value()) {
            unrecorded.erase(item.fileName);
            if (!present.contains(item.fileName))
                tell("the file of " + item.preferredName.value_or(item.fileName) + " for album " +
                     albumPathText(item.albumNames) + " is missing: " + item.fileName +
                     "; \"sela-vault import --drop-missing\" drops its entry");
        }
        const Result<std::string> reason = reasonToKeepUnrecorded();
        const std::string reasonToKeep = reason ? reason.value() : reason.error()->localizedDescription();
        if (!lock)
            unrecorded.clear();
        for (const std::string& name : unrecorded)
            tell("no entry of the ledger knows the file " + name +
                 (reasonToKeep.empty() ? "; \"sela-vault import --prune\" removes it a day after it was left"
                                       : "; it stays, since " + reasonToKeep));
        return true;
    }

    const URL container_;
    const bool mend_;
    std::vector<Finding> findings_;
};

} // namespace

Result<std::vector<Finding>> examineGroup(bool mend) {
    const Result<URL> container = vaultContainer();
    if (!container)
        return container.error();
    return Examination(container.value(), mend).run();
}

} // namespace sela
