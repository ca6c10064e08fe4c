// Failures met on the way out and on the way in: a write the socket refuses,
// and failures of any kind inside the receive road.
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "support/client_harness.h"

namespace kelpa::test {
namespace {

TEST(Sender, AWriteTheSocketRefusesIsToldOnTheDebugWindowAndTheTextIsStillLoggedEchoedAndKept) {
    ClientHarness h;
    h.openLog();
    h.fp.socket.refuseWrites = true;
    h.c.Text1_Enter("look;;say hi");
    EXPECT_NE(h.debugText().find("SendData failed, 14 bytes not sent: look\r\n"), std::string::npos) << h.debugText();
    EXPECT_EQ(h.logFile(), "look\r\nsay hi\r\n\r\n");
    EXPECT_EQ(h.window(kMainWindow), "look\r\nsay hi\r\n");
    EXPECT_EQ(h.history(), "look\r\nsay hi\r\n");

    // The init string of a site, sent straight on connecting.
    SiteRecord site;
    site.InitString = "hello#10#there";
    h.c.parts().bar.Sites = {site};
    h.c.parts().bar.CB_Connections_Click(0);
    h.c.parts().session.s_Connect();
    EXPECT_NE(h.debugText().find("SendData failed, 11 bytes not sent: hello\r\n"), std::string::npos) << h.debugText();
}

// Trigger passes that fail as an action running out of memory would.
class FailingTriggers : public TriggerPasses {
public:
    explicit FailingTriggers(std::function<void()> fail) : fail_(std::move(fail)) {}
    void matchGlobal(std::string_view) override { fail_(); }
    bool hasLineTriggers() const override { return true; }
    void matchLine(std::string_view) override {}

private:
    std::function<void()> fail_;
};

TEST(LinePipeline, AnyFailureInsideTheRoadEndsTheChunkWithTheLogsErrorLine) {
    const std::vector<std::pair<std::function<void()>, std::string>> rows = {
        {[] { throw std::bad_alloc(); }, "7/Out of memory"},
        {[] { throw std::length_error("string too long"); }, "51/string too long"},
    };
    for (const auto& [fail, error] : rows) {
        ClientHarness h;
        h.openLog();
        FailingTriggers triggers(fail);
        h.c.parts().pipeline.setTriggers(triggers);
        EXPECT_NO_THROW(h.receive("a line\r\n"));
        EXPECT_EQ(h.logFile(), "a line\r\n\r\n\r\nERROR : " + error + " on line S_ProcessLines\r\n");
        EXPECT_EQ(h.window(kMainWindow), "a line\r\n");
        EXPECT_EQ(h.debugText().find("s_DataArrival"), std::string::npos);
    }
}

}  // namespace
}  // namespace kelpa::test
