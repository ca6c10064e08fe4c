// The status panel as data: the captions of the cells are the only store,
// and every change of an Info1 caption runs Info1_Change at once, so that
// items take effect in stream order. Widgets only mirror this.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "output/window_state.h"
#include "status/status_number.h"

namespace kelpa {

std::string PositionName(long long n);

// Bar colours as the width climbs; the first step that holds is taken.
std::uint32_t ladderA(long long width);
std::uint32_t ladderB(long long width);

class StatusModel {
public:
    static constexpr int kInfo1Count = 57;
    static constexpr int kInfo2Count = 5;
    static constexpr int kXInfoCount = 6;
    static constexpr int kBarCount = 11;
    // A width is kept within a signed 32-bit number of twips.
    static constexpr long long kWidestBar = 2147483647;

    static constexpr std::uint32_t kGrey = rgb(128, 128, 128);
    static constexpr std::uint32_t kChanged = rgb(192, 192, 192);

    struct Bar {
        long long width = 0;
        std::uint32_t colour = 0;
    };

    StatusModel();

    // Form_Load's pass: every Info1 caption empty with its change handling,
    // but for item 52; then every Info2 caption empty.
    void startUp();

    // Assigning the text a caption already has changes nothing.
    void setInfo1(int n, std::string_view value);
    void setInfo2(int n, std::string_view value);

    // The same, gathered: under a flood of frames most values are overtaken
    // within one read. A cell keeps only its last text and its change
    // handling runs once, at flushItems(), ending as the one-by-one calls
    // would. The texts are views into the caller's buffer, which must stay
    // untouched until flushItems(). The other changing calls flush first;
    // the readers see gathered items only after it.
    // `word` is wordOf(value), which the caller may have read faster.
    [[gnu::always_inline]] void queueInfo1(int n, std::string_view value, std::uint64_t word) {
        if (n < 0 || n >= kInfo1Count) return;
        const std::uint64_t bit = std::uint64_t{1} << n;
        const auto k = static_cast<std::size_t>(n);
        std::string_view& last = queued1_[k];
        // Most captions are a few digits: one test of size and word
        // together (a new value's length varies, so a test of the length
        // alone mispredicts).
        if (value.size() <= 8) {
            if (((value.size() ^ lastSize_[k]) | (word ^ lastWord_[k])) == 0) return;
        } else if (value.size() == lastSize_[k] &&
                   sameCaption((queued1Mask_ & bit) ? last : std::string_view(info1_[k]), value)) {
            return;
        }
        lastSize_[k] = value.size();
        lastWord_[k] = word;
        last = value;
        queued1Mask_ |= bit;
        if (n >= 8 && n <= 16) queuePair(n);
    }
    void queueInfo2(int n, std::string_view value);
    void flushItems();
    // Up to the first 8 bytes of a text in one word, the rest zero.
    static std::uint64_t wordOf(std::string_view text) {
        std::uint64_t w = 0;
        if (!text.empty()) std::memcpy(&w, text.data(), text.size() < 8 ? text.size() : 8);
        return w;
    }

    // Timer3: cells marked changed turn grey again.
    void Timer3_Timer();
    // Label9, at the foot of the Dbg page, names the cell under the mouse.
    void Info1_MouseMove(int index);
    // Shows or hides the Dbg page's frame (hidden at start).
    void Label11_DblClick();

    const std::string& Info1(int n) const { return info1_[static_cast<std::size_t>(n)]; }
    const std::string& Info2(int n) const { return info2_[static_cast<std::size_t>(n)]; }
    const std::string& XInfo(int n) const { return xinfo_[static_cast<std::size_t>(n)]; }
    std::uint32_t Info1Back(int n) const { return back_[static_cast<std::size_t>(n)]; }
    std::uint32_t XInfo2Colour() const { return xinfo2Colour_; }
    const Bar& ShapeParam(int n) const {
        if (pairPending_.any()) settlePairBars();
        return bars_[static_cast<std::size_t>(n)];
    }
    bool ItemChanged(int n) const { return itemChanged_[static_cast<std::size_t>(n)]; }
    const std::string& Label9() const { return label9_; }
    bool FRM_DBG_Visible() const { return dbgVisible_; }

