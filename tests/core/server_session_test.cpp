// The server session: connecting, the init string, the socket's events and
// the receive road of a chunk.
#include <gtest/gtest.h>

#include "output/box_chars.h"
#include "session/server_session.h"
#include "support/client_harness.h"

using namespace kelpa;
using kelpa::test::bytes;
using kelpa::test::ClientHarness;

namespace {

class SwallowEverything : public FrameExtractor {
public:
    void S_ExtractFrames(std::string& data) override { data.clear(); }
};

SiteRecord site(std::string name, std::string init) {
    SiteRecord s;
    s.SiteName = name;
    s.ShortName = name;
    s.DnsName = name + ".example";
    s.DefaultPort = 4000;
    s.AlternatePort = 4001;
    s.InitString = std::move(init);
    return s;
}

}  // namespace

TEST(ReceiveRoad, GraphicsOffTurnsBoxBytesIntoAsciiForGood) {
    std::string box;
    for (const BoxChar& b : BoxChars) box += static_cast<char>(b.byte);
    // BoxChars order: C4 B3 C5 DD DE CD B1 E8 DA BF C0 D9 C9 BB BA B9 CC C8 BC C3 C2 B4 C1
    const std::string ascii = "-|*" + bytes({0xDD, 0xDE}) + "-" + bytes({0xB1, 0xE8}) +
                              "******|********";
    ClientHarness off;
    off.setGraphicsOff();
    off.fp.socket.incoming = "x" + box;
    off.c.session.s_DataArrival();
    EXPECT_EQ(off.history(), "x" + ascii);
    EXPECT_EQ(off.window(kMainWindow), "x" + ascii);

    ClientHarness on;
    on.fp.socket.incoming = "x" + box;
    on.c.session.s_DataArrival();
    EXPECT_EQ(on.history(), "x" + box);
    EXPECT_EQ(on.window(kMainWindow), "x" + box);
}

TEST(ReceiveRoad, NothingIsReadOrShownWhenNotConnectedOrEmpty) {
    ClientHarness h(/*connected=*/false);
    h.openLog();
    h.fp.socket.incoming = "late";
    h.c.session.s_DataArrival();
    EXPECT_EQ(h.fp.socket.incoming, "late") << "the bytes stay unread";
    EXPECT_EQ(h.window(kMainWindow), "");

    h.fp.socket.connected = true;
    h.fp.socket.incoming = "";
    h.c.session.s_DataArrival();
    SwallowEverything frames;
    h.c.session.setFrameExtractor(&frames);
    h.fp.socket.incoming = "\x18" "frame\x19\x1A";
    h.c.session.s_DataArrival();
    EXPECT_EQ(h.history(), "");
    EXPECT_EQ(h.window(kMainWindow), "");
    EXPECT_EQ(h.logFile(), "");
}

TEST(ServerSession, InitStringMarksBecomeCharacters) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"plain", "plain"},
        {"#10#", "\n"},
        {"#24#a#25#b#26#c#10#", "\x18" "a\x19" "b\x1A" "c\n"},
        {"#10#24#", "#10\x18"},  // "#24#" is replaced first
        {"#1O#", "#1O#"},
    };
    for (const auto& [init, sent] : rows) EXPECT_EQ(ServerSession::expandInitString(init), sent);
}

TEST(ServerSession, ConnectOpensTheLogAndSendsTheInitStringStraight) {
    ClientHarness h(/*connected=*/false);
    h.c.bar.Sites = {site("mud", "hi#10#"), site("quiet", "")};
    h.c.bar.CB_Connections_Click(0);

    h.c.session.CMD_CONNECT_Click();
    EXPECT_EQ(h.fp.socket.connects, std::vector<std::string>{"mud.example:4000"});
    EXPECT_FALSE(h.c.bar.connectEnabled);
    EXPECT_TRUE(h.c.bar.disconnectEnabled);
    EXPECT_EQ(h.debugText(), "hinstance:4242\r\nprev instance:False\r\n");

    h.fp.socket.connected = true;
    h.c.session.s_Connect();
    EXPECT_EQ(h.fp.socket.writes, std::vector<std::string>{"hi\n"});
    EXPECT_EQ(h.fp.host.focuses, 1);
    EXPECT_TRUE(h.c.log.isOpen());
    EXPECT_EQ(h.c.log.currentPath(), "logs/mud/H.20261123.txt");
    EXPECT_EQ(h.logFile(), "") << "not logged";
    EXPECT_EQ(h.history(), "") << "not kept";
    EXPECT_EQ(h.window(kMainWindow), "") << "not echoed";

    h.c.bar.CB_Connections_Click(1);  // an empty init string sends nothing
    h.c.session.s_Connect();
    EXPECT_EQ(h.fp.socket.writes.size(), 1u);
}

TEST(ServerSession, CloseAndErrorReturnTheButtonsAndTreatTheLogDifferently) {
    ClientHarness h;
    h.c.session.CMD_CONNECT_Click();
    h.c.session.s_Connect();
    const int handle = h.c.log.LogFile;
    h.c.session.s_Error(10061, "Connection refused", -2146818227);
    EXPECT_TRUE(h.c.bar.connectEnabled);
    EXPECT_FALSE(h.c.bar.disconnectEnabled);
    EXPECT_EQ(h.fp.socket.state(), 0);
    EXPECT_TRUE(h.c.log.isOpen()) << "an error leaves the log open";
    EXPECT_EQ(h.logFile(), "Sock 10061 Connection refused -2146818227\r\n");
    EXPECT_NE(h.debugText().find("Sock 10061 Connection refused -2146818227\r\n"),
              std::string::npos);

    h.fp.socket.connected = true;
    h.c.session.s_Connect();
    EXPECT_GT(h.c.log.LogFile, handle);
    h.c.session.s_Close();
    EXPECT_FALSE(h.c.log.isOpen());
    EXPECT_NE(h.c.log.LogFile, 0) << "not reset by closing";
    EXPECT_TRUE(h.c.bar.connectEnabled);

    h.fp.socket.connected = true;
    h.c.session.s_Connect();
    h.c.session.CMD_DISCONNECT_Click();
    EXPECT_FALSE(h.c.log.isOpen());
    EXPECT_EQ(h.fp.socket.state(), 0);
    EXPECT_FALSE(h.c.bar.disconnectEnabled);
}
