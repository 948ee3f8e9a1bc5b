#pragma once

#include "platform/foundation/FileDescriptor.h"
#include "platform/media/UIImage.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace sela {

/// Memory that two processes see, into which a helper writes pixels or a file. Its size is sealed, so that no
/// peer can shrink it while it is read. Used by one thread at a time.
class SharedMemory {
public:
    /// New memory of `size` bytes, above 0; absent when the system has none left.
    static std::optional<SharedMemory> create(std::size_t size);

    /// The memory of a descriptor received from the peer; absent unless it has at least `size` bytes.
    static std::optional<SharedMemory> open(FileDescriptor descriptor, std::size_t size);

    SharedMemory(SharedMemory&& other) noexcept;
    SharedMemory& operator=(SharedMemory&& other) noexcept;
    ~SharedMemory();

    int descriptor() const { return descriptor_.get(); }
    std::span<std::uint8_t> bytes() const { return bytes_; }

    /// Takes whole pages of the first `count` bytes out of this process's resident memory. They keep their
    /// content, and come back when they are used again.
    void release(std::size_t count) const;

    /// A copy of the first 4 * width * height bytes; absent when the memory is smaller.
    std::optional<PixelBuffer> copy(std::uint32_t width, std::uint32_t height) const;

private:
    SharedMemory(FileDescriptor descriptor, std::span<std::uint8_t> bytes)
        : descriptor_(std::move(descriptor)), bytes_(bytes) {}

    FileDescriptor descriptor_;
    std::span<std::uint8_t> bytes_;
};

} // namespace sela
