#include "vault/PublicationRules.h"

#include "platform/foundation/FileName.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/UTF8.h"
#include "store/AlbumPath.h"
#include "store/ShareExtensionError.h"

#include <algorithm>
#include <set>
#include <utility>

namespace sela {

namespace {

constexpr std::size_t mostWarnings = 20;

bool canBeTyped(std::string_view code) {
    return code.find_first_not_of("0123456789") == std::string_view::npos;
}

ErrorRef problemWithPasscode(const std::string& name, const Secret& passcode) {
    if (passcode.empty())
        return ShareExtensionError::make("the " + name + " is empty, so everybody could open the albums");
    if (!canBeTyped(passcode.exposed()))
        return ShareExtensionError::make("the " + name +
                                         " cannot be typed: the keypad has the digits 0 to 9 only");
    return nullptr;
}

bool fillsItsDots(const Secret& passcode) {
    return passcode.size() == 4 || passcode.size() == 6;
}

bool isBlank(std::string_view text) {
    constexpr std::u32string_view blanks = U" \u00A0\u1680\u202F\u205F\u3000\uFEFF";
    while (!text.empty()) {
        const DecodedCharacter character = decodeUTF8(text);
        const bool isBlank = blanks.find(character.codePoint) != std::u32string_view::npos ||
                             (character.codePoint >= 0x2000 && character.codePoint <= 0x200D);
        if (!isBlank)
            return false;
        text.remove_prefix(character.length);
    }
    return true;
}

/// Why the picker does not show an album; empty when it does.
std::string fateOf(const SharedAlbum& album, const std::set<std::pair<bool, std::string>>& parents) {
    if (album.namePath.empty())
        return "an album without a name is not shown";
    if (album.namePath.size() > 2)
        return "album " + albumPathText(album.namePath) + " is not shown: albums have two levels";
    if (album.namePath.size() == 2 && !parents.contains({album.fake, album.namePath.front()}))
        return "album " + albumPathText(album.namePath) + " is not shown: there is no album " +
               album.namePath.front() + " above it";
    return {};
}

} // namespace

ErrorRef problemWithPasscodes(const std::optional<Secret>& vault, const std::optional<Secret>& decoy) {
    if (vault)
        if (ErrorRef problem = problemWithPasscode("vault passcode", *vault))
            return problem;
    if (decoy)
        if (ErrorRef problem = problemWithPasscode("decoy passcode", *decoy))
            return problem;
    if (!vault || !decoy)
        return nullptr;
    if (*vault == *decoy)
        return ShareExtensionError::make(
            "both passcodes are the same, so nothing would open the decoy's albums");
    if (decoy->exposed().starts_with(vault->exposed()))
        return ShareExtensionError::make(
            "the decoy passcode begins with the vault passcode, so typing it would open "
            "the vault");
    if (vault->exposed().starts_with(decoy->exposed()))
        return ShareExtensionError::make(
            "the vault passcode begins with the decoy passcode, so typing it would open "
            "the decoy's albums");
    if (decoy->size() > vault->size())
        return ShareExtensionError::make(
            "the decoy passcode is longer than the vault passcode, and the keypad takes "
            "no more digits than that has");
    if (!fillsItsDots(*vault))
        return ShareExtensionError::make(
            "beside a decoy the vault passcode must have 4 or 6 digits: with any other "
            "number the decoy passcode opens the vault's albums");
    return nullptr;
}

ErrorRef problemWithPasswords(const std::vector<SharedAlbum>& albums) {
    for (const SharedAlbum& album : albums) {
        if (!album.password)
            continue;
        const std::string password = "the password of album " + albumPathText(album.namePath);
        if (album.password->empty())
            return ShareExtensionError::make(password + " is empty, so any digit would open it");
        if (!canBeTyped(album.password->exposed()))
            return ShareExtensionError::make(password +
                                             " cannot be typed: the keypad has the digits 0 to 9 only");
    }
    return nullptr;
}

ErrorRef problemWithName(const std::string& name) {
    const std::string album = "album \"" + name + "\": the name ";
    if (name.size() > longestFileName)
        return ShareExtensionError::make(album + "has more than " + std::to_string(longestFileName) +
                                         " bytes");
    if (!isValidUTF8(name))
        return ShareExtensionError::make(album + "is not UTF-8");
    if (name == "." || name == "..")
        return ShareExtensionError::make(album + "means another folder");
    if (escapedForLog(name) != name)
        return ShareExtensionError::make(album + "has control characters");
    if (isBlank(name))
        return ShareExtensionError::make(album + "is blank");
    return nullptr;
}

std::vector<std::string> warningsOfPasscodes(const Secret& vault, const std::optional<Secret>& decoy) {
    std::vector<std::string> warnings;
    if (!fillsItsDots(vault))
        warnings.push_back("the vault passcode has " + std::to_string(vault.size()) +
                           " digits; the keypad has room for the dots of 4 or 6");
    if (decoy && decoy->size() < vault.size())
        warnings.emplace_back(
            "the decoy passcode is shorter than the vault passcode: who looks on sees it open before "
            "all dots are filled");
    return warnings;
}

std::vector<std::string> warningsOfAlbums(const std::vector<SharedAlbum>& albums) {
    std::set<std::pair<bool, std::string>> parents;
    for (const SharedAlbum& album : albums)
        if (album.namePath.size() == 1)
            parents.emplace(album.fake, album.namePath.front());

    std::vector<std::string> warnings;
    std::set<std::pair<bool, std::vector<std::string>>> seen;
    for (const SharedAlbum& album : albums) {
        std::string warning = fateOf(album, parents);
        if (warning.empty() && !seen.emplace(album.fake, album.namePath).second)
            warning = "album " + albumPathText(album.namePath) + " is there more than once" +
                      (album.namePath.size() == 1 ? "; its child albums are shown below the last one" : "");
        if (!warning.empty())
            warnings.push_back(std::move(warning));
    }
    if (const std::size_t count = warnings.size(); count > mostWarnings) {
        warnings.resize(mostWarnings);
        warnings.push_back("and " + std::to_string(count - mostWarnings) + " more albums like these");
    }
    return warnings;
}

} // namespace sela
