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

} // namespace

bool hasSameContent(const URL& first, const URL& second) {
    FileManager& files = FileManager::defaultManager();
    const Result<FileAttributes> firstAttributes = files.attributesOfItem(first.path());
    const Result<FileAttributes> secondAttributes = files.attributesOfItem(second.path());
    if (!firstAttributes || !secondAttributes ||
        firstAttributes.value().type != FileAttributes::Type::regular ||
        firstAttributes.value().size != secondAttributes.value().size)
        return false;
    if (firstAttributes.value().isSameFile(secondAttributes.value()))
        return true;
    const Result<std::unique_ptr<InputStream>> firstStream = files.inputStream(first);
    const Result<std::unique_ptr<InputStream>> secondStream = files.inputStream(second);
    if (!firstStream || !secondStream)
        return false;
    std::vector<std::byte> firstBlock(blockSize);
    std::vector<std::byte> secondBlock(blockSize);
    while (true) {
        const std::int64_t firstCount = fill(*firstStream.value(), firstBlock);
        const std::int64_t secondCount = fill(*secondStream.value(), secondBlock);
        if (firstCount < 0 || firstCount != secondCount)
            return false;
        if (firstCount == 0)
            return true;
        if (!std::equal(firstBlock.begin(), firstBlock.begin() + firstCount, secondBlock.begin()))
            return false;
    }
}

} // namespace sela
