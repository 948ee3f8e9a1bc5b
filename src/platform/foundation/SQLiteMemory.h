#pragma once

namespace sela {

/// Lets SQLite overwrite the memory that it frees, which held settings, and gives no memory to pages in
/// advance. Called before anything else of SQLite; later calls change nothing. Any thread.
void wipeSQLiteMemory();

} // namespace sela
