#pragma once

namespace sela {

/// Makes SQLite overwrite the memory that it frees, which held settings, and turns off its preallocated page
/// cache. Called before anything else of SQLite; later calls change nothing. Any thread.
void wipeSQLiteMemory();

} // namespace sela
