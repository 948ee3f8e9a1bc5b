#pragma once

#include "support/FileManagerWrapper.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <utility>

namespace sela {

/// An input stream that forwards to another and fails once `limit` bytes were read.
class FailingInputStream : public InputStream {
public:
    FailingInputStream(std::unique_ptr<InputStream> target, std::int64_t limit)
        : target_(std::move(target)), left_(limit) {}

    void open() override { target_->open(); }
    std::int64_t read(std::span<std::byte> buffer) override {
        if (left_ == 0) {
            error_ = NSError::posix(EIO, "read");
            return -1;
        }
        const auto allowed = std::min(buffer.size(), static_cast<std::size_t>(left_));
        const std::int64_t count = target_->read(buffer.first(allowed));
        left_ -= count;
        return count;
    }
    ErrorRef streamError() const override { return error_; }
    std::int64_t expectedSize() const override { return target_->expectedSize(); }
    void close() override { target_->close(); }

private:
    std::unique_ptr<InputStream> target_;
    std::int64_t left_;
    ErrorRef error_;
};

/// An output stream that forwards to another and fails as soon as more than `limit` bytes are written.
class FailingOutputStream : public OutputStream {
public:
    FailingOutputStream(std::unique_ptr<OutputStream> target, std::int64_t limit)
        : target_(std::move(target)), left_(limit) {}

    void open() override { target_->open(); }
    std::int64_t write(DataView bytes) override {
        const auto count = static_cast<std::int64_t>(bytes.size());
        if (error_ || count > left_) {
            error_ = NSError::posix(ENOSPC, "write");
            return -1;
        }
        left_ -= count;
        return target_->write(bytes);
    }
    ErrorRef synchronize() override { return error_ ? error_ : target_->synchronize(); }
    ErrorRef streamError() const override { return error_; }
    void close() override { target_->close(); }

private:
    std::unique_ptr<OutputStream> target_;
    std::int64_t left_;
    ErrorRef error_;
};

/// A file manager whose streams fail after so many bytes; -1 lets them be.
class FaultyStreams : public FileManagerWrapper {
public:
    std::int64_t readLimit = -1;
    std::int64_t writeLimit = -1;

    Result<std::unique_ptr<InputStream>> inputStream(const URL& source) override {
        Result<std::unique_ptr<InputStream>> stream = FileManagerWrapper::inputStream(source);
        if (!stream || readLimit < 0)
            return stream;
        return std::unique_ptr<InputStream>(
            std::make_unique<FailingInputStream>(std::move(stream.value()), readLimit));
    }
    Result<std::unique_ptr<OutputStream>> outputStream(const URL& destination,
                                                       std::int64_t expectedSize) override {
        Result<std::unique_ptr<OutputStream>> stream =
            FileManagerWrapper::outputStream(destination, expectedSize);
        if (!stream || writeLimit < 0)
            return stream;
        return std::unique_ptr<OutputStream>(
            std::make_unique<FailingOutputStream>(std::move(stream.value()), writeLimit));
    }
};

} // namespace sela
