// The receive road: the server session (connecting, the init string, the
// socket's events), S_ProcessLines (what the window,
// the log and the two trigger passes get of a chunk, and what a failure
// leaves), and the session log (when it opens, the change of day in both
// directions, the recall file checked by the same timer).
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <new>
#include <stdexcept>

#include "session/server_session.h"
#include "support/client_harness.h"

using namespace kelpa;
using kelpa::test::bytes;
using kelpa::test::ClientHarness;

namespace {

SiteRecord site(std::string name, std::string init) {
    return SiteRecord{name, name, name + ".example", "", 4000, 4001, std::move(init), ""};
}

struct RecordingTriggers : TriggerPasses {
    void matchGlobal(std::string_view chunk) override {
        global.emplace_back(chunk);
        if (fail) fail();
    }
    bool hasLineTriggers() const override { return true; }
    void matchLine(std::string_view line) override { lines.emplace_back(line); }
    std::vector<std::string> global, lines;
    std::function<void()> fail;  // as an action running out of memory would
};

struct PipelineHarness : ClientHarness {
    RecordingTriggers triggers;
    PipelineHarness() {
        c.parts().pipeline.setTriggers(triggers);
        openLog();
    }
    void process(std::string chunk) { c.parts().pipeline.S_ProcessLines(chunk, LinePipeline::Source::Received); }
};

using Lines = std::vector<std::string>;

}  // namespace

TEST(ReceiveRoad, GraphicsOffTurnsBoxBytesIntoAsciiForGood) {
    // Lines become "-", "|" and "*"; the half blocks and shades stay.
    const std::string box = bytes({0xC4, 0xB3, 0xC5, 0xDD, 0xB1, 0xC9});
    for (const bool graphics : {false, true}) {
        ClientHarness h;
        h.c.setGraphics(graphics);
        h.receive("x" + box);
        const std::string shown = graphics ? "x" + box : "x-|*" + bytes({0xDD, 0xB1}) + "*";
        EXPECT_EQ(h.history() + "|" + h.window(kMainWindow), shown + "|" + shown);
    }
}

TEST(ServerSession, ConnectCloseAndErrorSetTheButtonsAndTheLog) {
    ClientHarness h(/*connected=*/false);
    h.c.parts().bar.Sites = {site("mud", "#24#a#25#b#26#c#10#hi#1O##10#24#"), site("quiet", "")};
    h.c.parts().bar.CB_Connections_Click(0);
    const auto& bar = h.c.parts().bar;
    h.c.parts().session.CMD_CONNECT_Click();
    EXPECT_EQ(h.fp.socket.connects, std::vector<std::string>{"mud.example:4000"});
    EXPECT_TRUE(!bar.connectEnabled && bar.disconnectEnabled);
    EXPECT_EQ(h.debugText(), "hinstance:4242\r\nprev instance:False\r\n");

    // The init string is sent straight: not logged, kept or echoed. Its
    // marks become characters, "#24#" first.
    h.fp.socket.connected = true;
    h.c.parts().session.s_Connect();
    EXPECT_EQ(std::pair(h.fp.socket.writes, h.fp.host.focuses),
              std::pair(Lines{"\x18" "a\x19" "b\x1A" "c\nhi#1O##10\x18"}, 1));
    EXPECT_EQ(h.c.parts().log.currentPath() + "|" + h.logFile() + h.history() + h.window(kMainWindow),
              "logs/mud/H.20261123.txt|");

    // An error leaves the log open, a close or a disconnect closes it.
    h.c.parts().session.s_Error(10061, "Connection refused", -2146818227);
    EXPECT_TRUE(bar.connectEnabled && !bar.disconnectEnabled && h.fp.socket.state() == 0);
    EXPECT_EQ(h.c.parts().log.isOpen() ? h.logFile() : "closed",
              "Sock 10061 Connection refused -2146818227\r\n");
    EXPECT_NE(h.debugText().find("Sock 10061 Connection refused -2146818227\r\n"), std::string::npos);
    h.c.parts().bar.CB_Connections_Click(1);  // an empty init string sends nothing
    for (const bool button : {false, true}) {
        h.fp.socket.connected = true;
        h.c.parts().session.s_Connect();
        EXPECT_TRUE(h.c.parts().log.isOpen());
        button ? h.c.parts().session.CMD_DISCONNECT_Click() : h.c.parts().session.s_Close();
        EXPECT_TRUE(!h.c.parts().log.isOpen() && !bar.disconnectEnabled && bar.connectEnabled &&
                    h.fp.socket.state() == 0) << button;
    }
    EXPECT_EQ(h.fp.socket.writes.size(), 1u);
}

