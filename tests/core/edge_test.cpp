// The edges of the receive road: floods that never finish a line or a
// sequence, and the real file system's failures on files that refuse writes
// even to root: a full device, links, and named pipes.
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>

#include "support/client_harness.h"

namespace kelpa::test {
namespace {

// Under the sanitizers the first touch of a large allocation costs its
// shadow too; times there say nothing about the program.
#ifndef __has_feature
#define __has_feature(x) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

// CPU time of this thread: a loaded machine may take the processor away for
// longer than a chunk costs.
double cpuSeconds() {
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) * 1e-9;
}

// 10 MB in the 64 KB chunks the socket hands on: a text without a line
// end, one ESC that never finds its final, one IAC SB that never ends.
// Every chunk is done quickly, and nothing held between chunks grows.
TEST(Edges, FloodsThatNeverEndALineOrASequenceStayCheapPerChunk) {
    const std::size_t total = 10u << 20, chunk = 64u << 10;
    const std::string heads[] = {"", "\x1b[", std::string("\xFF\xFA\x22", 3)};
    for (const std::string& head : heads) {
        ClientHarness m(/*connected=*/true, /*debugOn=*/false);
        const std::string body(chunk, '7');
        double slowest = 0;
        for (std::size_t done = 0; done < total; done += chunk) {
            const double t0 = cpuSeconds();
            m.receive(done == 0 ? head + body.substr(head.size()) : body);
            slowest = std::max(slowest, cpuSeconds() - t0);
        }
        EXPECT_TRUE(kSanitized || slowest < 0.030) << slowest << " s for one chunk after " << head.size();
        EXPECT_EQ(m.c.parts().history.size(), total);
        EXPECT_LE(m.c.parts().windows.text[kMainWindow].size(), 3500u);
        EXPECT_LE(m.c.parts().windows.state[kMainWindow].Pending.size(), 5u);
    }
}

// A log on a full device is told once, even with the debug switch off, and
// the text stays; once there is room again the log goes on, and a log whose
// file is deleted goes on in a new one. The next day's file is written.
TEST(Edges, AFullDeviceEndsTheLogAndTheTextStays) {
    ClientHarness h(/*connected=*/true, /*debugOn=*/false);
    h.openLog();
    const std::filesystem::path log = h.fp.folder.path() / h.c.parts().log.currentPath();
    h.c.parts().log.close();
    std::filesystem::remove(log);
    std::filesystem::create_symlink("/dev/full", log);
    h.openLog();
    h.receive("lost\r\n");
    h.receive("shown\r\n");
    EXPECT_EQ(h.window(kMainWindow) + "|" + h.history(), "lost\r\nshown\r\n|lost\r\nshown\r\n");
    const std::string debug = h.debugText();
    EXPECT_NE(debug.find("Cannot write the log " + log.string()), std::string::npos) << debug;
    EXPECT_EQ(debug.find("Cannot write the log"), debug.rfind("Cannot write the log")) << "told once";
    // A retry opens the device again, but only a write that goes through
    // says the log is back.
    for (int i = 0; i < SessionLog::kRetrySeconds; ++i) h.c.as_timer_Timer();
    h.receive("still full\r\n");
    EXPECT_EQ(h.debugText(), debug) << "neither back nor told again";

    std::filesystem::remove(log);  // room again
    for (int i = 0; i < SessionLog::kRetrySeconds; ++i) h.c.as_timer_Timer();
    h.receive("back\r\n");
    EXPECT_EQ(h.logFile(), "back\r\n\r\n");
    std::filesystem::remove(log);
    h.c.as_timer_Timer();
    h.receive("again\r\n");
    EXPECT_EQ(h.logFile(), "again\r\n\r\n");
    EXPECT_NE(h.debugText().find("is written again"), std::string::npos) << h.debugText();
    EXPECT_NE(h.debugText().find("lost its file; writing to a new one"), std::string::npos);

    h.c.parts().bar.Sites = {SiteRecord{"mud", "mud", "", "", 0, 0, "", ""}};
    h.c.parts().bar.CB_Connections_Click(0);
    h.fp.clock.day = {2026, 11, 24};
    h.c.as_timer_Timer();
    h.receive("after\r\n");
    EXPECT_EQ(h.fp.folder.read("logs/mud/H.20261124.txt"), "after\r\n\r\n");  // never the endless device

    // A device that takes part of a record: the part is taken back, and the
    // log goes on with whole lines once there is room.
    rlimit was{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &was), 0);
    const auto ignored = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = was;
    small.rlim_cur = 9 + 4;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    h.receive("torn line\r\n");
    setrlimit(RLIMIT_FSIZE, &was);
    std::signal(SIGXFSZ, ignored);
    for (int i = 0; i < SessionLog::kRetrySeconds; ++i) h.c.as_timer_Timer();
    h.receive("whole\r\n");
    EXPECT_EQ(h.fp.folder.read("logs/mud/H.20261124.txt"), "after\r\n\r\nwhole\r\n\r\n");
}

