#include "host/ShareRequest.h"

#include "platform/extension/TypeIdentifier.h"
#include "platform/foundation/FileManager.h"
#include "store/FileKind.h"
#include "store/ShareExtensionError.h"

#include <cerrno>
#include <optional>
#include <sys/mman.h>
#include <unistd.h>

namespace sela {

namespace {

/// The most bytes read from standard input: a picture of half a gigapixel fits.
constexpr std::int64_t largestInput = 512 << 20;

/// The argument that names standard input.
constexpr const char* standardInput = "-";

constexpr const char* noPicture =
    "there is no picture that can be read; to add another kind of file, name it";
constexpr const char* noUsablePicture =
    "the picture is damaged or too large to be read; save it as a file and add that";

/// A file in memory without a name; not open when it cannot be made.
FileDescriptor memoryFile() {
    return FileDescriptor(::memfd_create("picture", MFD_CLOEXEC));
}

/// Why data that starts with these bytes is no picture; null when it may be one.
ErrorRef problemWithStart(DataView start) {
    const std::string type = mediaTypeOfContent(start);
    if (type.starts_with("image/"))
        return nullptr;
    if (type.starts_with("video/") || type.starts_with("audio/"))
        return ShareExtensionError::make("it is no picture but " + type + "; save it as a file and add that");
    return ShareExtensionError::make(noPicture);
}

/// Everything on standard input, if its start looks like a picture.
Result<FileDescriptor> memoryFileOfStandardInput() {
    FileDescriptor file = memoryFile();
    if (!file.isOpen())
        return NSError::posix(errno, "memfd_create");
    InputStream input(FileDescriptor(::dup(STDIN_FILENO)), "standard input");
    std::vector<std::byte> block(1 << 20);
    for (std::int64_t total = 0;;) {
        const std::int64_t count = input.read(block);
        if (count < 0)
            return input.streamError();
        if (count == 0 && total == 0)
            return ShareExtensionError::make("it is empty");
        if (count == 0)
            return file;
        const DataView bytes = DataView(block).first(static_cast<std::size_t>(count));
        if (total == 0)
            if (ErrorRef problem = problemWithStart(bytes))
                return problem;
        if (total + count > largestInput)
            return ShareExtensionError::make(
                "there are more than 512 MiB, too much for a picture; save it as a file and add that");
        if (ErrorRef error = writeFully(file.get(), bytes, total, "standard input"))
            return error;
        total += count;
    }
}

/// The file that an argument names; absent when it is empty or a URL of something else.
std::optional<URL> fileURLOf(const std::string& argument) {
    if (argument.empty())
        return std::nullopt;
    const bool isURL = argument.find("://") != std::string::npos && !argument.starts_with('/');
    return isURL ? URL::parse(argument) : URL::fileURL(argument);
}

/// Whether the store accepts a file of that name, after which it puts the time.
bool isKept(const std::string& name) {
    return fileKind("0" + name) != FileKind::other;
}

/// The size of a file that can be added.
Result<std::int64_t> sizeOfUsableFile(const URL& file) {
    FileManager& files = FileManager::defaultManager();
    const Result<FileAttributes> attributes = files.attributesOfItem(file.path());
    if (!attributes)
        return attributes.error();
    if (attributes.value().type == FileAttributes::Type::directory)
        return ShareExtensionError::make("it is a folder; name the files in it");
    if (attributes.value().type != FileAttributes::Type::regular)
        return ShareExtensionError::make(
            "it is no ordinary file; only files with a content of their own can be added");
    if (const ErrorRef error = files.inputStream(file).error())
        return error;
    if (!isKept(file.lastPathComponent()))
        return ShareExtensionError::make(
            "only pictures, videos and audio files can be added, told by their names, such as a.jpg");
    return attributes.value().size;
}

/// The picture that `file` holds. It is not shown, so few of its pixels are enough.
Result<std::shared_ptr<NSItemProvider>> pictureIn(FileDescriptor file) {
    constexpr PictureBounds leastPixels = 64;
    const std::optional<UIImage> picture = UIImage::contentsOfOpenFile(std::move(file), leastPixels);
    if (!picture)
        return ShareExtensionError::make(noUsablePicture);
    return NSItemProvider::ofImage(*picture);
}

} // namespace

std::string LeftOut::description() const {
    return (name == standardInput ? "standard input" : name) + ": " + reason->localizedFailureReason();
}

std::string LeftOut::shortName() const {
    if (name == standardInput)
        return "standard input";
    const std::optional<URL> file = fileURLOf(name);
    return file ? file->lastPathComponent() : name;
}

void Attachments::addFile(const std::string& argument) {
    const std::optional<URL> file = fileURLOf(argument);
    if (!file) {
        problems.push_back(
            {argument.empty() ? "\"\"" : argument,
             ShareExtensionError::make("it is no file of this computer; save it as a file and add that")});
        return;
    }
    const Result<std::int64_t> size = sizeOfUsableFile(*file);
    if (!size) {
        problems.push_back({argument, size.error()});
        return;
    }
    addProvider(NSItemProvider::ofFile(*file), argument);
    totalSize += size.value();
}

void Attachments::addPicture(DataView bytes, const std::string& origin) {
    FileDescriptor file = memoryFile();
    const ErrorRef error =
        file.isOpen() ? writeFully(file.get(), bytes, 0, origin) : NSError::posix(errno, "memfd_create");
    const auto picture = error ? Result<std::shared_ptr<NSItemProvider>>(error) : pictureIn(std::move(file));
    if (picture)
        addProvider(picture.value(), {});
    else
        problems.push_back({origin, picture.error()});
}

void Attachments::addStandardInput() {
    Result<FileDescriptor> file = memoryFileOfStandardInput();
    const auto picture =
        file ? pictureIn(std::move(file.value())) : Result<std::shared_ptr<NSItemProvider>>(file.error());
    if (picture)
        addProvider(picture.value(), standardInput);
    else
        problems.push_back({standardInput, picture.error()});
}

void Attachments::addProvider(std::shared_ptr<NSItemProvider> provider, const std::string& name) {
    providers.push_back(std::move(provider));
    names.push_back(name);
}

void Attachments::append(const Attachments& more) {
    providers.insert(providers.end(), more.providers.begin(), more.providers.end());
    names.insert(names.end(), more.names.begin(), more.names.end());
    totalSize += more.totalSize;
    problems.insert(problems.end(), more.problems.begin(), more.problems.end());
}

Attachments attachmentsOf(const std::vector<std::string>& arguments) {
    Attachments attachments;
    for (const std::string& argument : arguments) {
        if (argument == standardInput)
            attachments.addStandardInput();
        else
            attachments.addFile(argument);
    }
    return attachments;
}

std::shared_ptr<NSExtensionContext> makeShareRequest(const Attachments& attachments) {
    return std::make_shared<NSExtensionContext>(
        std::vector<std::shared_ptr<NSObject>>{std::make_shared<NSExtensionItem>(attachments.providers)});
}

} // namespace sela
