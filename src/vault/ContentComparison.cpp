#include "vault/ContentComparison.h"

#include "platform/foundation/FileManager.h"

#include <algorithm>
#include <span>
#include <vector>

namespace sela {

namespace {

constexpr std::size_t blockSize = 1 << 20;

/// Reads until `buffer` is full or the file ends; -1 on failure.
std::int64_t fill(InputStream& stream, std::span<std::byte> buffer) {
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const std::int64_t count = stream.read(buffer.subspan(filled));
        if (count < 0)
            return -1;
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(count);
    }
    return static_cast<std::int64_t>(filled);
}

Result<bool> haveSameBytes(InputStream& first, InputStream& second) {
    std::vector<std::byte> firstBlock(blockSize);
    std::vector<std::byte> secondBlock(blockSize);
    while (true) {
        const std::int64_t firstCount = fill(first, firstBlock);
        const std::int64_t secondCount = fill(second, secondBlock);
        if (firstCount < 0)
            return first.streamError();
        if (secondCount < 0)
            return second.streamError();
        if (firstCount != secondCount)
            return false;
        if (firstCount == 0)
            return true;
        if (!std::equal(firstBlock.begin(), firstBlock.begin() + firstCount, secondBlock.begin()))
            return false;
    }
}

} // namespace

Result<bool> hasSameContent(const URL& first, const URL& second) {
    FileManager& files = FileManager::defaultManager();
    const Result<FileAttributes> firstAttributes = files.attributesOfEntry(first.path());
    const Result<FileAttributes> secondAttributes = files.attributesOfEntry(second.path());
    if (!firstAttributes || !secondAttributes)
        return false;
    for (const FileAttributes& attributes : {firstAttributes.value(), secondAttributes.value()})
        if (attributes.type != FileAttributes::Type::regular ||
            attributes.size != firstAttributes.value().size)
            return false;
    if (firstAttributes.value().isSameFile(secondAttributes.value()))
        return true;
    Result<InputStream> firstStream = files.inputStream(first);
    Result<InputStream> secondStream = files.inputStream(second);
    for (const auto* const stream : {&firstStream, &secondStream})
        if (ErrorRef error = stream->error())
            return error;
    return haveSameBytes(firstStream.value(), secondStream.value());
}

} // namespace sela
