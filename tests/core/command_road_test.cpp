// S_RunCommands and the plain road: which road each line takes and the exact
// bytes that reach the socket.
#include <gtest/gtest.h>

#include "support/client_harness.h"

using namespace kelpa;
using kelpa::test::ClientHarness;

namespace {

using Writes = std::vector<std::string>;

// Records the macro and keyword roads and the writes, in one order.
struct RoadHarness : ClientHarness {
    std::vector<std::string> events;
    explicit RoadHarness(bool connected = true) : ClientHarness(connected) {
        c.commands.setMacroRunner([this](const std::string& l) { events.push_back("macro " + l); });
        c.commands.setKeywordRunner([this](const std::string& l) { events.push_back("key " + l); });
        fp.socket.onSend = [this](const std::string& b) { events.push_back("send " + b); };
    }
};

}  // namespace

TEST(CommandRoad, TypedLinesGiveTheseWrites) {
    struct Row {
        std::string typed;
        Writes writes;
    };
    const std::vector<Row> rows = {
        {"", {"\r\n"}},
        {"   ", {}},
        {"@", {"@\r\n"}},
        {"  north  ", {"north\r\n"}},
        {"say a  b", {"say a  b\r\n"}},
        {"\tx", {"\tx\r\n"}},
        {"a\r\n", {"a\r\n"}},
        {"a\r\n\r\n", {"a\r\n", "\r\n"}},
        {"a\r\n   \r\nb", {"a\r\n", "\r\n", "b\r\n"}},
        {"a\r\n\r\nb", {"a\r\n", "\r\n", "b\r\n"}},
        {"a  \r\n  b  ", {"a\r\n", "b\r\n"}},
        {"n;;e", {"n\r\ne\r\n"}},
        {"100% %nothing", {"100% %nothing\r\n"}},
        {"x\\.y", {"xy\r\n"}},
        {"a\rb\nc", {"a\rb\nc\r\n"}},
    };
    for (const auto& row : rows) {
        ClientHarness h;
        h.c.Text1_Enter(row.typed);
        EXPECT_EQ(h.fp.socket.writes, row.writes) << "typed: " << row.typed;
    }
}

TEST(CommandRoad, FirstCharacterChoosesTheRoadLineByLine) {
    RoadHarness h;
    h.c.commands.S_RunCommands("#\r\n@m one two\r\nsay @m\r\n#queue x;;\r\n @\r\nend");
    EXPECT_EQ(h.events, (std::vector<std::string>{
                            "key #",
                            "macro @m one two",
                            "send say @m\r\n",
                            "key #queue x;;",
                            "send @\r\n",
                            "send end\r\n",
                        }));
    EXPECT_EQ(h.debugText(), "Running Macro : @m one two\r\n");
}

TEST(CommandRoad, RoadIsChosenBeforeExpansion) {
    RoadHarness h;
    h.c.commands.setExpander([](const std::string& s) { return s == "%M" ? "@mac" : s; });
    h.c.Text1_Enter("%M");
    EXPECT_EQ(h.events, std::vector<std::string>{"send @mac\r\n"});
}

TEST(CommandRoad, DisconnectedPlainLinesVanishWhileOtherRoadsRun) {
    RoadHarness h(/*connected=*/false);
    h.c.Text1_Enter("north\r\n#nop\r\n@go");
    EXPECT_EQ(h.events, (std::vector<std::string>{"key #nop", "macro @go"}));
    EXPECT_EQ(h.window(kMainWindow), "");
    EXPECT_EQ(h.history(), "");
}

