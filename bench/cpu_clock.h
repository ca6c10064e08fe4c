// The process's CPU time, user and system, in seconds: what the drain
// benches count beside the wall clock.
#pragma once

#include <sys/resource.h>

namespace kelpa::bench {

inline double cpuSeconds() {
    rusage ru{};
    getrusage(RUSAGE_SELF, &ru);
    return static_cast<double>(ru.ru_utime.tv_sec + ru.ru_stime.tv_sec) +
           static_cast<double>(ru.ru_utime.tv_usec + ru.ru_stime.tv_usec) / 1e6;
}

}  // namespace kelpa::bench