// Saves write through a link and keep the file's permissions; a link to
// nowhere is not taken for a missing book; a named pipe in place of a file
// is refused at once, never waited on.
TEST(Edges, SavesKeepLinksAndPermissionsAndAPipeNeverHoldsTheProgram) {
    namespace fs = std::filesystem;
    ClientHarness h(/*connected=*/true, /*debugOn=*/false);
    const fs::path root = h.fp.folder.path();
    TempFolder elsewhere;
    const fs::path real = elsewhere.path() / "book";
    fs::remove(root / "CONN.ZIG");
    fs::create_symlink(real, root / "CONN.ZIG");
    std::vector<SiteRecord> sites;
    LoadSites(h.fp.files, sites);
    EXPECT_TRUE(fs::is_symlink(root / "CONN.ZIG") && !fs::exists(real)) << "not made anew";
    h.c.SiteManagerClosed();  // the bar reads the book again, and says so with the switch off
    h.c.setDebugInfo(true);
    EXPECT_NE(h.debugText().find("Cannot read the site book " + h.fp.files.absolute("CONN.ZIG") +
                                 ": No such file or directory"),
              std::string::npos) << h.debugText();
    elsewhere.write("book", "");
    fs::permissions(real, fs::perms::owner_read | fs::perms::owner_write);
    ASSERT_TRUE(SaveSites(h.fp.files, {SiteRecord{"Mud", "mud", "mud.org", "", 4000, 0, "secret", ""}}));
    EXPECT_TRUE(fs::is_symlink(root / "CONN.ZIG"));
    EXPECT_NE(elsewhere.read("book").find("STRI=secret"), std::string::npos);
    EXPECT_EQ(fs::status(real).permissions(), fs::perms::owner_read | fs::perms::owner_write);

    ::alarm(20);  // a wait on a pipe ends the run here, not at the suite's timeout
    fs::create_directories(root / "macros");
    ASSERT_EQ(::mkfifo((root / "macros/f.macro").c_str(), 0644), 0);
    h.c.Text1_Enter("@f");
    EXPECT_NE(h.debugText().find("UNKNOWN MACRO for command"), std::string::npos);
    fs::create_directories(root / "logs/mud");
    ASSERT_EQ(::mkfifo((root / SessionLog::pathFor("mud", h.fp.clock.day)).c_str(), 0644), 0);
    h.openLog();
    h.receive("still here\r\n");
    EXPECT_EQ(h.window(kMainWindow), "still here\r\n");
    // A file that holds more than the system says (those of /proc say 0
    // bytes) is read whole.
    fs::create_symlink("/proc/self/comm", root / "macros/comm.macro");
    h.c.Text1_Enter("@comm");
    EXPECT_EQ(h.fp.socket.sent.substr(h.fp.socket.sent.size() - 17), "kelpa_core_test\r\n");
    ::alarm(0);
}

}  // namespace
}  // namespace kelpa::test
