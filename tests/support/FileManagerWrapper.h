#pragma once

#include "platform/foundation/FileManager.h"

namespace sela {

/// Forwards everything to the real file manager and stands in for it while it lives, so that a test makes a
/// fault by overriding one operation.
class FileManagerWrapper : public FileManager {
public:
    FileManagerWrapper() : target_(FileManager::defaultManager()) { setDefaultManager(this); }
    ~FileManagerWrapper() override { setDefaultManager(nullptr); }

    std::optional<URL> containerURL(std::string_view groupId) const override {
        return target_.containerURL(groupId);
    }
    std::optional<URL> provisioningURL(std::string_view groupId) const override {
        return target_.provisioningURL(groupId);
    }
    bool fileExists(const std::string& path) const override { return target_.fileExists(path); }
    Result<FileAttributes> attributesOfItem(const std::string& path) const override {
        return target_.attributesOfItem(path);
    }
    Result<FileAttributes> attributesOfEntry(const std::string& path) const override {
        return target_.attributesOfEntry(path);
    }
    ErrorRef createDirectory(const std::string& path) override { return target_.createDirectory(path); }
    Result<std::vector<std::string>> contentsOfDirectory(const std::string& path) const override {
        return target_.contentsOfDirectory(path);
    }
    ErrorRef removeItem(const std::string& path) override { return target_.removeItem(path); }
    ErrorRef linkItem(const std::string& from, const std::string& to) override {
        return target_.linkItem(from, to);
    }
    ErrorRef moveItem(const std::string& from, const std::string& to) override {
        return target_.moveItem(from, to);
    }
    ErrorRef synchronizeDirectory(const std::string& path) override {
        return target_.synchronizeDirectory(path);
    }
    Result<std::unique_ptr<InputStream>> inputStream(const URL& source) override {
        return target_.inputStream(source);
    }
    Result<std::unique_ptr<OutputStream>> outputStream(const URL& destination,
                                                       std::int64_t expectedSize) override {
        return target_.outputStream(destination, expectedSize);
    }
    ErrorRef writeAtomically(DataView bytes, const URL& destination) override {
        return target_.writeAtomically(bytes, destination);
    }
    Result<Data> contentsOfFile(const std::string& path, std::int64_t maximumSize) override {
        return target_.contentsOfFile(path, maximumSize);
    }

private:
    FileManager& target_;
};

} // namespace sela
