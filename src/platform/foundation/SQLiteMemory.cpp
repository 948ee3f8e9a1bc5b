#include "platform/foundation/SQLiteMemory.h"

#include <algorithm>
#include <cstring>
#include <sqlite3.h>

namespace sela {

namespace {

/// SQLite's own allocator.
sqlite3_mem_methods& inner() {
    static sqlite3_mem_methods methods = {};
    return methods;
}

void release(void* memory) {
    if (!memory)
        return;
    ::explicit_bzero(memory, static_cast<std::size_t>(inner().xSize(memory)));
    inner().xFree(memory);
}

/// Never by realloc, which may move the block and leave a copy behind.
void* resize(void* memory, int size) {
    void* const moved = inner().xMalloc(size);
    if (!moved)
        return nullptr;
    std::memcpy(moved, memory, static_cast<std::size_t>(std::min(inner().xSize(memory), size)));
    release(memory);
    return moved;
}

} // namespace

void wipeSQLiteMemory() {
    static const bool done = [] {
        sqlite3_config(SQLITE_CONFIG_GETMALLOC, &inner());
        sqlite3_mem_methods wiping = inner();
        wiping.xFree = release;
        wiping.xRealloc = resize;
        // The blocks that SQLite otherwise keeps ready, for pages and for each connection, it reuses as they
        // are.
        return sqlite3_config(SQLITE_CONFIG_MALLOC, &wiping) == SQLITE_OK &&
               sqlite3_config(SQLITE_CONFIG_PAGECACHE, nullptr, 0, 0) == SQLITE_OK &&
               sqlite3_config(SQLITE_CONFIG_LOOKASIDE, 0, 0) == SQLITE_OK;
    }();
    static_cast<void>(done);
}

} // namespace sela
