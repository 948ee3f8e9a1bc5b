#pragma once

#include <gio/gio.h>

namespace sela {

/// The application that the session's message bus knows as "xyz.sela.share", made by the bus when a desktop
/// wants something of it: `Open` with URLs, `Activate` with none, or the action "paste". Each of these starts
/// a `sela-share` of its own; the application goes on until the last of them has ended, and a few seconds
/// longer. What a `sela-share` says on standard error becomes a notification, since nobody sees it there.
///
/// URLs of other computers reach `sela-share` as paths where the desktop mounts them.
///
/// `program` is the path of `sela-share` and must outlive the application. The caller owns the reference.
GApplication* makeShareApplication(const char* program);

} // namespace sela
