// The desktop's own system information program, started by the About
// dialog's "System Info..." button.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kelpa {

inline constexpr const char* kSysInfoUnavailable = "System Information Is Unavailable At This Time";

// Looked for in this order: KDE's, GNOME's, then the stand-alone ones.
const std::vector<std::string>& systemInfoPrograms();

// The full path of the first of those programs found in a folder of `path`
// (a PATH value), or empty. `isExecutable` tells whether a file may be run.
std::string findSystemInfoProgram(const std::string& path,
                                  const std::function<bool(const std::string&)>& isExecutable);

// StartSysInfo: finds the program and starts it without waiting. Returns the
// message to show when there is none or it fails to start, else empty.
std::string StartSysInfo(const std::string& path, const std::function<bool(const std::string&)>& isExecutable,
                         const std::function<bool(const std::string&)>& startDetached);

}  // namespace kelpa
