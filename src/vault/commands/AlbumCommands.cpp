#include "commandline/PasscodeFile.h"
#include "platform/foundation/NSLog.h"
#include "store/AlbumPath.h"
#include "store/ShareExtensionError.h"
#include "store/SharedAlbumManager.h"
#include "vault/Catalogue.h"
#include "vault/Covers.h"
#include "vault/Listing.h"
#include "vault/PublicationRules.h"
#include "vault/commands/Commands.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace sela {

namespace {

/// The album that the first operand names.
Result<Catalogue::Name> albumOf(const Arguments& arguments) {
    Result<std::vector<std::string>> path = albumPath(arguments.operands.front());
    if (!path)
        return path.error();
    return Catalogue::Name{std::move(path.value()), arguments.has("--decoy")};
}

/// Why an album must stay as it is while files wait for it; null with --force.
ErrorRef problemWithWaiting(const Arguments& arguments, const Catalogue& catalogue,
                            const Catalogue::Name& name) {
    const std::size_t waiting = catalogue.waiting(name);
    if (waiting == 0 || arguments.has("--force"))
        return nullptr;
    return ShareExtensionError::make(
        std::to_string(waiting) + (waiting == 1 ? " file waits" : " files wait") + " for album " +
        albumPathText(name.path) + "; import first, or use --force and they go to a folder of the old name");
}

/// What a new album's password does not guard, which one may expect of it.
std::string limitOfPassword(const Catalogue::Name& name) {
    const std::string password = "the password of album " + albumPathText(name.path);
    if (name.path.size() > 1)
        return password +
               " is never asked for: it guards the albums inside, and there are none inside this one";
    return password + " is asked for before those inside it are shown, not when the album itself is chosen";
}

/// Changes the catalogue and reports the album, with these warnings and those of albums that the picker will
/// not show.
int change(const Arguments& arguments, const Catalogue::Name& name, const std::string& what,
           const std::function<ErrorRef(Catalogue&)>& edit, std::vector<std::string> warnings = {}) {
    const ErrorRef error = Catalogue::change([&](Catalogue& catalogue) -> ErrorRef {
        if (ErrorRef problem = edit(catalogue))
            return problem;
        std::ranges::copy(warningsOfAlbums(catalogue.albums()), std::back_inserter(warnings));
        return problemWithPasswords(catalogue.albums());
    });
    if (error)
        return fail(error);
    for (const std::string& warning : warnings)
        fail(warning);
    if (const Result<std::vector<std::string>> removed = removeUnusedCovers(); !removed)
        fail(removed.error());
    if (arguments.has("--json"))
        return printJSON([&](JSONWriter& writer) {
            writer.member("path", name.path).member("decoy", name.fake).member("done", what);
            writer.member("warnings", warnings);
        });
    return print("Album " + escapedForLog(albumPathText(name.path)) +
                 (name.fake ? " of the decoy vault " : " ") + what + ".\n");
}

/// Prints the paths of the albums that a passcode opens. A wrong one is a failure that tells nothing of the
/// decoy.
int listOpened(const Arguments& arguments, const Catalogue& catalogue, const std::string& file) {
    const Result<Secret> passcode = readPasscode(file);
    if (!passcode)
        return fail(file + ": " + passcode.error()->localizedFailureReason());
    const std::optional<Secret> vaultPasscode = SharedAlbumManager::sharedPassword();
    const bool opensVault = passcode.value() == vaultPasscode;
    const bool opensDecoy = !opensVault && passcode.value() == SharedAlbumManager::sharedFakePassword();
    if (!opensVault && !opensDecoy)
        return fail(std::string(vaultPasscode ? "the passcode is wrong" : noPasscode));
    std::vector<SharedAlbum> opened = catalogue.albums();
    std::erase_if(opened, [&](const SharedAlbum& album) { return album.fake != opensDecoy; });
    if (arguments.has("--json"))
        return printJSON([&](JSONWriter& writer) {
            writer.key("albums").beginArray();
            for (const SharedAlbum& album : opened)
                writer.beginObject().member("path", album.namePath).endObject();
            writer.endArray();
        });
    std::string text;
    for (const SharedAlbum& album : opened)
        text += escapedForLog(albumPathText(album.namePath)) + "\n";
    return print(text);
}

} // namespace

