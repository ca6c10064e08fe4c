// The road gathers a read's frame items per cell before the panel sees
// them. Against random frame streams cut at random places, the panel must
// end every read exactly as it would after applying each item on its own.
#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "output/debug_channel.h"
#include "output/output_window.h"
#include "status/status_frames.h"
#include "status/status_model.h"

using namespace kelpa;

namespace {

// Each item taken alone, read the plain way: Val of the kind, of the number
// and the text behind the first comma.
void applyPlain(StatusModel& m, std::string_view item) {
    const double kind = statusNumber(item);
    const std::string_view rest = item.size() > 2 ? item.substr(2) : std::string_view();
    const double n = statusNumber(rest);
    const std::string_view value = rest.substr(rest.find(',') + 1);  // npos + 1 is 0: all of it
    if (!(n >= 0 && n < 64)) return;
    if (kind == 1)
        m.setInfo1(static_cast<int>(n), value);
    else if (kind == 2)
        m.setInfo2(static_cast<int>(n), value);
}

std::string state(StatusModel& m) {
    std::ostringstream s;
    for (int i = 0; i < StatusModel::kInfo1Count; ++i)
        s << i << '=' << m.Info1(i) << '/' << m.Info1Back(i) << '/' << m.ItemChanged(i) << ' ';
    for (int i = 0; i < StatusModel::kInfo2Count; ++i) s << m.Info2(i) << '|';
    for (int i = 0; i < StatusModel::kXInfoCount; ++i) s << m.XInfo(i) << '|';
    s << m.XInfo2Colour() << '\n';
    for (int i = 0; i < StatusModel::kBarCount; ++i) s << m.ShapeParam(i).width << ':' << m.ShapeParam(i).colour << ' ';
    const StatusModel::Changes c = m.takeChanges();
    s << '\n' << c.info1 << c.info2 << c.xinfo << c.bars;
    return s.str();
}

struct Stream {
    std::string bytes;
    std::string text;                 // what the window gets
    std::vector<std::size_t> frameAt;  // where each frame ends in `bytes`
    std::vector<std::vector<std::string>> items;
};

// Cells with change handling of their own, the pairs above all; values
// that repeat, plain numbers, signs, words, fractions, long texts, a 24.
// Between frames, text with telnet's DO 24 or a stray 25 and 26 in it.
Stream randomStream(std::mt19937& rng, int frames) {
    static const int kCells[] = {7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 20, 21, 22, 24, 25,
                                 26, 28, 29, 48, 49, 50, 51, 52, 53, 0, 56, 57, 63};
    static const char* const kOdd[] = {"", "-3", "abc", "2.5", "&H1F", "7 2", "99999999999999999999", "x,y",
                                       "123456789012345678", "\x18q"};
    static const char* const kItems[] = {"3,8,1", "1,64,1", "1,-1,2", " 1,8,4", "1,8", "2", "1.0,12,6", "x"};
    // Lines of every length, so that text moves down in pieces of all sizes.
    static const std::string kWords = "the orc swings at you and misses, you parry and strike back hard";
    Stream s;
    auto pick = [&](std::size_t n) { return static_cast<std::size_t>(rng() % n); };
    for (int f = 0; f < frames; ++f) {
        const std::string text = pick(4) == 0   ? std::string("\xFF\xFD\x18", 3)
                                 : pick(6) == 0 ? "a\x19\x1A" "b\r\n"
                                                : "line " + std::to_string(f) + kWords.substr(pick(60)) + "\r\n";
        s.bytes += text + '\x18';
        s.text += text;
        s.items.emplace_back();
        for (std::size_t i = 0, count = pick(8); i < count; ++i) {
            std::string item;
            if (pick(12) == 0) {
                item = kItems[pick(std::size(kItems))];
            } else {
                const int cell = kCells[pick(std::size(kCells))];
                const std::string value =
                    pick(6) == 0 ? kOdd[pick(std::size(kOdd))] : std::to_string(pick(cell < 20 ? 4 : 700));
                item = (pick(8) == 0 ? "2," : "1,") + std::to_string(pick(8) == 0 ? cell % 5 : cell) + "," + value;
            }
            s.bytes += item + '\x19';
            s.items.back().push_back(item);
        }
        if (pick(5) == 0) s.bytes += "1,20,9";  // behind the last 25: dropped
        s.bytes += '\x1A';
        s.frameAt.push_back(s.bytes.size());
    }
    return s;
}

struct Panel {
    OutputWindow window;
    DebugChannel debug{window};
    StatusModel model;
    StatusFrames frames{model, debug};
    Panel() { model.startUp(); }
};

}  // namespace

TEST(StatusSpeed, GatheredItemsEndEveryReadAsOneByOne) {
    std::mt19937 rng(13);
    for (int round = 0; round < 300; ++round) {
        const Stream s = randomStream(rng, 1 + static_cast<int>(rng() % 60));
        Panel road, plain;
        state(road.model);
        state(plain.model);
        std::string shown;
        std::size_t pos = 0, nextFrame = 0;
        while (pos < s.bytes.size()) {
            const std::size_t len = 1 + rng() % (rng() % 3 == 0 ? 8 : 600);
            std::string chunk = s.bytes.substr(pos, len);
            pos += chunk.size();
            road.frames.S_ExtractFrames(chunk);
            shown += chunk;
            for (; nextFrame < s.frameAt.size() && s.frameAt[nextFrame] <= pos; ++nextFrame)
                for (const std::string& item : s.items[nextFrame]) applyPlain(plain.model, item);
            ASSERT_EQ(state(road.model), state(plain.model)) << "round " << round << " at byte " << pos;
            if (rng() % 4 == 0) {
                road.model.Timer3_Timer();
                plain.model.Timer3_Timer();
            }
        }
        ASSERT_EQ(shown, s.text) << "round " << round;
    }
}
