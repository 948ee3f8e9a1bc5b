#include "platform/media/SharedMemory.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/mman.h>

namespace sela {

std::optional<SharedMemory> SharedMemory::create(std::size_t size) {
    FileDescriptor descriptor(::memfd_create("sela-pixels", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!descriptor.isOpen() || ::ftruncate(descriptor.get(), static_cast<off_t>(size)) != 0 ||
        ::fcntl(descriptor.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0)
        return std::nullopt;
    return open(std::move(descriptor), size);
}

std::optional<SharedMemory> SharedMemory::open(FileDescriptor descriptor, std::size_t size) {
    // By lseek, since the sandbox of a helper denies fstat.
    const off_t available = ::lseek(descriptor.get(), 0, SEEK_END);
    if (size == 0 || available < 0 || static_cast<std::size_t>(available) < size)
        return std::nullopt;
    void* address = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor.get(), 0);
    if (address == MAP_FAILED)
        return std::nullopt;
    return SharedMemory(std::move(descriptor), {static_cast<std::uint8_t*>(address), size});
}

SharedMemory::SharedMemory(SharedMemory&& other) noexcept
    : descriptor_(std::move(other.descriptor_)), bytes_(std::exchange(other.bytes_, {})) {}

SharedMemory& SharedMemory::operator=(SharedMemory&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    std::swap(bytes_, other.bytes_);
    return *this;
}

SharedMemory::~SharedMemory() {
    if (!bytes_.empty())
        ::munmap(bytes_.data(), bytes_.size());
}

void SharedMemory::release(std::size_t count) const {
    // Advice on shared memory touches the mapping alone; when it is not taken, the pages stay.
    ::madvise(bytes_.data(), std::min(count, bytes_.size()), MADV_DONTNEED);
}

std::optional<PixelBuffer> SharedMemory::copy(std::uint32_t width, std::uint32_t height) const {
    const std::size_t size = std::size_t{4} * width * height;
    if (size > bytes_.size())
        return std::nullopt;
    return PixelBuffer{static_cast<int>(width),
                       static_cast<int>(height),
                       {bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(size)}};
}

} // namespace sela
