#pragma once

namespace sela {

/// Marks construction from an archive. There are no archives here: a class that supports the constructor
/// builds itself as if the archive held nothing, and a class that does not stops the process with
/// "init(coder:) has not been implemented".
struct NSCoder {};

} // namespace sela
