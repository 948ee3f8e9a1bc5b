#pragma once

namespace sela {

/// Whether others can inspect this process: get a core dump of it, trace it, read its memory. A process of
/// the vault holds passcodes and names of albums, which must stay private. Process-wide; main thread.

/// From here on the process dumps no core, not even to a crash collector, and no process of the same user can
/// trace it or read its memory. Its child processes dump no core either. Called first in a program.
void makeUndumpable();

/// Lets processes of the same user inspect this one while the object lives; there is still no core dump. For
/// services that answer only callers that they can inspect, as the desktop's portal does, and only while
/// nothing secret is in memory.
class DumpableScope {
public:
    DumpableScope();
    ~DumpableScope();
    DumpableScope(const DumpableScope&) = delete;
    DumpableScope& operator=(const DumpableScope&) = delete;

private:
    const int before_;
};

} // namespace sela
