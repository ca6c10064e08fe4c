#include "support/fakes.h"

#include <atomic>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace kelpa::test {

TempFolder::TempFolder() {
    static std::atomic<int> counter{0};
    path_ = std::filesystem::temp_directory_path() /
            ("kelpa-test-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
}

TempFolder::~TempFolder() {
    std::error_code ec;
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add, ec);
    std::filesystem::remove_all(path_, ec);
}

std::string TempFolder::read(const std::string& relative) const {
    std::ifstream in(path_ / relative, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void TempFolder::write(const std::string& relative, const std::string& bytes) const {
    std::filesystem::create_directories((path_ / relative).parent_path());
    std::ofstream out(path_ / relative, std::ios::binary);
    out << bytes;
}

}  // namespace kelpa::test
