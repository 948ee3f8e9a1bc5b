#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <new>

// A program that this is linked into overwrites what it deletes, so that names of albums and settings that it
// has read do not stay in its memory until something else is written there. Not for builds with sanitizers,
// which bring operators of their own.

void operator delete(void* memory) noexcept {
    if (!memory)
        return;
    ::explicit_bzero(memory, ::malloc_usable_size(memory));
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    ::operator delete(memory);
}
