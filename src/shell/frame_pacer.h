// When the windows next follow the core. A change is shown at the event
// loop's next turn when a frame has passed since the last repaint, so that a
// line that comes after a quiet spell is painted at once, while the player's
// triggers have answered and before the server's next line is likely; during
// a flood the repaints stay one frame apart.
#pragma once

#include <algorithm>

namespace kelpa {

class FramePacer {
public:
    explicit FramePacer(long long frameMs) : frameMs_(frameMs) {}

    // How long a change made at nowMs waits before the windows follow it.
    long long delayMs(long long nowMs) const {
        return synced_ ? std::clamp(lastMs_ + frameMs_ - nowMs, 0LL, frameMs_) : 0;
    }
    void synced(long long nowMs) {
        lastMs_ = nowMs;
        synced_ = true;
    }

private:
    long long frameMs_;
    long long lastMs_ = 0;
    bool synced_ = false;
};

}  // namespace kelpa
