// Status frames on the receive road: the exact bytes left for the window,
// the history and the triggers, frames cut across reads, the telnet 24s that
// are not frames, and the items applied to the panel.
#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "support/client_harness.h"

using namespace kelpa;
using kelpa::test::bytes;
using kelpa::test::ClientHarness;

namespace {

const std::string F24 = bytes({24}), I25 = bytes({25}), F26 = bytes({26});

std::string frame(std::initializer_list<std::string> items) {
    std::string f = F24;
    for (const auto& i : items) f += i + I25;
    return f + F26;
}

}  // namespace

TEST(StatusFrames, FrameCutAtEveryPositionGivesTheSameResult) {
    // A lone 255 (no telnet command) right before the first frame.
    const std::string stream = "Hp" + bytes({255}) + frame({"1,7,300", "1,8,150", "2,0,You fight."}) + ":ok\r\n" +
                               bytes({255, 253, 24}) + frame({"1,53,9"}) + "end";
    for (std::size_t cut = 0; cut <= stream.size(); ++cut) {
        for (std::size_t cut2 = cut; cut2 <= stream.size(); cut2 += 7) {
            SCOPED_TRACE(testing::Message() << "cuts at " << cut << " and " << cut2);
            ClientHarness h;
            h.receive(stream.substr(0, cut));
            h.receive(stream.substr(cut, cut2 - cut));
            h.receive(stream.substr(cut2));
            EXPECT_EQ(h.window(kMainWindow), "Hp:ok\r\n" + std::string("\0ANSI\0", 6) + "end");
            // The answer goes in behind the read that asked for it.
            std::string heard = h.history();
            heard.erase(heard.find(std::string("\xFF\xFA\x18\0ANSI\0\xFF\xF0", 11)), 11);
            EXPECT_EQ(heard, "Hp" + bytes({255}) + ":ok\r\n" + bytes({255, 253, 24}) + "end");
            const StatusModel& st = h.c.parts().status;
            EXPECT_EQ(std::to_string(st.ShapeParam(0).width) + " " + st.Info2(0) + " " + st.XInfo(4),
                      "300 You fight. Fighting");
            EXPECT_EQ(h.fp.socket.writes.size(), 1u) << "the terminal type is answered once";
        }
    }
}

TEST(StatusFrames, TelnetOptionTwentyFourIsNotAFrameStartAndItemsTellTheDebugWindow) {
    // What is read, then the text shown, the number of answers sent and what
    // the debug window is told of frames.
    using Row = std::tuple<const char*, std::string, std::string, std::size_t, std::string>;
    const std::vector<Row> rows = {
        {"tinymux burst", bytes({255, 251, 25, 255, 253, 24, 255, 253, 31}) + "Welcome",
         std::string("\0ANSI\0", 6) + "Welcome", 1, ""},
        {"WILL, WONT and DONT 24", bytes({255, 251, 24, 255, 252, 24, 255, 254, 24}) + "x", "x", 0, ""},
        {"24 in a subnegotiation", bytes({255, 250, 24, 1, 255, 240}) + "x", bytes({1}) + "x", 0, ""},
        {"24 in a subnegotiation's payload, then a frame",
         bytes({255, 250, 31, 0, 80, 0, 24, 255, 240}) + frame({"1,8,1"}) + "x", bytes({0, 80, 0, 24}) + "x", 0,
         "Interpreting 1,8,1\r\nIAC  SB  window size  \r\nIAC  EON \r\n"},  // frames go before the text is printed
        {"IAC IAC then a frame", bytes({255, 255}) + frame({"1,8,1"}) + "x", bytes({255}) + "x", 0,
         "Interpreting 1,8,1\r\nIAC unknown iac command 255\r\n"},
        {"empty item", frame({""}), "", 0, "Interpreting \r\nWhich i know nothing ...\r\n"},
        {"kind 3", frame({"3,1,x"}), "", 0, "Interpreting 3,1,x\r\nWhich i know nothing ...\r\n"},
        {"cell item", frame({"1,57,x"}), "", 0, "Interpreting 1,57,x\r\n"},
        {"text item", frame({"2,4,text"}), "", 0, "Interpreting 2,4,text\r\n"},
    };
    for (const auto& [name, read, shown, answers, debug] : rows) {
        SCOPED_TRACE(name);
        ClientHarness h;
        h.receive(read);
        EXPECT_EQ(h.window(kMainWindow), shown);
        EXPECT_EQ(h.fp.socket.writes.size(), answers);
        const std::string told = h.debugText();
        EXPECT_EQ(told.substr(std::min(told.find("Interpreting"), told.size())), debug);
    }
    // A subnegotiation that never ends is taken to be over past its bound.
    ClientHarness h;
    h.receive(bytes({255, 250, 24}) + std::string(StatusFrames::kMaxSubnegotiation, 'x') + frame({"1,8,7"}));
    EXPECT_EQ(h.c.parts().status.Info1(8), "7");
}

TEST(StatusFrames, AFrameWithoutEndSwallowsTheStreamWithinItsBound) {
    ClientHarness h(/*connected=*/true, /*debugOn=*/false);
    h.receive("before" + F24 + "1,8,42" + I25);
    const std::string block(64 * 1024, 'x');
    for (int i = 0; i < 48; ++i) h.receive(block);  // 3 MB
    EXPECT_EQ(h.c.parts().frames.PendingFrame().size(), StatusFrames::kMaxPendingFrame);
    h.receive(I25 + F26 + "after");
    EXPECT_EQ(h.window(kMainWindow), "beforeafter");
    EXPECT_EQ(h.c.parts().status.Info1(8), "42") << "the items kept are applied";
    EXPECT_NE(h.debugText().find("Frame too long, "), std::string::npos);
    EXPECT_TRUE(h.c.parts().frames.PendingFrame().empty());
}
