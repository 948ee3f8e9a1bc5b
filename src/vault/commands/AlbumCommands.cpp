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

#include <cstdlib>
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

/// Changes the catalogue and reports the album, and albums that the picker will not show.
int change(const Arguments& arguments, const Catalogue::Name& name, const std::string& what,
           const std::function<ErrorRef(Catalogue&)>& edit) {
    std::vector<std::string> warnings;
    const ErrorRef error = Catalogue::change([&](Catalogue& catalogue) -> ErrorRef {
        if (ErrorRef problem = edit(catalogue))
            return problem;
        warnings = warningsOfAlbums(catalogue.albums());
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

/// Prints the paths of the albums that a passcode opens: none for a wrong one.
int listOpened(const Catalogue& catalogue, const std::string& file) {
    const Result<Secret> passcode = readPasscode(file);
    if (!passcode)
        return fail(file + ": " + passcode.error()->localizedFailureReason());
    const bool opensVault = passcode.value() == SharedAlbumManager::sharedPassword();
    const bool opensDecoy = !opensVault && passcode.value() == SharedAlbumManager::sharedFakePassword();
    std::string text;
    for (const SharedAlbum& album : catalogue.albums())
        if (album.fake ? opensDecoy : opensVault)
            text += escapedForLog(albumPathText(album.namePath)) + "\n";
    return print(text);
}

} // namespace

int albumAddCommand(const Arguments& arguments) {
    const Result<Catalogue::Name> name = albumOf(arguments);
    if (!name)
        return fail(name.error());
    SharedAlbum album;
    album.namePath = name.value().path;
    album.fake = name.value().fake;
    if (arguments.has("--password")) {
        const Result<Secret> password = askForNewPasscode("Password of the album");
        if (!password)
            return fail(password.error());
        album.password = password.value();
    }
    if (const std::optional<std::string> picture = arguments.valueOf("--cover")) {
        const Result<std::string> cover = storeCover(*picture);
        if (!cover)
            return fail(cover.error());
        album.thumbNailName = cover.value();
    }
    return change(arguments, name.value(), "added",
                  [&](Catalogue& catalogue) { return catalogue.add(std::move(album)); });
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
        return listOpened(catalogue.value(), *file);
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
