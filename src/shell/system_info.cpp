#include "shell/system_info.h"

namespace kelpa {

const std::vector<std::string>& systemInfoPrograms() {
    static const std::vector<std::string> names = {"kinfocenter", "gnome-system-monitor", "hardinfo2", "hardinfo"};
    return names;
}

std::string findSystemInfoProgram(const std::string& path,
                                  const std::function<bool(const std::string&)>& isExecutable) {
    for (const std::string& name : systemInfoPrograms()) {
        std::size_t start = 0;
        while (start <= path.size()) {
            std::size_t end = path.find(':', start);
            if (end == std::string::npos) end = path.size();
            std::string folder = path.substr(start, end - start);
            // An empty entry means the current folder: never look there.
            if (!folder.empty() && folder.front() == '/') {
                if (folder.back() != '/') folder += '/';
                if (isExecutable(folder + name)) return folder + name;
            }
            start = end + 1;
        }
    }
    return {};
}

std::string StartSysInfo(const std::string& path, const std::function<bool(const std::string&)>& isExecutable,
                         const std::function<bool(const std::string&)>& startDetached) {
    const std::string program = findSystemInfoProgram(path, isExecutable);
    if (program.empty() || !startDetached(program)) return kSysInfoUnavailable;
    return {};
}

}  // namespace kelpa
