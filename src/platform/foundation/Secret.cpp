#include "platform/foundation/Secret.h"

#include <cstring>
#include <memory_resource>
#include <new>
#include <sys/mman.h>

namespace sela {

namespace {

/// Pages of their own.
class LockedPages : public std::pmr::memory_resource {
    void* do_allocate(std::size_t bytes, std::size_t) override {
        void* const pages =
            ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (pages == MAP_FAILED)
            throw std::bad_alloc();
        // Beyond the limit on locked memory the rest may be swapped out; a swap that is not encrypted could
        // keep it.
        ::mlock(pages, bytes);
        ::madvise(pages, bytes, MADV_DONTDUMP);
        return pages;
    }
    void do_deallocate(void* pages, std::size_t bytes, std::size_t) override { ::munmap(pages, bytes); }
    bool do_is_equal(const memory_resource& other) const noexcept override { return this == &other; }
};

/// Never destroyed, since secrets of static objects are freed after `main`.
std::pmr::memory_resource& memory() {
    static auto* const pool = new std::pmr::synchronized_pool_resource(new LockedPages);
    return *pool;
}

} // namespace

char* SecretAllocator::allocate(std::size_t size) {
    return static_cast<char*>(memory().allocate(size));
}

void SecretAllocator::deallocate(char* place, std::size_t size) {
    overwrite({reinterpret_cast<std::byte*>(place), size});
    memory().deallocate(place, size);
}

void overwrite(std::span<std::byte> bytes) {
    if (!bytes.empty())
        ::explicit_bzero(bytes.data(), bytes.size());
}

} // namespace sela
