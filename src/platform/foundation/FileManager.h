#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/Error.h"
#include "platform/foundation/InputStream.h"
#include "platform/foundation/OutputStream.h"
#include "platform/foundation/URL.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sela {

/// What the file system tells of a file.
struct FileAttributes {
    enum class Type { regular, directory, symbolicLink, other };

    Type type = Type::other;
    std::int64_t size = 0;       ///< bytes
    double modificationDate = 0; ///< seconds since 1970
    std::uint64_t device = 0;    ///< with `inode`, tells whether two names are one file
    std::uint64_t inode = 0;

    bool isSameFile(const FileAttributes& other) const {
        return device == other.device && inode == other.inode;
    }
};

/// The file system, as the programs of the group use it: every file that they make or read goes through it.
///
/// Operations may be called from any thread. Files made have mode 0600 and folders 0700, whatever the umask
/// allows beyond that. A test wraps the default manager (see `FileManagerWrapper` in the tests) to make
/// single operations fail.
class FileManager {
public:
    virtual ~FileManager() = default;

    /// The manager in use.
    static FileManager& defaultManager();

    /// Puts another manager in use (null: the real one again). For tests; the caller keeps it alive.
    static void setDefaultManager(FileManager* manager);

    /// The folder of an application group, `<data>/sela/groups/<groupId>`, where `<data>` is $XDG_DATA_HOME
    /// or
    /// ~/.local/share; absent while the main application has not provisioned the group (there is no such
    /// folder), or when the identifier is no single path component.
    virtual std::optional<URL> containerURL(std::string_view groupId) const = 0;

    /// Where the folder of an application group is to be made; absent when there is no home or the identifier
    /// is no single path component.
    virtual std::optional<URL> provisioningURL(std::string_view groupId) const = 0;

    /// Whether something exists at the path; a link that leads nowhere does not.
    virtual bool fileExists(const std::string& path) const = 0;

    /// The attributes of what a path leads to, symbolic links followed.
    virtual Result<FileAttributes> attributesOfItem(const std::string& path) const = 0;

    /// The attributes of what stands at a path, which may be a symbolic link itself.
    virtual Result<FileAttributes> attributesOfEntry(const std::string& path) const = 0;

    /// Makes the folder and those above it that are missing, and brings them to the disk, which is done for a
    /// folder that is there already as well.
    virtual ErrorRef createDirectory(const std::string& path) = 0;

    /// The names in a folder, "." and ".." left out, sorted by their bytes.
    virtual Result<std::vector<std::string>> contentsOfDirectory(const std::string& path) const = 0;

    /// Removes a file (a link itself, not what it leads to).
    virtual ErrorRef removeItem(const std::string& path) = 0;

    /// Gives a file a second name, which must not exist yet (EEXIST otherwise), and brings that to the disk.
    virtual ErrorRef linkItem(const std::string& from, const std::string& to) = 0;

    /// Gives a file another name, which must not exist yet (EEXIST otherwise), and brings that to the disk.
    /// Both names lie in one file system (EXDEV otherwise).
    virtual ErrorRef moveItem(const std::string& from, const std::string& to) = 0;

    /// Brings the entries of a folder to the disk.
    virtual ErrorRef synchronizeDirectory(const std::string& path) = 0;

    /// Opens a regular file for reading; the error when it is missing, unreadable, or of another kind.
    virtual Result<std::unique_ptr<InputStream>> inputStream(const URL& source) = 0;

    /// Opens a file for writing from its start, making it if it is missing, and reserves `expectedSize` bytes
    /// of the disk where the file system can. A symbolic link at that place is not followed but is an error;
    /// so is a disk without room, in which case the file that was made is removed again.
    virtual Result<std::unique_ptr<OutputStream>> outputStream(const URL& destination,
                                                               std::int64_t expectedSize) = 0;

    /// Writes a whole file in one step: into a temporary file of the same folder, which is brought to the
    /// disk and then takes the file's name. On an error nothing temporary is left and the destination is as
    /// it was, except that it may be the new one, not yet safe, when only the folder could not be flushed.
    virtual ErrorRef writeAtomically(DataView bytes, const URL& destination) = 0;

    /// All bytes of a regular file; an error when it is larger than `maximumSize`.
    virtual Result<Data> contentsOfFile(const std::string& path, std::int64_t maximumSize) = 0;
};

/// Whether a text can name a file inside a folder: not empty, not "." or "..", without "/" and zero bytes.
bool isSinglePathComponent(std::string_view name);

} // namespace sela
