#pragma once

#include <unistd.h>
#include <utility>

namespace sela {

/// Owns a POSIX descriptor and closes it; a negative number is none. Move-only; used by one thread at a time.
class FileDescriptor {
public:
    explicit FileDescriptor(int descriptor = -1) : descriptor_(descriptor) {}
    ~FileDescriptor() { reset(); }
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            reset();
            descriptor_ = std::exchange(other.descriptor_, -1);
        }
        return *this;
    }

    bool isOpen() const { return descriptor_ >= 0; }
    int get() const { return descriptor_; }

    /// Releases the descriptor to the caller, who closes it.
    int release() { return std::exchange(descriptor_, -1); }

    void reset() {
        if (isOpen())
            ::close(std::exchange(descriptor_, -1));
    }

private:
    int descriptor_;
};

} // namespace sela
