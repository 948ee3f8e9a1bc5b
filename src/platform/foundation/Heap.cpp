#include "platform/foundation/Heap.h"

#include <cstdint>
#include <cstdlib>
#include <malloc.h>
#include <sys/mman.h>

namespace sela {

void keepFreedMemory() {
    // The largest threshold that the C library takes: what is below it lies in the heap, which is kept.
    constexpr int largestInHeap = 32 << 20;
    constexpr int mostKept = 64 << 20;
    ::mallopt(M_MMAP_THRESHOLD, largestInHeap);
    ::mallopt(M_TRIM_THRESHOLD, mostKept);
    // A heap for each thread would start empty.
    ::mallopt(M_ARENA_MAX, 1);
}

void populatePages(void* memory, std::size_t bytes) {
    constexpr std::uintptr_t page = 4096;
    const std::uintptr_t begin = (reinterpret_cast<std::uintptr_t>(memory) + page - 1) / page * page;
    const std::uintptr_t end = (reinterpret_cast<std::uintptr_t>(memory) + bytes) / page * page;
    if (begin < end)
        ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_POPULATE_WRITE);
}

void growHeap(std::size_t bytes) {
    if (void* const memory = std::malloc(bytes)) {
        populatePages(memory, bytes);
        std::free(memory);
    }
}

} // namespace sela
