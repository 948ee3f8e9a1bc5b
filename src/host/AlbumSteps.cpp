#include "host/AlbumSteps.h"

#include "commandline/Arguments.h"
#include "host/TypedDigits.h"
#include "host/VaultState.h"
#include "platform/uikit/UINavigationController.h"
#include "store/AlbumPath.h"
#include "store/ShareExtensionError.h"
#include "unlock/SelaShareExtensionAlbumsVc.h"

#include <algorithm>

namespace sela {

namespace {

Result<Step> typing(const std::string& file, const std::string& unasked) {
    const Result<Secret> digits = readDigits(file);
    if (!digits)
        return digits.error();
    return Step{.kind = Step::Kind::type, .digits = digits.value(), .unasked = unasked};
}

ErrorRef noAlbum(const std::string& path) {
    return ShareExtensionError::make("there is no album " + path);
}

/// The picker that was opened above a screen, maybe with another screen above it; null when there is none.
const SelaShareExtensionAlbumsVc* pickerAbove(const UIViewController& screen) {
    if (const UINavigationController* const navigation = screen.navigationController())
        for (const std::shared_ptr<UIViewController>& child : navigation->children())
            if (const auto* const picker = dynamic_cast<const SelaShareExtensionAlbumsVc*>(child.get()))
                return picker;
    return nullptr;
}

} // namespace

Result<std::vector<Step>> stepsToAlbum(const CommandLine& line) {
    const Result<std::vector<std::string>> path = albumPath(line.album.value());
    if (!path)
        return usageError(path.error()->localizedDescription());
    if (path.value().size() == 1 && line.albumPasswordFile)
        return usageError("an album's password opens the albums inside it; album " + path.value().front() +
                          " itself needs none");
    std::vector<Step> steps = {{Step::Kind::tap, "albumButton"}};
    if (line.passcodeFile) {
        const Result<Step> passcode =
            typing(*line.passcodeFile,
                   "no keypad asks for the passcode: the vault has none, or another program uses it");
        if (!passcode)
            return passcode.error();
        steps.push_back(passcode.value());
    }
    if (path.value().size() > 1)
        steps.push_back({Step::Kind::unfold, albumPathText({path.value().front()})});
    if (line.albumPasswordFile) {
        const std::string& parent = path.value().front();
        const Result<Step> password =
            typing(*line.albumPasswordFile, "album " + parent + " asks for no password");
        if (!password)
            return password.error();
        steps.push_back(password.value());
    }
    steps.push_back({Step::Kind::album, albumPathText(path.value())});
    steps.push_back({Step::Kind::tap, "addButton"});
    return steps;
}

ErrorRef problemWithVault(const std::string& album) {
    switch (vaultState()) {
    case VaultState::absent:
        return ShareExtensionError::make(std::string(noVaultText));
    case VaultState::unreadable:
        return ShareExtensionError::make(std::string(unreadableVaultText));
    case VaultState::withoutAlbums:
        return noAlbum(album);
    case VaultState::withoutPasscode:
        return ShareExtensionError::make(
            "the vault has no passcode yet; \"sela-vault passcode set\" sets it");
    case VaultState::busy: // the picker waits
    case VaultState::ready:
        break;
    }
    return nullptr;
}

ErrorRef lockedAlbum(const Step& step) {
    return ShareExtensionError::make(
        "album " + step.argument +
        " is locked: the passcode, or the password of the album above it, is missing or "
        "does not open it");
}

Result<std::string> viewOfAlbum(const UIViewController& screen, const Step& step) {
    const SelaShareExtensionAlbumsVc* const picker = pickerAbove(screen);
    const Result<std::vector<std::string>> path = albumPath(step.argument);
    // Behind the keypad are albums as well: whether one of this name is there must not be told.
    if (!picker || !picker->showsAlbums() || !path)
        return lockedAlbum(step);
    const AlbumTree& albums = picker->albums();
    for (std::size_t section = 0; section < albums.showAlbums().size(); ++section) {
        const std::vector<SharedAlbum>& rows = albums.showAlbums()[section];
        const std::string place = std::to_string(section);
        const auto row = std::ranges::find(rows, path.value(), &SharedAlbum::namePath);
        if (row != rows.end())
            return step.kind == Step::Kind::unfold
                       ? "showChildButton:" + place
                       : "row:" + place + ":" + std::to_string(row - rows.begin());
        if (std::ranges::count(albums.childAlbums()[section], path.value(), &SharedAlbum::namePath) > 0)
            return lockedAlbum(step);
    }
    return noAlbum(step.argument);
}

} // namespace sela
