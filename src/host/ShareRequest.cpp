#include "host/ShareRequest.h"

#include "platform/extension/NSExtensionItem.h"
#include "platform/foundation/FileManager.h"

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

/// Decodes what `file` holds.
Attachment pictureIn(const FileDescriptor& file, const std::string& origin) {
    const std::string path = "/proc/self/fd/" + std::to_string(file.get());
    const std::optional<UIImage> picture = UIImage::contentsOfFile(path, largestPictureSide);
    if (!picture)
        return origin + " holds no picture that can be read; to add another kind of file, name it";
    return NSItemProvider::ofImage(*picture);
}

/// A file without a name; not open when there can be none.
FileDescriptor memoryFile() {
    return FileDescriptor(::memfd_create("picture", MFD_CLOEXEC));
}

/// Everything on standard input.
Result<FileDescriptor> memoryFileOfStandardInput() {
    FileDescriptor file = memoryFile();
    if (!file.isOpen())
        return NSError::posix(errno, "memfd_create");
    InputStream input(FileDescriptor(::dup(STDIN_FILENO)), "standard input");
    std::vector<std::byte> block(1 << 20);
    for (std::int64_t offset = 0;;) {
        const std::int64_t count = input.read(block);
        if (count < 0)
            return input.streamError();
        if (count == 0)
            return file;
        const DataView bytes = DataView(block).first(static_cast<std::size_t>(count));
        if (ErrorRef error = writeFully(file.get(), bytes, offset, "standard input"))
            return error;
        offset += count;
    }
}

Attachment pictureOfStandardInput() {
    const Result<FileDescriptor> file = memoryFileOfStandardInput();
    if (!file)
        return "standard input: " + file.error()->localizedDescription();
    return pictureIn(file.value(), "standard input");
}

/// The file that an argument names; absent when it is empty or a URL of something else.
std::optional<URL> fileURLOf(const std::string& argument) {
    if (argument.empty())
        return std::nullopt;
    const bool isURL = argument.find("://") != std::string::npos && !argument.starts_with('/');
    return isURL ? URL::parse(argument) : URL::fileURL(argument);
}

} // namespace

Attachment attachmentOfPicture(DataView bytes, const std::string& origin) {
    const FileDescriptor file = memoryFile();
    const ErrorRef error =
        file.isOpen() ? writeFully(file.get(), bytes, 0, origin) : NSError::posix(errno, "memfd_create");
    return error ? Attachment(origin + ": " + error->localizedDescription()) : pictureIn(file, origin);
}

Attachment attachmentOfFile(const std::string& argument) {
    const std::optional<URL> file = fileURLOf(argument);
    if (!file)
        return "\"" + argument + "\" is no file of this computer; save it as a file and add that";
    FileManager& files = FileManager::defaultManager();
    const Result<FileAttributes> attributes = files.attributesOfItem(file->path());
    if (!attributes)
        return attributes.error()->localizedDescription();
    if (attributes.value().type == FileAttributes::Type::directory)
        return argument + " is a folder; name the files in it";
    if (attributes.value().type != FileAttributes::Type::regular)
        return argument + " is no ordinary file; only files with a content of their own can be added";
    if (const ErrorRef error = files.inputStream(*file).error())
        return error->localizedDescription();
    return NSItemProvider::ofFile(*file);
}

std::variant<std::shared_ptr<NSExtensionContext>, std::vector<std::string>>
makeShareRequest(const std::vector<std::string>& arguments) {
    NSExtensionItem::Attachments attachments;
    std::vector<std::string> problems;
    for (const std::string& argument : arguments) {
        Attachment attachment = argument == "-" ? pictureOfStandardInput() : attachmentOfFile(argument);
        if (auto* const problem = std::get_if<std::string>(&attachment))
            problems.push_back(std::move(*problem));
        else
            attachments.push_back(std::get<0>(std::move(attachment)));
    }
    if (!problems.empty())
        return problems;
    return std::make_shared<NSExtensionContext>(
        std::vector<std::shared_ptr<NSObject>>{std::make_shared<NSExtensionItem>(std::move(attachments))});
}

std::int64_t sizeOfFiles(const std::vector<std::string>& arguments) {
    std::int64_t sum = 0;
    for (const std::string& argument : arguments) {
        const std::optional<URL> file = argument == "-" ? std::nullopt : fileURLOf(argument);
        if (!file)
            continue;
        const Result<FileAttributes> attributes =
            FileManager::defaultManager().attributesOfItem(file->path());
        if (attributes)
            sum += attributes.value().size;
    }
    return sum;
}

} // namespace sela
