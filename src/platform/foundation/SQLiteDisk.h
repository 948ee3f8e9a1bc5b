#pragma once

namespace sela {

/// The name of an SQLite VFS that makes every system call through the `Disk` in use; registered on the first
/// call. Any thread.
///
/// Its locks are compatible with those of SQLite's own VFS, so that any program that uses SQLite may share a
/// file; but they belong to the open file description rather than to the process, so that several connections
/// of one process exclude each other as those of several processes do. There are no temporary files and no
/// write-ahead log.
const char* sqliteDiskName();

} // namespace sela
