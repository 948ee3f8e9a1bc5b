#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <new>

// A program that links this overwrites the memory that it deletes, so that names of albums and settings do
// not stay there until the memory is reused. Not for builds with sanitizers, which have their own operators.

void operator delete(void* memory) noexcept {
    if (!memory)
        return;
    ::explicit_bzero(memory, ::malloc_usable_size(memory));
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    ::operator delete(memory);
}
