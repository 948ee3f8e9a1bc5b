#pragma once

namespace sela {

/// The name of SQLite's file layer (its "VFS") that makes every system call by way of the `Disk` in use, made
/// known to SQLite on the first call. Any thread.
///
/// Its locks are those of SQLite's own layer, so that any program of SQLite may share a file; but they belong
/// to the open file rather than to the process, so that several connections of one process are kept apart as
/// those of several processes are. There are no temporary files and no write-ahead log.
const char* sqliteDiskName();

} // namespace sela
