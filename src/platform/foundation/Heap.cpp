#include "platform/foundation/Heap.h"

#include <malloc.h>

namespace sela {

void keepFreedMemory() {
    // The largest threshold that the C library takes: what is below it lies in the heap, which is kept.
    constexpr int largestInHeap = 32 << 20;
    constexpr int mostKept = 64 << 20;
    ::mallopt(M_MMAP_THRESHOLD, largestInHeap);
    ::mallopt(M_TRIM_THRESHOLD, mostKept);
}

} // namespace sela