TEST(SessionLog, ChangeOfDaySwitchesTheFileInBothDirections) {
    EXPECT_EQ(SessionLog::pathFor("x", Date{987, 1, 2}), "logs/x/H.09870102.txt");
    // Short names from books written on Windows name the folders Windows made.
    for (const auto& [name, folder] : std::vector<std::pair<std::string, std::string>>{
             {"Games\\Med", "logs/Games/Med"}, {"Blank .", "logs/Blank"}, {"..\\..\\etc", "logs/etc"},
             {"/abs/", "logs/abs"}, {" ", "logs"}, {" lead", "logs/ lead"}})
        EXPECT_EQ(SessionLog::folderFor(name), folder) << name;
    ClientHarness h;
    h.c.parts().bar.Sites = {site("mud", "")};
    h.c.parts().bar.CB_Connections_Click(0);
    EXPECT_FALSE(h.fp.files.exists("logs")) << "loading opens no log";
    h.c.parts().session.s_Connect();
    // Then the next day, then the clock set back.
    const std::vector<std::pair<int, std::string>> days = {
        {23, "monday"}, {23, "still monday"}, {24, "tuesday"}, {23, "monday again"}};
    for (const auto& [day, text] : days) {
        h.fp.clock.day = Date{2026, 11, day};
        h.c.as_timer_Timer();
        h.receive(text);
    }
    EXPECT_TRUE(h.fp.socket.connected) << "no break in the connection";
    EXPECT_EQ(h.fp.folder.read("logs/mud/H.20261123.txt") + "|" + h.fp.folder.read("logs/mud/H.20261124.txt"),
              "monday\r\nstill monday\r\nmonday again\r\n|tuesday\r\n");

    // Without a connection the change of day opens the log too.
    h.c.parts().session.s_Close();
    h.fp.clock.day = Date{2027, 1, 1};
    h.c.as_timer_Timer();
    EXPECT_TRUE(h.c.parts().log.isOpen() && h.fp.files.exists("logs/mud/H.20270101.txt"));
}

TEST(SessionLog, RecallFileShowsTheWindowAndIsDeletedEachTime) {
    ClientHarness h;
    h.c.as_timer_Timer();
    EXPECT_EQ(h.fp.host.shows, 0);
    for (int round = 1; round <= 3; ++round) {
        if (round < 3) h.c.Text1_Escape();  // the last round: deleted while not hidden too
        h.fp.folder.write(Client::kShowFile, round == 1 ? "any content" : "");
        h.c.as_timer_Timer();
        EXPECT_EQ(std::tuple(h.fp.host.hidden, h.fp.host.shows, h.fp.files.exists(Client::kShowFile)),
                  std::tuple(false, round, false));
    }
    // A folder of that name cannot be taken away and brings nothing back.
    h.c.Text1_Escape();
    h.fp.folder.write(std::string(Client::kShowFile) + "/inside", "");
    h.c.as_timer_Timer();
    EXPECT_EQ(std::tuple(h.fp.host.hidden, h.fp.host.shows), std::tuple(true, 3));
}

TEST(LinePipeline, ChunkReachesWindowLogAndBothTriggerPasses) {
    struct Row { std::string chunk, shown; Lines lines; bool cleaner = true; };
    const std::vector<Row> rows = {
        {"abc\r\n", "abc\r\n", {"abc", ""}}, {"one\n\rtwo\n\r", "one\n\rtwo\n\r", {"one\n\rtwo\n\r"}},
        {"a\r\n\r\nb", "a\r\n\r\nb", {"a", "", "b"}},
        {"hp\r\nGold: 5 MPP: 3", "hp\r\r\n\r\nGold: 5 MPP: 3", {"hp\r", "", "Gold: 5 MPP: 3"}},  // cleaned first
        {"hp\r\nGold: 5 MPP: 3", "hp\r\nGold: 5 MPP: 3", {"hp", "Gold: 5 MPP: 3"}, false},
    };
    for (const auto& [chunk, shown, lines, cleaner] : rows) {
        SCOPED_TRACE(shown);
        PipelineHarness h;
        h.c.setCleanerText(cleaner);
        h.process(chunk);
        EXPECT_EQ(h.window(kMainWindow) + "|" + h.logFile(), shown + "|" + shown + "\r\n");
        EXPECT_EQ(std::pair(h.triggers.global, h.triggers.lines), std::pair(Lines{shown}, lines));
    }
    // A line split across chunks joins only on screen.
    PipelineHarness h;
    h.process("ab");
    h.process("c\r\n");
    EXPECT_EQ(std::pair(h.window(kMainWindow) + "|" + h.logFile(), h.triggers.lines),
              std::pair(std::string("abc\r\n|ab\r\nc\r\n\r\n"), Lines{"ab", "c", ""}));
}

TEST(LinePipeline, CleanerTextBreaksAheadOfGoldWhenMppIsThere) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"a\r\nb\r\nGold: 5\r\nMPP: 3", "a\r\nb\r\r\n\r\nGold: 5\r\nMPP: 3"},
        {"MPP: 3\r\nx Gold: 5", "MPP: 3\r\r\n\r\nx Gold: 5"},
        {"Gold: 5 MPP: 3", "Gold: 5 MPP: 3\r\n"},
        {"\r\nGold: 5 MPP: 3", "\r\r\n\r\nGold: 5 MPP: 3"},  // right behind the first line break
        {"\nGold: 5 MPP: 3", "\nGold: 5 MPP: 3\r\n"},
        {"hp\r\nGold: 5", "hp\r\nGold: 5"},
        {"gold: 5 MPP: 3", "gold: 5 MPP: 3"},
    };
    for (const auto& [in, out] : rows) {
        std::string cleaned = in;
        LinePipeline::cleanerText(cleaned);
        EXPECT_EQ(cleaned, out) << in;
    }
}

