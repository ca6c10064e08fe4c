// The raw text keeps every byte, and once it has its long-run reserve the
// pages ahead of the text are warmed before the text reaches them.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "history/history_text.h"

namespace kelpa {
namespace {

struct RecordingWarmer : PageWarmer {
    std::vector<std::pair<const char*, const char*>> ranges;
    void warm(char* begin, std::size_t bytes) override { ranges.emplace_back(begin, begin + bytes); }
};

TEST(HistoryText, KeepsEveryByteAndWarmsAheadWithinItsReserve) {
    HistoryText h;
    RecordingWarmer warmer;
    h.setPageWarmer(&warmer);
    std::string expected;
    std::size_t piece = 1;
    while (expected.size() < (std::size_t{9} << 20)) {
        piece = piece * 7 % 100'003 + 1;  // odd sizes, some tiny, some large
        const std::string bytes(piece, static_cast<char>('a' + expected.size() % 26));
        h.append(bytes);
        expected += bytes;
        ASSERT_EQ(h.HistoryPos, expected.size());

        const char* base = h.HistoryText.data();
        const std::size_t cap = h.HistoryText.capacity();
        for (auto [b, e] : warmer.ranges) {
            if (b < base || b >= base + cap) continue;  // an older buffer
            ASSERT_LE(e, base + cap);
        }
        if (cap < (std::size_t{1} << 30)) continue;
        // The next two megabytes past the text are warm, or the reserve ends.
        std::size_t covered = h.HistoryText.size();
        for (bool grew = true; grew;) {
            grew = false;
            for (auto [b, e] : warmer.ranges)
                if (b >= base && b <= base + covered && e > base + covered) {
                    covered = static_cast<std::size_t>(e - base);
                    grew = true;
                }
        }
        ASSERT_GE(covered, std::min(cap, h.HistoryText.size() + (std::size_t{2} << 20)));
    }
    EXPECT_TRUE(h.HistoryText == expected);
    EXPECT_FALSE(warmer.ranges.empty());
    // Warming is asked for in stretches, not per append.
    EXPECT_LT(warmer.ranges.size(), 10u);
}

}  // namespace
}  // namespace kelpa
