#include "vault/Doctor.h"

#include "platform/foundation/BaseDirectories.h"
#include "platform/foundation/Disk.h"
#include "platform/foundation/FileManager.h"
#include "store/AlbumPath.h"
#include "store/SharedAlbumManager.h"
#include "store/SharedFolder.h"
#include "store/StoreConst.h"
#include "vault/Catalogue.h"
#include "vault/Covers.h"
#include "vault/KeptLedgers.h"
#include "vault/PublicationRules.h"
#include "vault/VaultPlace.h"

#include <functional>
#include <set>
#include <sys/stat.h>
#include <utility>

namespace sela {

namespace {

constexpr mode_t folderMode = 0700;
constexpr mode_t fileMode = 0600;

/// Checks the group and collects the findings.
class Examination {
public:
    Examination(URL container, bool mend) : container_(std::move(container)), mend_(mend) {}

    Result<std::vector<Finding>> run() {
        examineContainer();
        if (examineSettings()) {
            examineCatalogue();
            examineLedger();
        }
        return error_ ? Result<std::vector<Finding>>(error_) : std::move(findings_);
    }

private:
    void tell(std::string text) { findings_.push_back({std::move(text), Finding::State::forTheUser}); }

    /// Reports a finding that `mending` repairs, and repairs it when that was asked for.
    void mend(std::string text, const std::function<ErrorRef()>& mending) {
        const ErrorRef error = mend_ ? mending() : nullptr;
        if (error && !error_)
            error_ = error;
        findings_.push_back(
            {std::move(text), mend_ && !error ? Finding::State::mended : Finding::State::mendable});
    }

    void examineMode(const std::string& path, mode_t mode) {
        struct stat status {};
        if (Disk::inUse().lstat(path, status) != 0 || S_ISLNK(status.st_mode) || (status.st_mode & 077) == 0)
            return;
        mend("others may look into " + path, [&] {
            const int result = Disk::inUse().chmod(path, mode);
            return result < 0 ? NSError::posix(-result, path) : nullptr;
        });
    }

    void examineFolder(const URL& folder) {
        FileManager& files = FileManager::defaultManager();
        if (!files.fileExists(folder.path())) {
            mend("the folder " + folder.path() + " is missing",
                 [&] { return files.createDirectory(folder.path()); });
            return;
        }
        examineMode(folder.path(), folderMode);
        const Result<std::vector<std::string>> names = files.contentsOfDirectory(folder.path());
        if (!names) {
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
        if (const std::optional<URL> config = BaseDirectories::config()) {
            const URL folder = config->appendingPathComponent("sela");
            examineMode(folder.path(), folderMode);
            const std::string file = StoreConst::shared().groupId + ".sqlite3";
            for (const std::string& name : {file, file + "-journal"})
                examineMode(folder.appendingPathComponent(name).path(), fileMode);
        }
    }

    /// Whether the settings are readable, so that their checks can go on.
    bool examineSettings() {
        const Result<UserDefaults> defaults = openSharedDefaults();
        const ErrorRef damage = defaults ? defaults.value().checkIntegrity() : defaults.error();
        if (damage)
            tell(damage->localizedDescription());
        if (!defaults)
            return false;
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

    void examineLedger() {
        const Result<std::vector<SharedItemLedger::Entry>> entries = SharedItemLedger::entries();
        const URL items = container_.appendingPathComponent(itemsFolderName);
        const Result<std::vector<std::string>> names =
            FileManager::defaultManager().contentsOfDirectory(items.path());
        if (!entries)
            tell(entries.error()->localizedDescription());
        if (!entries || !names)
            return;
        const std::set<std::string> present(names.value().begin(), names.value().end());
        std::set<std::string> unrecorded = present;
        for (const auto& [key, item] : entries.value()) {
            unrecorded.erase(item.fileName);
            if (!present.contains(item.fileName))
                tell("the file of " + item.preferredName.value_or(item.fileName) + " for album " +
                     albumPathText(item.albumNames) + " is missing: " + item.fileName);
        }
        const Result<std::vector<std::string>> kept = keptLedgers();
        const bool mayBePruned = kept && kept.value().empty();
        for (const std::string& name : unrecorded)
            tell("no entry of the ledger knows the file " + name +
                 (mayBePruned ? "; \"sela-vault import --prune\" removes it a day after it was left"
                              : "; the earlier ledger may"));
    }

    const URL container_;
    const bool mend_;
    std::vector<Finding> findings_;
    ErrorRef error_;
};

} // namespace

Result<std::vector<Finding>> examineGroup(bool mend) {
    const Result<URL> container = vaultContainer();
    return container ? Examination(container.value(), mend).run() : container.error();
}

} // namespace sela
