// A file system held in memory, for benches and fuzzers that must not pay
// for the disk, and for tests of a folder that cannot be written.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "common/text.h"
#include "platform/platform.h"

namespace kelpa::test {

class MemoryFileSystem : public FileSystem {
public:
    bool exists(const std::string& path) const override {
        return files.count(path) != 0 || folders.count(path) != 0;
    }
    bool remove(const std::string& path) override { return files.erase(path) != 0; }
    bool createDirectories(const std::string& path) override {
        if (readOnly) return false;
        folders.insert(path);
        return true;
    }
    std::unique_ptr<AppendFile> openAppend(const std::string& path) override {
        if (readOnly) return nullptr;
        const auto slash = path.rfind('/');
        if (slash != std::string::npos && folders.count(path.substr(0, slash)) == 0) return nullptr;
        files[path];
        return std::make_unique<File>(*this, path);
    }
    bool readAll(const std::string& path, std::string& out) const override {
        auto it = files.find(path);
        if (it == files.end()) return false;
        out = it->second;
        return true;
    }
    bool writeAll(const std::string& path, const std::string& bytes) override {
        if (readOnly) return false;
        files[path] = bytes;
        return true;
    }
    std::vector<std::string> list(const std::string& folder,
                                  const std::string& suffix) const override {
        std::vector<std::string> names;
        const std::string head = folder + "/";
        for (const auto& [p, _] : files) {
            if (p.compare(0, head.size(), head) != 0) continue;
            const std::string name = p.substr(head.size());
            if (name.find('/') == std::string::npos && endsWithIgnoringCase(name, suffix)) names.push_back(name);
        }
        return names;
    }
    std::string absolute(const std::string& path) const override { return "mem:/" + path; }

    std::map<std::string, std::string> files;
    std::set<std::string> folders;
    // Nothing can be made or written (a read-only mount).
    bool readOnly = false;
    // Appends are counted but not kept (a sink for long benches).
    bool keepAppends = true;

private:
    class File : public AppendFile {
    public:
        File(MemoryFileSystem& fs, std::string path) : fs_(fs), path_(std::move(path)) {}
        bool write(std::string_view text, std::string_view more) override {
            if (fs_.keepAppends) fs_.files[path_].append(text).append(more);
            return true;
        }

    private:
        MemoryFileSystem& fs_;
        std::string path_;
    };
};

}  // namespace kelpa::test
