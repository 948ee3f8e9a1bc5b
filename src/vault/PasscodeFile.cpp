#include "vault/PasscodeFile.h"

#include "platform/foundation/FileManager.h"
#include "platform/foundation/PosixStreams.h"
#include "platform/foundation/UTF8.h"

#include <array>
#include <cerrno>
#include <unistd.h>

namespace sela {

namespace {

constexpr std::int64_t largestFile = 4096;

Result<Data> readStandardInput() {
    PosixInputStream input(FileDescriptor(::dup(STDIN_FILENO)), 0);
    Data content;
    std::array<std::byte, largestFile> block;
    while (true) {
        const std::int64_t count = input.read(block);
        if (count < 0)
            return input.streamError();
        if (count == 0)
            return content;
        content.insert(content.end(), block.begin(), block.begin() + count);
        if (static_cast<std::int64_t>(content.size()) > largestFile)
            return NSError::posix(EFBIG, "read");
    }
}

} // namespace

Result<std::string> readPasscode(const std::string& path) {
    const Result<Data> content =
        path == "-" ? readStandardInput() : FileManager::defaultManager().contentsOfFile(path, largestFile);
    if (!content)
        return content.error();
    std::string_view line = asText(content.value());
    line = line.substr(0, line.find('\n'));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    if (!isValidUTF8(line))
        return NSError::posix(EILSEQ, "passcode");
    return std::string(line);
}

} // namespace sela
