#include "platform/foundation/Heap.h"

#include <cstddef>
#include <cstdlib>
#include <malloc.h>
#include <memory>
#include <sys/mman.h>

namespace sela {

void keepFreedMemory() {
    // The largest threshold that the C library accepts: smaller blocks are in the heap, which is kept.
    constexpr int largestInHeap = 32 << 20;
    constexpr int mostKept = 64 << 20;
    ::mallopt(M_MMAP_THRESHOLD, largestInHeap);
    ::mallopt(M_TRIM_THRESHOLD, mostKept);
    // A heap for each thread would start empty.
    ::mallopt(M_ARENA_MAX, 1);
}

void populatePages(void* memory, std::size_t bytes) {
    constexpr std::size_t page = 4096;
    if (std::align(page, page, memory, bytes))
        ::madvise(memory, bytes / page * page, MADV_POPULATE_WRITE);
}

void growHeap(std::size_t bytes) {
    if (void* const memory = std::malloc(bytes)) {
        populatePages(memory, bytes);
        std::free(memory);
    }
}

} // namespace sela
