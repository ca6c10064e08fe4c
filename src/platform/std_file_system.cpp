#include "platform/std_file_system.h"

#include "common/text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

namespace kelpa {

namespace {

class StdAppendFile : public AppendFile {
public:
    explicit StdAppendFile(std::FILE* f) : f_(f) {
        // Room for a whole received chunk and its line end, so that the
        // flush is one write of both.
        std::setvbuf(f_, buffer_.get(), _IOFBF, kBuffer);
    }
    ~StdAppendFile() override { std::fclose(f_); }
    bool write(std::string_view text, std::string_view more) override {
        if (std::fwrite(text.data(), 1, text.size(), f_) != text.size()) return false;
        if (std::fwrite(more.data(), 1, more.size(), f_) != more.size()) return false;
        return std::fflush(f_) == 0;
    }

private:
    static constexpr std::size_t kBuffer = 80 * 1024;
    std::unique_ptr<char[]> buffer_ = std::make_unique_for_overwrite<char[]>(kBuffer);
    std::FILE* f_;  // closed before the buffer goes
};

class StdReadFile : public ReadFile {
public:
    StdReadFile(std::FILE* f, std::size_t size) : f_(f), size_(size) {}
    ~StdReadFile() override { std::fclose(f_); }
    std::size_t size() const override { return size_; }
    std::size_t read(std::string& out, std::size_t n) override {
        out.resize(n);
        const std::size_t got = std::fread(out.data(), 1, n, f_);
        out.resize(got);
        return got;
    }

private:
    std::FILE* f_;
    std::size_t size_;
};

}  // namespace

StdFileSystem::StdFileSystem(std::filesystem::path root) : root_(std::move(root)) {}

std::filesystem::path StdFileSystem::full(const std::string& path) const {
    return root_ / std::filesystem::path(path);
}

bool StdFileSystem::exists(const std::string& path) const {
    std::error_code ec;
    return std::filesystem::exists(full(path), ec);
}

bool StdFileSystem::remove(const std::string& path) {
    std::error_code ec;
    return std::filesystem::remove(full(path), ec);
}

bool StdFileSystem::createDirectories(const std::string& path) {
    std::error_code ec;
    std::filesystem::create_directories(full(path), ec);
    return std::filesystem::is_directory(full(path), ec);
}

std::unique_ptr<AppendFile> StdFileSystem::openAppend(const std::string& path) {
    std::filesystem::path p = full(path);
    std::error_code ec;
    // A folder of that name cannot be a log.
    if (std::filesystem::is_directory(p, ec)) return nullptr;
    std::FILE* f = std::fopen(p.c_str(), "ab");
    if (!f) return nullptr;
    return std::make_unique<StdAppendFile>(f);
}

bool StdFileSystem::readAll(const std::string& path, std::string& out) const {
    std::FILE* f = std::fopen(full(path).c_str(), "rb");
    if (!f) return false;
    out.clear();
    char buf[65536];
    std::size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) out.append(buf, n);
    bool ok = !std::ferror(f);
    std::fclose(f);
    return ok;
}

std::unique_ptr<ReadFile> StdFileSystem::openRead(const std::string& path) const {
    const std::filesystem::path p = full(path);
    std::error_code ec;
    if (!std::filesystem::is_regular_file(p, ec)) return nullptr;
    std::FILE* f = std::fopen(p.c_str(), "rb");
    if (!f) return nullptr;
    // The size at this moment: a log that grows meanwhile is read only so far.
    const auto size = std::filesystem::file_size(p, ec);
    if (ec) {
        std::fclose(f);
        return nullptr;
    }
    return std::make_unique<StdReadFile>(f, static_cast<std::size_t>(size));
}

bool StdFileSystem::writeAll(const std::string& path, const std::string& bytes) {
    std::filesystem::path target = full(path);
    std::filesystem::path tmp = target;
    tmp += ".tmp";
    std::FILE* f = std::fopen(tmp.c_str(), "wb");
    if (!f) {
        lastError_ = std::strerror(errno);
        return false;
    }
    bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
    ok = (std::fflush(f) == 0) && ok;
    if (!ok) lastError_ = std::strerror(errno);
    if (std::fclose(f) != 0 && ok) {
        lastError_ = std::strerror(errno);
        ok = false;
    }
    std::error_code ec;
    if (ok) {
        std::filesystem::rename(tmp, target, ec);
        if (ec) lastError_ = ec.message();
    }
    if (!ok || ec) {
        std::filesystem::remove(tmp, ec);
        return false;
    }
    return true;
}

std::vector<std::string> StdFileSystem::list(const std::string& folder,
                                             const std::string& suffix) const {
    std::vector<std::string> names;
    std::error_code ec;
    std::filesystem::directory_iterator it(full(folder), ec);
    if (ec) return names;
    for (const auto& entry : it) {
        if (!entry.is_regular_file(ec)) continue;
        std::string name = entry.path().filename().string();
        if (endsWithIgnoringCase(name, suffix)) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string StdFileSystem::absolute(const std::string& path) const { return full(path).string(); }

}  // namespace kelpa