int albumAddCommand(const Arguments& arguments) {
    const Result<Catalogue::Name> name = albumOf(arguments);
    if (!name)
        return fail(name.error());
    std::vector<std::string> warnings;
    SharedAlbum album;
    album.namePath = name.value().path;
    album.fake = name.value().fake;
    if (arguments.has("--password")) {
        const Result<Secret> password = askForNewPasscode("Password of the album");
        if (!password)
            return fail(password.error());
        album.password = password.value();
        warnings.push_back(limitOfPassword(name.value()));
    }
    if (const std::optional<std::string> picture = arguments.valueOf("--cover")) {
        const Result<std::string> cover = storeCover(*picture);
        if (!cover)
            return fail(cover.error());
        album.thumbNailName = cover.value();
    }
    return change(
        arguments, name.value(), "added",
        [&](Catalogue& catalogue) { return catalogue.add(std::move(album)); }, std::move(warnings));
}

int albumRenameCommand(const Arguments& arguments) {
    const Result<Catalogue::Name> name = albumOf(arguments);
    const Result<std::vector<std::string>> newName = albumPath(arguments.operands[1]);
    if (!name)
        return fail(name.error());
    if (!newName)
        return fail(newName.error());
    if (newName.value().size() != 1)
        return misuse("the new name is a name, not a path");
    return change(arguments, name.value(), "renamed", [&](Catalogue& catalogue) -> ErrorRef {
        if (ErrorRef problem = problemWithWaiting(arguments, catalogue, name.value()))
            return problem;
        return catalogue.rename(name.value(), newName.value().front());
    });
}

int albumRemoveCommand(const Arguments& arguments) {
    const Result<Catalogue::Name> name = albumOf(arguments);
    if (!name)
        return fail(name.error());
    return change(arguments, name.value(), "removed", [&](Catalogue& catalogue) -> ErrorRef {
        if (ErrorRef problem = problemWithWaiting(arguments, catalogue, name.value()))
            return problem;
        return catalogue.remove(name.value());
    });
}

int albumCoverCommand(const Arguments& arguments) {
    const Result<Catalogue::Name> name = albumOf(arguments);
    if (!name)
        return fail(name.error());
    const Result<std::string> cover = storeCover(arguments.operands[1]);
    if (!cover)
        return fail(cover.error());
    return change(arguments, name.value(), "has a new cover", [&](Catalogue& catalogue) -> ErrorRef {
        SharedAlbum* const album = catalogue.find(name.value());
        if (!album)
            return noSuchAlbum(name.value());
        album->thumbNailName = cover.value();
        return nullptr;
    });
}

int albumListCommand(const Arguments& arguments) {
    const Result<Catalogue> catalogue = Catalogue::published();
    if (!catalogue)
        return fail(catalogue.error());
    if (const std::optional<std::string> file = arguments.valueOf("--passcode-file"))
        return listOpened(arguments, catalogue.value(), *file);
    if (!arguments.has("--json"))
        return print(albumsTable(catalogue.value()));
    return printJSON([&](JSONWriter& writer) {
        writer.key("albums").beginArray();
        for (const SharedAlbum& album : catalogue.value().albums()) {
            writer.beginObject().member("path", album.namePath).member("decoy", album.fake);
            writer.member("locked", album.password.has_value()).member("cover", album.thumbNailName);
            const std::size_t waiting = catalogue.value().waiting({album.namePath, album.fake});
            writer.key("waiting").integer(static_cast<std::int64_t>(waiting)).endObject();
        }
        writer.endArray();
        writer.key("waitingElsewhere")
            .integer(static_cast<std::int64_t>(catalogue.value().waitingElsewhere()));
    });
}

} // namespace sela
