// The panel's change handling: bars, ladders and derived words, read back
// from the model after the items a server sends.
#include <gtest/gtest.h>

#include <tuple>

#include "output/debug_channel.h"
#include "output/output_window.h"
#include "status/status_frames.h"
#include "status/status_model.h"

using namespace kelpa;

namespace {

using Items = std::vector<std::pair<int, const char*>>;

StatusModel panel(const Items& items = {}) {
    StatusModel m;
    m.startUp();
    for (auto [n, v] : items) m.setInfo1(n, v);
    return m;
}

}  // namespace

TEST(StatusPanel, BarWidthsAndLadderColours) {
    const std::uint32_t red = rgb(192, 0, 0), yellow = rgb(192, 192, 0), green = rgb(0, 192, 0),
                        cyan = rgb(0, 160, 192), blue = rgb(0, 0, 255);
    // The items set, then the bar read, its width and its colour.
    const std::vector<std::tuple<const char*, Items, int, long long, std::uint32_t>> rows = {
        {"empty panel", {}, 0, 0, red},
        {"empty panel, bar 5 full", {}, 5, 1815, green},
        {"empty panel, percentage", {}, 6, 0, blue},
        {"empty panel, item 21", {}, 10, 0, rgb(192, 0, 192)},
        {"hp maximum 0 counts 1", {{7, "0"}, {8, "1"}}, 0, 600, blue},
        {"hp half", {{7, "300"}, {8, "150"}}, 0, 300, green},
        {"hp just under half", {{7, "300"}, {8, "149"}}, 0, 298, yellow},
        {"hp full", {{7, "300"}, {8, "300"}}, 0, 600, blue},
        {"hp low", {{7, "300"}, {8, "74"}}, 0, 148, red},
        {"hp above maximum is wider", {{7, "100"}, {8, "150"}}, 0, 900, blue},
        {"negative maximum counts 0", {{7, "-100"}, {8, "50"}}, 0, 0, red},
        {"maximum alone redraws nothing", {{8, "50"}, {7, "50"}}, 0, 30000, blue},
        {"item 9 redraws bar 0", {{7, "100"}, {8, "50"}, {7, "200"}, {9, "x"}}, 0, 150, yellow},
        {"item 9 leaves bar 1 alone", {{9, "100"}, {10, "50"}, {9, "200"}}, 1, 300, green},
        {"move pair is bar 4", {{15, "200"}, {16, "150"}}, 4, 450, cyan},
        {"percentage full", {{48, "100"}}, 6, 600, red},
        {"percentage 25", {{49, "25"}}, 7, 150, cyan},
        {"percentage 24", {{50, "24"}}, 8, 144, blue},
        {"percentage 50", {{51, "50"}}, 9, 300, green},
        {"item 20 at 100 empties bar 5", {{20, "100"}}, 5, 0, green},
        {"item 20 at 1", {{20, "1"}}, 5, 1797, green},
        {"item 20 above 100", {{20, "250"}}, 5, 0, green},
        {"item 21 at 100", {{21, "100"}}, 10, 1620, rgb(192, 0, 192)},
        {"huge current is held at the widest bar", {{7, "1"}, {8, "1e300"}}, 0, StatusModel::kWidestBar, blue},
        {"overflowing current", {{7, "1"}, {8, "9e999"}}, 0, StatusModel::kWidestBar, blue},
        {"huge percentage", {{48, "123456789012"}}, 6, StatusModel::kWidestBar, red},
        {"huge negative item 20", {{20, "-1e300"}}, 5, StatusModel::kWidestBar, green},
    };
    for (const auto& [name, items, bar, width, colour] : rows) {
        const StatusModel::Bar shape = panel(items).ShapeParam(bar);
        EXPECT_EQ(std::pair(shape.width, shape.colour), std::pair(width, colour)) << name;
    }
    const StatusModel empty = panel();
    for (int bar : {1, 2, 3, 4, 7, 8, 9}) EXPECT_EQ(empty.ShapeParam(bar).width, 0) << bar;
}

