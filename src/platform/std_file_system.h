// FileSystem over the real disk, rooted at a folder.
#pragma once

#include <filesystem>

#include "platform/platform.h"

namespace kelpa {

class StdFileSystem : public FileSystem {
public:
    explicit StdFileSystem(std::filesystem::path root);

    bool exists(const std::string& path) const override;
    bool remove(const std::string& path) override;
    bool createDirectories(const std::string& path) override;
    std::unique_ptr<AppendFile> openAppend(const std::string& path) override;
    bool readAll(const std::string& path, std::string& out) const override;
    std::unique_ptr<ReadFile> openRead(const std::string& path) const override;
    bool writeAll(const std::string& path, const std::string& bytes) override;
    std::vector<std::string> list(const std::string& folder,
                                  const std::string& suffix) const override;
    std::vector<std::string> entries(const std::string& folder) const override;
    std::string absolute(const std::string& path) const override;
    std::string lastError() const override { return lastError_; }

    const std::filesystem::path& root() const { return root_; }

private:
    // The program's names are Windows-1252 bytes; on disk they are UTF-8,
    // as every other program here writes them. A name already on disk in
    // the program's own bytes (copied as they were) is still found, and a
    // file made in a folder so named goes there.
    std::filesystem::path full(const std::string& path, bool creating = false) const;
    std::filesystem::path root_;
    mutable std::string lastError_;
};

}  // namespace kelpa
