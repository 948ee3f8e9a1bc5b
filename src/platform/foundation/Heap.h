#pragma once

#include <cstddef>

namespace sela {

/// Lets the process keep up to 64 MiB that it freed, for what any thread asks for next, where the C library
/// would give it back and get it again page by page: the ledger, pictures and layers are large and come again
/// and again. Called first in a program, before it has threads.
void keepFreedMemory();

/// Gets so many bytes of memory for the heap at once, which is several times as fast as page by page, when
/// they are touched. After `keepFreedMemory`.
void growHeap(std::size_t bytes);

/// Gets the pages of memory that is about to be written at once, as `growHeap` does. A hint: before
/// Linux 5.14 they come page by page all the same.
void populatePages(void* memory, std::size_t bytes);

} // namespace sela
