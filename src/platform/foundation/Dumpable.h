#pragma once

namespace sela {

/// Whether others can look into this process: get a core of it, trace it, read its memory. A process of the
/// vault holds passcodes and names of albums, which are for nobody else. Process-wide; main thread.

/// From here on the process dumps no core, not to a program that collects crashes either, and no process of
/// the same user can trace it or read its memory. What it starts dumps no core either. Called first in a
/// program.
void makeUndumpable();

/// Lets processes of the same user look into this one while it lives; there is still no core. For services
/// that answer only whom they can look at, as the desktop's portal does, and only while nothing is in memory
/// that they must not see.
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
