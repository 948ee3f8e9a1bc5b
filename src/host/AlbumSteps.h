#pragma once

#include "host/CommandLine.h"
#include "platform/foundation/Error.h"
#include "platform/uikit/UIViewController.h"

#include <string>
#include <vector>

namespace sela {

/// `--album` takes the steps of a user: the keypad, the picker, the row, Add. Main thread only.

/// The steps to the album that the command line names and to Add, with the passcode and the album's password
/// read from their files. The error when a file cannot be read or holds something that cannot be typed.
Result<std::vector<Step>> stepsToAlbum(const CommandLine& line);

/// Why the vault has no album to choose, before any step is taken; null when it may have one.
ErrorRef problemWithVault(const std::string& album);

/// The name of the view that an `unfold` or `album` step touches in the picker above `screen`. The error when
/// no album has that path, or a locked album hides it.
Result<std::string> viewOfAlbum(const UIViewController& screen, const Step& step);

/// The error for an album that cannot be touched.
ErrorRef lockedAlbum(const Step& step);

} // namespace sela
