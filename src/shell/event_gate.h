// One handler at a time. A handler that opens a modal box runs a nested
// event loop; socket events and timer ticks that come meanwhile wait here and
// run, in the order they came, once the handler is over. So no event is ever
// handled inside another, and the budgets of the run that opened the box
// never see them.
#pragma once

#include <deque>
#include <functional>
#include <utility>

#include "common/depth.h"

namespace kelpa {

class EventGate {
public:
    using Entry = std::function<void()>;
    // Events of one key keep at most one waiting entry: a timer that comes
    // due again while its tick waits fires once, and one data event reads
    // whatever has arrived by then. Key 0 events all wait.
    enum Key { kEach = 0, kData, kAsTimer, kQueueTimer, kStatusTimer };

    // Called after every handler that was not inside another, once the
    // waiting entries have run (the shell schedules the socket's leftovers).
    void setAfterHandlers(std::function<void()> f) { afterHandlers_ = std::move(f); }

    // Runs a handler now, inside whatever runs already (a user's action
    // reaches the core only through a window the box leaves enabled).
    template <typename F>
    void run(F&& handler) {
        {
            const Depth::Level level = busy_.enter();
            std::forward<F>(handler)();
        }
        settle();
    }

    // An event from outside: runs now if no handler is busy, else waits.
    // True when it ran.
    bool enter(Key key, Entry entry);

    bool busy() const { return busy_.current() > 0 || draining_; }
    std::size_t waiting() const { return waiting_.size(); }

private:
    void settle();

    Depth busy_;
    bool draining_ = false;
    std::deque<std::pair<Key, Entry>> waiting_;
    std::function<void()> afterHandlers_;
};

}  // namespace kelpa
