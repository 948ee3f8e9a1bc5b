#pragma once

#include "platform/foundation/FileManager.h"

namespace sela {

/// The file manager on the system's real file system. Stateless and thread-safe.
class PosixFileManager : public FileManager {
public:
    std::optional<URL> containerURL(std::string_view groupId) const override;
    std::optional<URL> provisioningURL(std::string_view groupId) const override;
    bool fileExists(const std::string& path) const override;
    Result<FileAttributes> attributesOfItem(const std::string& path) const override;
    Result<FileAttributes> attributesOfEntry(const std::string& path) const override;
    ErrorRef createDirectory(const std::string& path) override;
    Result<std::vector<std::string>> contentsOfDirectory(const std::string& path) const override;
    ErrorRef removeItem(const std::string& path) override;
    ErrorRef linkItem(const std::string& from, const std::string& to) override;
    ErrorRef moveItem(const std::string& from, const std::string& to) override;
    ErrorRef synchronizeDirectory(const std::string& path) override;
    Result<std::unique_ptr<InputStream>> inputStream(const URL& source) override;
    Result<std::unique_ptr<OutputStream>> outputStream(const URL& destination,
                                                       std::int64_t expectedSize) override;
    ErrorRef writeAtomically(DataView bytes, const URL& destination) override;
    Result<Data> contentsOfFile(const std::string& path, std::int64_t maximumSize) override;
};

} // namespace sela
