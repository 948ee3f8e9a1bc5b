#include "host/ShareRequest.h"

#include "platform/extension/NSExtensionItem.h"
#include "platform/foundation/FileManager.h"
#include "platform/foundation/PosixStreams.h"

#include <cerrno>
#include <optional>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace sela {

namespace {

/// A picture in memory is encoded and written whole, so one that is far beyond any screen is scaled down to
/// this.
constexpr int largestPictureSide = 16'384;

/// Everything on standard input, in a file without a name.
Result<FileDescriptor> memoryFileOfStandardInput() {
    FileDescriptor file(::memfd_create("standard input", MFD_CLOEXEC));
    if (!file.isOpen())
        return NSError::posix(errno, "memfd_create");
    PosixInputStream input(FileDescriptor(::dup(STDIN_FILENO)), 0);
    std::vector<std::byte> block(1 << 20);
    while (true) {
        const std::int64_t count = input.read(block);
        if (count < 0)
            return input.streamError();
        if (count == 0)
            return file;
        if (ErrorRef error = writeFully(file.get(), DataView(block).first(static_cast<std::size_t>(count))))
            return error;
    }
}

/// Either a provider or what is wrong.
using Attachment = std::variant<std::shared_ptr<NSItemProvider>, std::string>;

Attachment pictureOfStandardInput() {
    const Result<FileDescriptor> file = memoryFileOfStandardInput();
    if (!file)
        return "standard input: " + file.error()->localizedDescription();
    const std::string path = "/proc/self/fd/" + std::to_string(file.value().get());
    const std::optional<UIImage> picture = UIImage::contentsOfFile(path, largestPictureSide);
    if (!picture)
        return "standard input holds no picture that can be read";
    return NSItemProvider::ofImage(*picture);
}

Attachment fileOf(const std::string& argument) {
    const bool isURL = argument.find("://") != std::string::npos && !argument.starts_with('/');
    const std::optional<URL> file = isURL ? URL::parse(argument) : URL::fileURL(argument);
    if (!file || argument.empty())
        return "\"" + argument + "\" is no file URL";
    FileManager& files = FileManager::defaultManager();
    const Result<FileAttributes> attributes = files.attributesOfItem(file->path());
    if (!attributes)
        return argument + ": " + attributes.error()->localizedDescription();
    if (attributes.value().type == FileAttributes::Type::directory)
        return argument + " is a folder; only files can be added";
    if (attributes.value().type != FileAttributes::Type::regular)
        return argument + " is no ordinary file";
    if (const ErrorRef error = files.inputStream(*file).error())
        return argument + ": " + error->localizedDescription();
    return NSItemProvider::ofFile(*file);
}

} // namespace

std::variant<std::shared_ptr<NSExtensionContext>, std::vector<std::string>>
makeShareRequest(const std::vector<std::string>& arguments) {
    auto item = std::make_shared<NSExtensionItem>();
    item->attachments.emplace();
    std::vector<std::string> problems;
    for (const std::string& argument : arguments) {
        Attachment attachment = argument == "-" ? pictureOfStandardInput() : fileOf(argument);
        if (auto* const problem = std::get_if<std::string>(&attachment))
            problems.push_back(std::move(*problem));
        else
            item->attachments->push_back(std::get<0>(std::move(attachment)));
    }
    if (!problems.empty())
        return problems;
    return std::make_shared<NSExtensionContext>(std::vector<std::shared_ptr<NSObject>>{item});
}

} // namespace sela