// Any failure inside the road ends the chunk with the log's error line,
// and the session goes on.
TEST(LinePipeline, FailureAbandonsTheChunkWithTheLogErrorLine) {
    struct Row { std::function<void()> fail; std::string chunk, shown, logged, error; };
    const std::vector<Row> rows = {
        {nullptr, "ok\x1BMlost\r\nmore", "ok", "", "5/Invalid procedure call or argument on line A_ParseCsi"},
        {[] { throw std::bad_alloc(); }, "a line\r\n", "a line\r\n", "a line\r\n\r\n",
         "7/Out of memory on line S_ProcessLines"},
        {[] { throw std::length_error("string too long"); }, "x", "x", "x\r\n",
         "51/string too long on line S_ProcessLines"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.error);
        PipelineHarness h;
        h.receive("before");
        h.triggers.fail = row.fail;
        EXPECT_NO_THROW(h.receive(row.chunk));
        EXPECT_EQ(h.logFile(), "before\r\n" + row.logged + "\r\nERROR : " + row.error + "\r\n");
        EXPECT_EQ(h.triggers.lines, Lines{"before"});
        h.triggers.fail = nullptr;
        h.receive("after");
        EXPECT_EQ(h.window(kMainWindow), "before" + row.shown + "after");
    }
    // A failed print still keeps the window within its limit.
    PipelineHarness big;
    big.process(std::string(5000, 'x') + "\x1BM");
    EXPECT_LE(big.window(kMainWindow).size(), 3500u);
    PipelineHarness noLog;
    noLog.c.parts().log.close();
    noLog.process("x\x1BMlost");
    EXPECT_EQ(std::pair(noLog.window(kMainWindow), noLog.triggers.global), std::pair(std::string("x"), Lines{}));
}

// A telnet sequence cut by the end of a read waits for the next read: the
// echo of a line sent meanwhile neither completes it nor is swallowed by it.
TEST(ReceiveRoad, ATelnetSequenceCutByAReadWaitsForTheNextReadOnly) {
    ClientHarness linemode;
    linemode.receive(bytes({'H', 'P', '>', ' ', 255, 250, 34, 1}));
    linemode.c.Text1_Enter("north");
    linemode.receive(bytes({3, 255, 240}) + "You go.");
    EXPECT_EQ(linemode.window(kMainWindow), "HP> north\r\nYou go.");

    ClientHarness prompt;
    prompt.receive("prompt> \xFF");
    prompt.c.Text1_Enter("north");
    prompt.receive("\xF9");
    EXPECT_EQ(prompt.window(kMainWindow), "prompt> north\r\n");
    // Any other text drops an unfinished sequence at its end.
    prompt.c.parts().writer.W_Print("x\xFF\xFD", kMainWindow);
    EXPECT_EQ(prompt.window(kMainWindow) + prompt.state(kMainWindow).Pending + prompt.state(kMainWindow).CutPending,
              "prompt> north\r\nx");

    // A new connection starts clean: what the last one cut off never
    // joins the new server's first bytes.
    for (const std::string cut : {"\xFF", "\xFF\xFA\x22" "abc", "\x1B[0;1;3"}) {
        ClientHarness next;
        next.receive("bye " + cut);
        next.c.parts().session.s_Connect();
        next.receive("\xFF\xFD\x18Welcome");
        EXPECT_EQ(next.fp.socket.sent, std::string("\xFF\xFA\x18\x00" "ANSI" "\x00\xFF\xF0", 11)) << cut;
        EXPECT_EQ(next.window(kMainWindow), "bye " + std::string("\0ANSI\0", 6) + "Welcome") << cut;
    }
}

// A site book or a folder copied from a case-blind system in another case is
// not read, and the start-up says so.
TEST(StartUp, NamesThatDifferOnlyInCaseAreTold) {
    ClientHarness h(/*connected=*/false, /*debugOn=*/false);
    h.fp.folder.write("conn.zig", "");
    for (const char* folder : {"Triggers", "macros", "GTRIGGERS", "Logs.old"})
        std::filesystem::create_directory(h.fp.folder.path() / folder);
    h.c.Form_Load();
    const std::string debug = h.debugText();
    for (const char* told : {"conn.zig, which is not CONN.ZIG\r\n", "Triggers, which is not triggers\r\n",
                             "GTRIGGERS, which is not gtriggers\r\n"})
        EXPECT_NE(debug.find(std::string("Names count case: there is ") + told), std::string::npos) << told << debug;
    EXPECT_EQ(debug.find("there is macros"), std::string::npos) << debug;
    EXPECT_EQ(debug.find("Logs"), std::string::npos) << debug;
}
