#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/Secret.h"
#include "store/SharedAlbum.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sela {

/// Published passcodes must not reveal the vault on the keypad: it has ten digits and no enter key, so a code
/// opens with its last digit, and the entry is at most as long as the vault passcode. Any thread.

inline constexpr std::string_view noPasscode =
    "there is no passcode, so no albums are shown; set one with \"sela-vault passcode set\"";

/// Why these two passcodes (absent: none) must not be published together; null when they may.
ErrorRef problemWithPasscodes(const std::optional<Secret>& vault, const std::optional<Secret>& decoy);

/// Why an album's password must not be published; null when all may.
ErrorRef problemWithPasswords(const std::vector<SharedAlbum>& albums);

/// Why an album must not be given a name; null when it may: it is not blank, can be shown on one line, and
/// is no longer than a folder's name may be.
ErrorRef problemWithName(const std::string& name);

/// Warnings for passcodes that may be published but probably are a mistake, a line each.
std::vector<std::string> warningsOfPasscodes(const Secret& vault, const std::optional<Secret>& decoy);

/// The albums that the picker does not show, or shows twice, a line each; at most 20 lines and one with the
/// number of those left out.
std::vector<std::string> warningsOfAlbums(const std::vector<SharedAlbum>& albums);

} // namespace sela