TEST(StatusPanel, DerivedWords) {
    // The items set, then the word read and its text.
    const std::vector<std::tuple<const char*, Items, int, std::string>> rows = {
        {"empty age", {}, 0, "Y M"},
        {"empty height", {}, 1, "0'0\""},
        {"empty alignment", {}, 2, "Good"},
        {"empty roleplay", {}, 3, "<>"},
        {"empty position", {}, 4, "Dead"},
        {"item 52 has no change handling at start", {}, 5, ""},
        {"age joins text", {{24, "19"}, {25, "abc"}}, 0, "19Y abcM"},
        {"height 71", {{26, "71"}}, 1, "5'11\""},
        {"height negative truncates", {{26, "-13"}}, 1, "-1'-1\""},
        {"height beyond 64 bits", {{26, "1e300"}}, 1, "766666666666666666'8\""},
        {"alignment neutral", {{28, "1"}}, 2, "Neutral"},
        {"roleplay on", {{22, "2"}}, 3, "<RP>"},
        {"position of 52", {{52, "15"}}, 5, "Jumping"},
        {"position past the table", {{52, "16"}}, 5, "Unknown"},
        {"negative position", {{53, "-1"}}, 4, "Unknown"},
    };
    for (const auto& [name, items, xinfo, text] : rows) EXPECT_EQ(panel(items).XInfo(xinfo), text) << name;
    // The alignment word's colour follows item 29, the word itself item 28.
    for (const auto& [v, colour] : {std::pair("0", rgb(0, 255, 0)), {"1", rgb(255, 255, 0)}, {"-1", rgb(255, 0, 0)}})
        EXPECT_EQ(panel({{29, v}}).XInfo2Colour(), colour) << v;
}

TEST(StatusPanel, ChangedCellsFlashUntilTheNextTick) {
    StatusModel m = panel();
    m.Timer3_Timer();
    EXPECT_EQ(m.Info1Back(23), StatusModel::kGrey);
    m.takeChanges();

    m.setInfo1(23, "x");
    EXPECT_EQ(m.Info1Back(23), StatusModel::kChanged);
    const auto c = m.takeChanges();  // item 23 only flashes
    EXPECT_EQ(std::tuple(c.info1.test(23), c.xinfo.any(), c.bars.any()), std::tuple(true, false, false));

    m.Timer3_Timer();
    EXPECT_EQ(m.Info1Back(23), StatusModel::kGrey);
    EXPECT_TRUE(m.ItemChanged(23)) << "the flags stay set";
    EXPECT_TRUE(m.takeChanges().info1.test(23));

    // The same text again is no change: no flash, nothing to repaint.
    m.setInfo1(23, "x");
    EXPECT_EQ(m.Info1Back(23), StatusModel::kGrey);
    EXPECT_FALSE(m.takeChanges().any());
    m.Timer3_Timer();
    EXPECT_FALSE(m.takeChanges().any()) << "a grey cell is not painted grey again";
}

// A caption that differs in one bit of one byte is a change, set directly or
// by a frame's item read where it lies, in any order of the two; the same
// caption is none.
TEST(StatusPanel, OneBitDifferenceIsAChangeAtEveryLengthByBothRoads) {
    StatusModel m = panel();
    OutputWindow window;
    DebugChannel debug{window};
    StatusFrames frames{m, debug};
    auto set = [&](bool direct, const std::string& v) {
        std::string chunk = "\x18" "1,23," + v + "\x19\x1A" + std::string(16, ' ');
        direct ? m.setInfo1(23, v) : frames.S_ExtractFrames(chunk);
    };
    // Whether `now` after `was`, each by its road, is seen as a change.
    auto changed = [&](bool wasDirect, const std::string& was, bool nowDirect, const std::string& now) {
        set(wasDirect, was);
        m.takeChanges();
        set(nowDirect, now);
        return m.takeChanges().info1.test(23);
    };
    for (std::size_t len = 1; len <= 20; ++len) {
        for (std::size_t at = 0; at < len; ++at) {
            for (int bit = 0; bit < 7; ++bit) {
                std::string now(len, 'a');
                now[at] = static_cast<char>(now[at] ^ (1 << bit));
                const bool direct = (at + static_cast<std::size_t>(bit)) % 2 == 0;
                SCOPED_TRACE(testing::Message() << len << " bytes, byte " << at << ", bit " << bit);
                EXPECT_TRUE(changed(direct, std::string(len, 'a'), !direct, now));
                set(direct, now);
                set(!direct, now);
                EXPECT_FALSE(m.takeChanges().any());
            }
        }
    }
    // The old caption cut short by a byte is a change, a NUL or a ninth byte too.
    for (const std::string& was : {std::string("5\0", 2), std::string("aaaaaaaaa"), std::string(20, 'a')})
        EXPECT_TRUE(changed(true, was, false, was.substr(0, was.size() - 1))) << was.size() << " bytes";
    // A direct caption of a new length, then the same text by a frame.
    EXPECT_FALSE(changed(true, "12345", false, "12345"));
}
