#pragma once

#include <gio/gio.h>

namespace sela {

/// The application that the session's message bus knows as "xyz.sela.share", started by the bus when a
/// desktop calls it: `Open` with URLs, `Activate` with none, or the action "paste". Each of these starts a
/// `sela-share` of its own; the application runs until the last of them has ended, and a few seconds longer.
/// What a `sela-share` prints on standard error becomes a notification, since nobody would see it there.
///
/// URLs of other computers are passed to `sela-share` as the paths at which the desktop mounts them.
///
/// `program` is the path of `sela-share` and must outlive the application. The caller owns the reference.
GApplication* makeShareApplication(const char* program);

} // namespace sela
