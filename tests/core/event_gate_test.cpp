// The gate that keeps one handler at a time: events that come while a
// handler is busy wait and run in order once it is over.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "shell/event_gate.h"
#include "shell/frame_pacer.h"

namespace kelpa::test {
namespace {

TEST(EventGate, EventsDuringAHandlerWaitAndRunInOrderOnceItIsOver) {
    EventGate gate;
    std::vector<std::string> seen;
    int afterHandlers = 0;
    gate.setAfterHandlers([&] {
        seen.push_back("after");
        ++afterHandlers;
    });
    auto event = [&](EventGate::Key key, std::string name) {
        return gate.enter(key, [&seen, name] { seen.push_back(name); });
    };

    EXPECT_TRUE(event(EventGate::kEach, "idle"));
    gate.run([&] {
        seen.push_back("box opens");
        // What a nested event loop delivers while the box is up; a late
        // timer fires once.
        for (const auto& [key, name] : {std::pair(EventGate::kData, "data"), {EventGate::kAsTimer, "tick"},
                                        {EventGate::kAsTimer, "tick again"}, {EventGate::kData, "more data"},
                                        {EventGate::kEach, "close"}, {EventGate::kEach, "error"}})
            EXPECT_FALSE(event(key, name)) << name;
        // A handler inside the handler (a window the box leaves enabled)
        // runs at once and drains nothing.
        gate.run([&] { seen.push_back("inner"); });
        seen.push_back("box closes");
    });
    EXPECT_EQ(seen, (std::vector<std::string>{"idle", "after", "box opens", "inner", "box closes", "data", "tick",
                                              "close", "error", "after"}));
    EXPECT_EQ(gate.waiting(), 0u);
    EXPECT_EQ(afterHandlers, 2);
}

TEST(EventGate, AWaitingEventThatOpensABoxLetsTheNextOnesWaitBehindIt) {
    EventGate gate;
    std::vector<std::string> seen;
    gate.run([&] {
        gate.enter(EventGate::kData, [&] {
            seen.push_back("data opens a box");
            gate.enter(EventGate::kQueueTimer, [&] { seen.push_back("queue tick"); });
            gate.enter(EventGate::kData, [&] { seen.push_back("data again"); });
            seen.push_back("box closes");
        });
        gate.enter(EventGate::kEach, [&] { seen.push_back("close"); });
    });
    EXPECT_EQ(seen, (std::vector<std::string>{"data opens a box", "box closes", "close", "queue tick", "data again"}));
    EXPECT_FALSE(gate.busy());
}

// A change after a quiet frame is shown at once; changes within a frame of
// the last repaint wait for the rest of that frame, never longer.
TEST(FramePacer, RepaintsAtOnceAfterAQuietFrameAndAtMostOncePerFrame) {
    FramePacer pacer(17);
    EXPECT_EQ(pacer.delayMs(5), 0) << "never painted";
    pacer.synced(100);
    const std::pair<long long, long long> rows[] = {{100, 17}, {105, 12}, {116, 1}, {117, 0}, {500, 0}, {90, 17}};
    for (const auto& [now, delay] : rows) EXPECT_EQ(pacer.delayMs(now), delay) << now;
}

}  // namespace
}  // namespace kelpa::test
