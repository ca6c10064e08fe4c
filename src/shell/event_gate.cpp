#include "shell/event_gate.h"

#include <algorithm>

namespace kelpa {

bool EventGate::enter(Key key, Entry entry) {
    if (busy()) {
        const bool alreadyWaits = key != kEach && std::any_of(waiting_.begin(), waiting_.end(),
                                                              [key](const auto& w) { return w.first == key; });
        if (!alreadyWaits) waiting_.emplace_back(key, std::move(entry));
        return false;
    }
    run(entry);
    return true;
}

void EventGate::settle() {
    if (busy()) return;
    {
        draining_ = true;
        struct Drained {
            bool& flag;
            ~Drained() { flag = false; }
        } drained{draining_};
        while (!waiting_.empty()) {
            // Taken off first: the entry may open a box in which more arrive.
            Entry entry = std::move(waiting_.front().second);
            waiting_.pop_front();
            const Depth::Level level = busy_.enter();
            entry();
        }
    }
    if (afterHandlers_) afterHandlers_();
}

}  // namespace kelpa
