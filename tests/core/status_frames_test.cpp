// Status frames on the receive road: the exact bytes left for the window,
// the history and the triggers, frames cut across reads, the telnet 24s that
// are not frames, and the items applied to the panel.
#include <gtest/gtest.h>

#include "support/client_harness.h"

using namespace kelpa;
using kelpa::test::bytes;
using kelpa::test::ClientHarness;

namespace {

const std::string F24 = bytes({24}), I25 = bytes({25}), F26 = bytes({26});
const std::string kLine =
    "The orc swings at you and misses. You parry the blow and strike back; the orc staggers and falls.\r\n";

std::string frame(std::initializer_list<std::string> items) {
    std::string f = F24;
    for (const auto& i : items) f += i + I25;
    return f + F26;
}

}  // namespace

TEST(StatusFrames, TextAroundFramesClosesUp) {
    struct Row {
        const char* name;
        std::vector<std::string> chunks;
        std::string shown;
        std::string hp, mana;  // Info1(8), Info1(12) afterwards
    };
    const std::vector<Row> rows = {
        {"no frame", {"plain"}, "plain", "", ""},
        {"frame mid line", {"ab" + frame({"1,8,100"}) + "cd"}, "abcd", "100", ""},
        {"two frames in order", {frame({"1,8,1"}) + "x" + frame({"1,8,2", "1,12,3"})}, "x", "2", "3"},
        {"frame alone shows nothing", {frame({"1,8,5"})}, "", "5", ""},
        {"cut right behind 24", {"a" + F24, "1,8,7" + I25 + F26 + "b"}, "ab", "7", ""},
        {"cut over three reads", {"a" + F24 + "1,8", ",9" + I25, "1,12,4" + I25 + F26 + "z"}, "az", "9", "4"},
        {"25 and 26 outside a frame stay", {"x" + I25 + F26 + "y"}, "x" + I25 + F26 + "y", "", ""},
        {"24 inside a frame is frame text", {F24 + "1,8," + F24 + "q" + I25 + F26}, "", F24 + "q", ""},
        {"text behind the last 25 is dropped", {F24 + "1,8,3" + I25 + "1,12,9" + F26}, "", "3", ""},
        {"empty frame", {"a" + F24 + F26 + "b"}, "ab", "", ""},
        {"value with commas", {frame({"1,8,1,2,3"})}, "", "1,2,3", ""},
        {"no second comma takes the number", {frame({"1,8"})}, "", "8", ""},
        {"slot out of range", {frame({"1,57,1", "1,-1,2"})}, "", "", ""},
        {"empty value blanks", {frame({"1,8,4"}) + frame({"1,8,"})}, "", "", ""},
        {"lines of every length move down whole",
         {frame({"1,8,1"}) + kLine.substr(0, 15) + frame({"1,8,2"}) + kLine.substr(15, 16) + frame({"1,12,3"}) +
          kLine.substr(31, 17) + frame({}) + kLine.substr(48, 33) + frame({}) + kLine.substr(81)},
         kLine, "2", "3"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ClientHarness h;
        for (const auto& chunk : row.chunks) h.receive(chunk);
        EXPECT_EQ(h.window(kMainWindow), row.shown);
        EXPECT_EQ(h.history(), row.shown);
        EXPECT_EQ(h.c.parts().status.Info1(8), row.hp);
        EXPECT_EQ(h.c.parts().status.Info1(12), row.mana);
    }
}

TEST(StatusFrames, FrameCutAtEveryPositionGivesTheSameResult) {
    const std::string stream = "Hp:" + frame({"1,7,300", "1,8,150", "2,0,You fight."}) + "ok\r\n" +
                               bytes({255, 253, 24}) + frame({"1,53,9"}) + "end";
    for (std::size_t cut = 0; cut <= stream.size(); ++cut) {
        for (std::size_t cut2 = cut; cut2 <= stream.size(); cut2 += 7) {
            SCOPED_TRACE(testing::Message() << "cuts at " << cut << " and " << cut2);
            ClientHarness h;
            h.receive(stream.substr(0, cut));
            h.receive(stream.substr(cut, cut2 - cut));
            h.receive(stream.substr(cut2));
            EXPECT_EQ(h.window(kMainWindow), "Hp:ok\r\n" + std::string("\0ANSI\0", 6) + "end");
            EXPECT_EQ(h.c.parts().status.ShapeParam(0).width, 300);
            EXPECT_EQ(h.c.parts().status.Info2(0), "You fight.");
            EXPECT_EQ(h.c.parts().status.XInfo(4), "Fighting");
            EXPECT_EQ(h.fp.socket.writes.size(), 1u) << "the terminal type is answered once";
        }
    }
}

TEST(StatusFrames, TelnetOptionTwentyFourIsNotAFrameStart) {
    struct Row {
        const char* name;
        std::vector<std::string> chunks;
        std::string shown;
        std::size_t answers;
    };
    const std::string doTtype = bytes({255, 253, 24});
    const std::string echo("\0ANSI\0", 6);  // the answer's echo, where the DO stood
    const std::vector<Row> rows = {
        {"tinymux burst", {bytes({255, 251, 25, 255, 253, 24, 255, 253, 31}) + "Welcome"}, echo + "Welcome", 1},
        {"DO 24 alone at the end of a read", {"hi" + doTtype, "there"}, "hi" + echo + "there", 1},
        {"read ends after IAC DO", {"hi" + bytes({255, 253}), bytes({24}) + "there"}, "hi" + echo + "there", 1},
        {"read ends after IAC", {"hi" + bytes({255}), bytes({253, 24}) + "there"}, "hi" + echo + "there", 1},
        {"WILL, WONT and DONT 24", {bytes({255, 251, 24, 255, 252, 24, 255, 254, 24}) + "x"}, "x", 0},
        {"24 inside a subnegotiation", {bytes({255, 250, 24, 1, 255, 240}) + "x"}, bytes({1}) + "x", 0},
        {"IAC IAC then a frame", {bytes({255, 255}) + frame({"1,8,1"}) + "x"}, bytes({255}) + "x", 0},
        {"frame after DO 24", {doTtype + frame({"1,8,1"}) + "x"}, echo + "x", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ClientHarness h;
        for (const auto& chunk : row.chunks) h.receive(chunk);
        EXPECT_EQ(h.window(kMainWindow), row.shown);
        EXPECT_EQ(h.fp.socket.writes.size(), row.answers);
        EXPECT_FALSE(h.c.parts().frames.inFrame()) << "nothing is swallowed";
    }
    // A subnegotiation that never ends is taken to be over past its bound.
    ClientHarness h;
    h.receive(bytes({255, 250, 24}) + std::string(StatusFrames::kMaxSubnegotiation, 'x') + frame({"1,8,7"}));
    EXPECT_EQ(h.c.parts().status.Info1(8), "7");
}

TEST(StatusFrames, ItemsTellTheDebugWindow) {
    struct Row {
        std::string item, debug;
    };
    const std::vector<Row> rows = {
        {"", "Interpreting \r\nWhich i know nothing ...\r\n"},
        {"3,1,x", "Interpreting 3,1,x\r\nWhich i know nothing ...\r\n"},
        {"1,57,x", "Interpreting 1,57,x\r\n"},
        {"2,4,text", "Interpreting 2,4,text\r\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.item);
        ClientHarness h;
        h.receive(frame({row.item}));
        EXPECT_EQ(h.debugText(), row.debug);
    }
    ClientHarness h;
    h.receive(frame({"2,4,text"}));
    EXPECT_EQ(h.c.parts().status.Info2(4), "text");
}

TEST(StatusFrames, AFrameWithoutEndSwallowsTheStreamWithinItsBound) {
    ClientHarness h;
    h.receive("before" + F24 + "1,8,42" + I25);
    const std::string block(64 * 1024, 'x');
    for (int i = 0; i < 48; ++i) h.receive(block);  // 3 MB
    EXPECT_EQ(h.window(kMainWindow), "before");
    EXPECT_EQ(h.c.parts().frames.PendingFrame().size(), StatusFrames::kMaxPendingFrame);
    h.receive(I25 + F26 + "after");
    EXPECT_EQ(h.window(kMainWindow), "beforeafter");
    EXPECT_EQ(h.c.parts().status.Info1(8), "42") << "the items kept are applied";
    EXPECT_NE(h.debugText().find("Frame too long, "), std::string::npos);
    EXPECT_TRUE(h.c.parts().frames.PendingFrame().empty());
}
