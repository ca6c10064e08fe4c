#include "platform/std_file_system.h"

#include "common/codepage.h"
#include "common/text.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

namespace kelpa {

namespace {

class StdAppendFile : public AppendFile {
public:
    explicit StdAppendFile(int fd) : fd_(fd) {}
    ~StdAppendFile() override { ::close(fd_); }
    // Both texts in one system call, with no copy.
    bool write(std::string_view text, std::string_view more) override {
        iovec parts[2] = {{const_cast<char*>(text.data()), text.size()}, {const_cast<char*>(more.data()), more.size()}};
        const auto want = static_cast<ssize_t>(text.size() + more.size());
        ssize_t n;
        do n = ::writev(fd_, parts, 2);
        while (n < 0 && errno == EINTR);
        if (n == want) return true;
        if (n <= 0) return false;
        // Part of the record went: a signal may have cut the call short, so
        // the rest is tried once.
        std::string rest = std::string(text).append(more).substr(static_cast<std::size_t>(n));
        ssize_t m;
        do m = ::write(fd_, rest.data(), rest.size());
        while (m < 0 && errno == EINTR);
        if (m == static_cast<ssize_t>(rest.size())) return true;
        // A full device: take back what went, so that the log holds whole
        // records and the next one, once there is room again, does not go
        // on from the middle of a line.
        const ssize_t went = n + (m > 0 ? m : 0);
        struct stat st {};
        if (::fstat(fd_, &st) == 0 && S_ISREG(st.st_mode) && st.st_size >= went) {
            [[maybe_unused]] const int cut = ::ftruncate(fd_, st.st_size - went);
        }
        return false;
    }
    bool unlinked() const override {
        struct stat st {};
        return ::fstat(fd_, &st) == 0 && st.st_nlink == 0;
    }

private:
    int fd_;
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

namespace {

bool present(const std::filesystem::path& p) {
    std::error_code ec;
    return std::filesystem::symlink_status(p, ec).type() != std::filesystem::file_type::not_found;
}

// A name from the disk as the program's bytes; one that is not UTF-8, or
// holds a letter the code page lacks, as it stands.
std::string programName(const std::string& disk) {
    std::string bytes;
    return utf8ToCp1252(disk, bytes) ? bytes : disk;
}

}  // namespace

std::filesystem::path StdFileSystem::full(const std::string& path, bool creating) const {
    if (std::all_of(path.begin(), path.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
        return root_ / std::filesystem::path(path);
    const std::filesystem::path utf8 = root_ / std::filesystem::path(cp1252ToUtf8(path));
    const std::filesystem::path raw = root_ / std::filesystem::path(path);
    if (present(utf8)) return utf8;
    if (present(raw)) return raw;
    // A new file goes where its folder is.
    return creating && !present(utf8.parent_path()) && present(raw.parent_path()) ? raw : utf8;
}

bool StdFileSystem::exists(const std::string& path) const {
    // Anything standing there counts, also a link to nowhere or a file we
    // may not look at: a file taken for missing would be made anew over it.
    std::error_code ec;
    const auto s = std::filesystem::symlink_status(full(path), ec);
    if (s.type() == std::filesystem::file_type::not_found) return false;
    if (ec) return ec != std::errc::no_such_file_or_directory && ec != std::errc::not_a_directory;
    return true;
}

bool StdFileSystem::remove(const std::string& path) {
    std::error_code ec;
    const std::filesystem::path p = full(path);
    // Only files: a folder of the name (an override folder, say) stays.
    if (std::filesystem::symlink_status(p, ec).type() == std::filesystem::file_type::directory) {
        lastError_ = "it is a folder";
        return false;
    }
    if (std::filesystem::remove(p, ec)) return true;
    lastError_ = ec ? ec.message() : "there is no such file";
    return false;
}

bool StdFileSystem::createDirectories(const std::string& path) {
    std::error_code ec;
    const std::filesystem::path p = full(path, true);
    std::filesystem::create_directories(p, ec);
    std::error_code isDir;
    if (std::filesystem::is_directory(p, isDir)) return true;
    // A file where the folder goes is the likely case, and plainer told.
    lastError_ = std::filesystem::exists(p, isDir) ? "a file of that name is there" : ec.message();
    return false;
}

std::unique_ptr<AppendFile> StdFileSystem::openAppend(const std::string& path) {
    std::filesystem::path p = full(path, true);
    std::error_code ec;
    // A folder of that name cannot be a log.
    if (std::filesystem::is_directory(p, ec)) return nullptr;
    // Opened without waiting: a named pipe with no reader is refused at
    // once instead of holding the program.
    const int fd = ::open(p.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0666);
    if (fd < 0) return nullptr;
    ::fcntl(fd, F_SETFL, O_APPEND);
    return std::make_unique<StdAppendFile>(fd);
}

bool StdFileSystem::readAll(const std::string& path, std::string& out) const {
    // Only a regular file, and opened without waiting: a named pipe or a
    // device in place of a file would hold the program forever.
    const int fd = ::open(full(path).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        lastError_ = std::strerror(errno);
        return false;
    }
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        lastError_ = "not a regular file";
        ::close(fd);
        return false;
    }
    // Read straight into the string: macros are read deep inside nested
    // trigger chains, where a large buffer on the stack would cost depth.
    // One byte more than the size tells a file that grew meanwhile.
    std::size_t have = 0;
    out.assign(static_cast<std::size_t>(st.st_size) + 1, '\0');
    for (;;) {
        if (have == out.size()) out.resize(out.size() * 2);
        const ssize_t n = ::read(fd, out.data() + have, out.size() - have);
        if (n == 0) break;
        if (n < 0) {
            if (errno == EINTR) continue;
            lastError_ = std::strerror(errno);
            ::close(fd);
            out.clear();
            return false;
        }
        have += static_cast<std::size_t>(n);
    }
    ::close(fd);
    out.resize(have);
    return true;
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
    std::filesystem::path target = full(path, true);
    std::error_code ec;
    // A link stays a link: the file it names is the one written.
    for (int hops = 0; hops < 16 && std::filesystem::is_symlink(target, ec); ++hops) {
        const std::filesystem::path to = std::filesystem::read_symlink(target, ec);
        if (ec) break;
        target = to.is_absolute() ? to : target.parent_path() / to;
    }
    // A short name of its own beside the file: the file's name with an
    // ending added could pass the longest name the folder takes.
    std::string pattern = (target.parent_path() / ".kelpa-XXXXXX").string();
    const int fd = ::mkostemp(pattern.data(), O_CLOEXEC);
    if (fd < 0) {
        lastError_ = std::strerror(errno);
        return false;
    }
    const std::filesystem::path tmp = pattern;
    // The new file keeps the old one's permissions (a site book that only
    // its owner may read holds passwords); a first one gets what the
    // player's umask gives a new file.
    struct stat old {};
    mode_t mode = 0;
    if (::stat(target.c_str(), &old) == 0) {
        mode = old.st_mode & 07777;
    } else {
        const mode_t mask = ::umask(0);
        ::umask(mask);
        mode = 0666 & ~mask;
    }
    ::fchmod(fd, mode);
    std::FILE* f = ::fdopen(fd, "wb");
    if (!f) {
        lastError_ = std::strerror(errno);
        ::close(fd);
        std::filesystem::remove(tmp, ec);
        return false;
    }
    bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
    ok = (std::fflush(f) == 0) && ok;
    ok = ok && ::fsync(::fileno(f)) == 0;
    if (!ok) lastError_ = std::strerror(errno);
    if (std::fclose(f) != 0 && ok) {
        lastError_ = std::strerror(errno);
        ok = false;
    }
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
        std::string name = programName(entry.path().filename().string());
        if (endsWithIgnoringCase(name, suffix)) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> StdFileSystem::entries(const std::string& folder) const {
    std::vector<std::string> names;
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(full(folder), ec))
        names.push_back(programName(entry.path().filename().string()));
    return names;
}

std::string StdFileSystem::absolute(const std::string& path) const { return programName(full(path).string()); }

}  // namespace kelpa