    // What changed since the last call, for the widgets' next repaint.
    struct Changes {
        std::bitset<kInfo1Count> info1;  // caption or back colour
        std::bitset<kInfo2Count> info2;
        std::bitset<kXInfoCount> xinfo;  // text or colour
        std::bitset<kBarCount> bars;
        bool label9 = false;
        bool dbg = false;  // the Dbg frame's visibility
        bool any() const { return info1.any() || info2.any() || xinfo.any() || bars.any() || label9 || dbg; }
    };
    Changes takeChanges();

private:
    void Info1_Change(int index);
    void markChanged(int index);
    [[gnu::always_inline]] void queuePair(int n) {
        // A pair's handling reads its maximum as it is at this change.
        const auto bar = static_cast<std::size_t>((n - 8) / 2);
        const int maximum = (n & ~1) - 1;
        const unsigned barBit = 1u << bar;
        queuedBars_ |= barBit;
        if (queued1Mask_ & (std::uint64_t{1} << maximum)) {
            queuedMaxText_[bar] = queued1_[static_cast<std::size_t>(maximum)];
            queuedMaxIsText_ |= barBit;
        } else {
            queuedMaxNumber_[bar] = numbers_[static_cast<std::size_t>(maximum)];
            queuedMaxIsText_ &= ~barBit;
        }
    }
    // Captions are a few bytes: compared in place with two loads from each
    // end that overlap as the length needs, no loop (new values differ
    // anywhere and their lengths vary, so a loop's exit mispredicts).
    static bool sameCaption(std::string_view a, std::string_view b) {
        const std::size_t n = b.size();
        if (a.size() != n) return false;
        const char* x = a.data();
        const char* y = b.data();
        if (n >= 8) {
            if (n > 16) return a == b;
            return ((load<std::uint64_t>(x) ^ load<std::uint64_t>(y)) |
                    (load<std::uint64_t>(x + n - 8) ^ load<std::uint64_t>(y + n - 8))) == 0;
        }
        if (n >= 4)
            return ((load<std::uint32_t>(x) ^ load<std::uint32_t>(y)) |
                    (load<std::uint32_t>(x + n - 4) ^ load<std::uint32_t>(y + n - 4))) == 0;
        if (n == 0) return true;
        return ((x[0] ^ y[0]) | (x[n / 2] ^ y[n / 2]) | (x[n - 1] ^ y[n - 1])) == 0;
    }
    template <typename T>
    static T load(const char* p) {
        T v;
        std::memcpy(&v, p, sizeof v);
        return v;
    }
    void setPair(std::size_t bar, double current, double maximum);
    // The number of a cell: Val of its caption, rounded half to even.
    double number(int item) const;
    void setBar(int bar, double width, std::uint32_t colour);
    void setXInfo(int n, std::string text);
    // A pair's bar is worked out when it is next read: under a flood of
    // frames most of its values are overtaken before anyone looks.
    void settlePairBars() const;

    std::array<std::string, kInfo1Count> info1_{};
    // The number of each caption, read when the caption is set.
    std::array<double, kInfo1Count> numbers_{};
    std::array<std::string, kInfo2Count> info2_{};
    std::array<std::string, kXInfoCount> xinfo_{};
    std::array<std::uint32_t, kInfo1Count> back_{};
    std::uint32_t xinfo2Colour_ = rgb(255, 255, 192);
    mutable std::array<Bar, kBarCount> bars_{};
    // For bars 0 to 4: the current and maximum they were last given.
    std::array<double, 5> pairCurrent_{};
    std::array<double, 5> pairMaximum_{};
    mutable std::bitset<5> pairPending_;
    std::array<bool, 61> itemChanged_{};
    std::string label9_;
    bool dbgVisible_ = false;
    Changes changes_;

    // Gathered items: the last text of each cell, and for each pair's bar
    // the maximum as it stood at the bar's last trigger (a number when the
    // maximum was a caption then, a gathered text otherwise).
    std::array<std::string_view, kInfo1Count> queued1_{};
    // The size and wordOf of the text each cell was last given, queued or not.
    std::array<std::size_t, kInfo1Count> lastSize_{};
    std::array<std::uint64_t, kInfo1Count> lastWord_{};
    std::uint64_t queued1Mask_ = 0;
    std::array<std::string_view, kInfo2Count> queued2_{};
    unsigned queued2Mask_ = 0;
    std::array<std::string_view, 5> queuedMaxText_{};
    std::array<double, 5> queuedMaxNumber_{};
    unsigned queuedMaxIsText_ = 0;
    unsigned queuedBars_ = 0;
};

}  // namespace kelpa
