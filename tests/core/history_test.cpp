// The raw text keeps every byte in order, in memory or in a store, and a
// store that fills up hands the rest of the run to memory without a gap.
#include <gtest/gtest.h>

#include "history/history_text.h"

namespace kelpa {
namespace {

// A store that takes `room` bytes in all, then no more.
struct SmallStore : HistoryStore {
    explicit SmallStore(std::size_t r) : room(r) {}
    std::string bytes;
    std::size_t room;
    int appendsAfterFull = 0;
    std::size_t append(std::string_view b) override {
        if (bytes.size() == room) ++appendsAfterFull;
        const std::size_t n = std::min(b.size(), room - bytes.size());
        bytes.append(b.substr(0, n));
        return n;
    }
    std::string read(std::size_t pos, std::size_t n) const override { return bytes.substr(pos, n); }
};

TEST(HistoryText, KeepsEveryByteInOrderAcrossStoreAndMemory) {
    for (std::size_t room : {std::size_t{0}, std::size_t{1}, std::size_t{5000}, std::size_t{3} << 20}) {
        HistoryText h;
        SmallStore store(room);
        h.setStore(&store);
        std::string expected;
        std::size_t piece = 1;
        while (expected.size() < (std::size_t{5} << 20)) {
            piece = piece * 7 % 100'003 + 1;  // odd sizes, some tiny, some large
            const std::string bytes(piece, static_cast<char>('a' + expected.size() % 26));
            h.append(bytes);
            expected += bytes;
            ASSERT_EQ(h.HistoryPos, expected.size());
        }
        EXPECT_EQ(store.bytes, expected.substr(0, room));
        EXPECT_LE(store.appendsAfterFull, 1) << "a full store is not asked again";
        EXPECT_TRUE(h.text() == expected) << "room " << room;
        // Stretches on either side of the seam and across it.
        for (std::size_t pos : {std::size_t{0}, room > 0 ? room - 1 : 0, room, room + 7, expected.size() - 3})
            for (std::size_t n : {std::size_t{0}, std::size_t{1}, std::size_t{10}, std::size_t{70'000}})
                ASSERT_EQ(h.read(pos, n), expected.substr(pos, n)) << "room " << room << " at " << pos;
        EXPECT_EQ(h.read(expected.size() + 5, 10), "");
    }
    // A store comes only before the first byte: the text stays in one piece.
    HistoryText h;
    h.append("first");
    SmallStore late(100);
    h.setStore(&late);
    h.append(" second");
    EXPECT_EQ(h.text() + "|" + late.bytes, "first second|");
}

}  // namespace
}  // namespace kelpa
