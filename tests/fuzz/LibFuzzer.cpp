#include "fuzz/FuzzTarget.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fuzz(std::as_bytes(std::span(bytes, size)));
    return 0;
}
