#pragma once

#include <cstddef>

namespace sela {

/// Lets the process keep up to 64 MiB of freed memory for the next allocations of any thread, which the C
/// library would return to the system and fault in again page by page: the ledger, pictures and layers are
/// large and allocated again and again. Called first in a program, before it has threads.
void keepFreedMemory();

/// Grows the heap by this many bytes and populates them at once, which is several times as fast as page by
/// page at the first access. After `keepFreedMemory`.
void growHeap(std::size_t bytes);

/// Populates the pages of memory that is about to be written, as `growHeap` does. A hint: before Linux 5.14
/// they are still faulted in page by page.
void populatePages(void* memory, std::size_t bytes);

} // namespace sela
