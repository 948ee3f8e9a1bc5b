#pragma once

#include "platform/foundation/FileDescriptor.h"
#include "platform/foundation/InputStream.h"
#include "platform/foundation/OutputStream.h"

#include <string>

namespace sela {

/// An input stream on an open descriptor. Used by one thread at a time.
class PosixInputStream : public InputStream {
public:
    PosixInputStream(FileDescriptor descriptor, std::int64_t expectedSize);

    void open() override {}
    std::int64_t read(std::span<std::byte> buffer) override;
    ErrorRef streamError() const override { return error_; }
    std::int64_t expectedSize() const override { return expectedSize_; }
    void close() override { descriptor_.reset(); }

private:
    FileDescriptor descriptor_;
    std::int64_t expectedSize_;
    ErrorRef error_;
};

/// An output stream on an open descriptor of an empty file. Each block's way to the disk begins when it is
/// written, so that `synchronize` has little left to wait for. Used by one thread at a time.
class PosixOutputStream : public OutputStream {
public:
    /// `folder` is the path of the folder that holds the file.
    PosixOutputStream(FileDescriptor descriptor, std::string folder);

    void open() override {}
    std::int64_t write(DataView bytes) override;
    ErrorRef synchronize() override;
    ErrorRef streamError() const override { return error_; }
    void close() override { descriptor_.reset(); }

private:
    FileDescriptor descriptor_;
    std::string folder_;
    std::int64_t written_ = 0;
    ErrorRef error_;
};

/// Writes all of `bytes` at the descriptor's position, going on after short writes and interruptions. Null on
/// success.
ErrorRef writeFully(int descriptor, DataView bytes);

/// Brings the content of an open file to the disk. Null on success.
ErrorRef synchronizeFile(int descriptor);

/// Brings the entries of a folder to the disk. A file system that has no such operation is no error.
ErrorRef synchronizeFolder(const std::string& path);

} // namespace sela
