#include "status/status_model.h"

#include <bit>
#include <cmath>

#include "common/text.h"

namespace kelpa {

namespace {

constexpr int kFullPairBar = 600;

// A width in twips: rounded half to even, below 0 (or no figure at all)
// counts 0, and a figure too large for the bar is held at the widest bar.
long long barWidth(double w) {
    if (std::isnan(w) || w <= 0) return 0;
    if (w >= static_cast<double>(StatusModel::kWidestBar)) return StatusModel::kWidestBar;
    return static_cast<long long>(std::nearbyint(w));
}

// A whole number that fits in 64 bits; a caption beyond that is held at the
// nearest end, so that its derived text stays a number.
long long wholeNumber(double v) {
    constexpr double kLimit = 9.2e18;
    if (std::isnan(v)) return 0;
    if (v >= kLimit) return static_cast<long long>(kLimit);
    if (v <= -kLimit) return -static_cast<long long>(kLimit);
    return static_cast<long long>(v);
}

}  // namespace

std::string PositionName(long long n) {
    static const char* const kWords[] = {
        "Dead",    "Mortally Wounded", "Incapacited", "Stunned",  "Sleeping", "Resting",
        "Praying", "Meditating",       "Sitting",     "Fighting", "Crawling", "Standing",
        "Riding",  "Levitating",       "Flying",      "Jumping"};
    if (n < 0 || n > 15) return "Unknown";
    return kWords[n];
}

std::uint32_t ladderA(long long width) {
    if (width < 150) return rgb(192, 0, 0);
    if (width < 300) return rgb(192, 192, 0);
    if (width < 450) return rgb(0, 192, 0);
    if (width < 600) return rgb(0, 160, 192);
    return rgb(0, 0, 255);
}

std::uint32_t ladderB(long long width) {
    if (width < 150) return rgb(0, 0, 255);
    if (width < 300) return rgb(0, 160, 192);
    if (width < 450) return rgb(0, 192, 0);
    return rgb(192, 0, 0);
}

StatusModel::StatusModel() {
    back_.fill(kGrey);
    bars_[5].colour = rgb(0, 192, 0);
    bars_[10].colour = rgb(192, 0, 192);
}

void StatusModel::startUp() {
    flushItems();
    for (int i = 0; i < kInfo1Count; ++i) {
        info1_[static_cast<std::size_t>(i)].clear();
        lastSize_[static_cast<std::size_t>(i)] = 0;
        lastWord_[static_cast<std::size_t>(i)] = 0;
        numbers_[static_cast<std::size_t>(i)] = 0;
        changes_.info1.set(static_cast<std::size_t>(i));
        if (i != 52) Info1_Change(i);
    }
    for (int i = 0; i < kInfo2Count; ++i) setInfo2(i, "");
}

void StatusModel::setInfo1(int n, std::string_view value) {
    if (n < 0 || n >= kInfo1Count) return;
    flushItems();
    std::string& caption = info1_[static_cast<std::size_t>(n)];
    if (sameCaption(caption, value)) return;
    caption.assign(value);
    lastSize_[static_cast<std::size_t>(n)] = value.size();
    lastWord_[static_cast<std::size_t>(n)] = wordOf(value);
    numbers_[static_cast<std::size_t>(n)] = statusNumber(caption);
    changes_.info1.set(static_cast<std::size_t>(n));
    Info1_Change(n);
}

void StatusModel::setInfo2(int n, std::string_view value) {
    if (n < 0 || n >= kInfo2Count) return;
    flushItems();
    info2_[static_cast<std::size_t>(n)].assign(value);
    changes_.info2.set(static_cast<std::size_t>(n));
}

void StatusModel::queueInfo2(int n, std::string_view value) {
    if (n < 0 || n >= kInfo2Count) return;
    queued2_[static_cast<std::size_t>(n)] = value;
    queued2Mask_ |= 1u << n;
}

void StatusModel::flushItems() {
    if ((queued1Mask_ | queued2Mask_) == 0) return;
    // The maxima first: a gathered text is read before any caption moves.
    for (unsigned bars = queuedBars_; bars != 0; bars &= bars - 1) {
        const auto bar = static_cast<std::size_t>(std::countr_zero(bars));
        if (queuedMaxIsText_ & (1u << bar)) queuedMaxNumber_[bar] = statusNumber(queuedMaxText_[bar]);
    }
    for (std::uint64_t cells = queued1Mask_; cells != 0; cells &= cells - 1) {
        const int n = std::countr_zero(cells);
        const auto k = static_cast<std::size_t>(n);
        info1_[k].assign(queued1_[k]);
        numbers_[k] = statusNumber(info1_[k]);
        changes_.info1.set(k);
        if (n >= 8 && n <= 16)
            markChanged(n);
        else
            Info1_Change(n);
    }
    for (unsigned bars = queuedBars_; bars != 0; bars &= bars - 1) {
        const auto bar = static_cast<std::size_t>(std::countr_zero(bars));
        setPair(bar, numbers_[bar * 2 + 8], queuedMaxNumber_[bar]);
    }
    for (unsigned cells = queued2Mask_; cells != 0; cells &= cells - 1) {
        const auto k = static_cast<std::size_t>(std::countr_zero(cells));
        info2_[k].assign(queued2_[k]);
        changes_.info2.set(k);
    }
    queued1Mask_ = 0;
    queued2Mask_ = 0;
    queuedBars_ = 0;
    queuedMaxIsText_ = 0;
}

void StatusModel::Timer3_Timer() {
    flushItems();
    for (int i = 0; i < kInfo1Count; ++i) {
        const auto k = static_cast<std::size_t>(i);
        if (itemChanged_[k] && back_[k] != kGrey) {
            back_[k] = kGrey;
            changes_.info1.set(k);
        }
    }
}

void StatusModel::Info1_MouseMove(int index) {
    if (index < 0 || index >= kInfo1Count) return;
    flushItems();
    std::string text = decimal(index) + "=" + info1_[static_cast<std::size_t>(index)];
    if (text == label9_) return;
    label9_ = std::move(text);
    changes_.label9 = true;
}

void StatusModel::Label11_DblClick() {
    dbgVisible_ = !dbgVisible_;
    changes_.dbg = true;
}

StatusModel::Changes StatusModel::takeChanges() {
    flushItems();
    Changes c = changes_;
    changes_ = Changes{};
    return c;
}

double StatusModel::number(int item) const { return numbers_[static_cast<std::size_t>(item)]; }

void StatusModel::setBar(int bar, double width, std::uint32_t colour) {
    Bar& b = bars_[static_cast<std::size_t>(bar)];
    b.width = barWidth(width);
    b.colour = colour;
    changes_.bars.set(static_cast<std::size_t>(bar));
}

void StatusModel::settlePairBars() const {
    for (std::size_t bar = 0; bar < pairPending_.size(); ++bar) {
        if (!pairPending_.test(bar)) continue;
        double c = pairCurrent_[bar];
        double m = pairMaximum_[bar];
        if (m == 0) m = 1;
        if (c < 0) c = 0;
        const long long w = barWidth(c / m * kFullPairBar);
        bars_[bar].width = w;
        bars_[bar].colour = ladderA(w);
    }
    pairPending_.reset();
}

void StatusModel::setXInfo(int n, std::string text) {
    xinfo_[static_cast<std::size_t>(n)] = std::move(text);
    changes_.xinfo.set(static_cast<std::size_t>(n));
}

void StatusModel::markChanged(int index) {
    back_[static_cast<std::size_t>(index)] = kChanged;
    itemChanged_[static_cast<std::size_t>(index)] = true;
    changes_.info1.set(static_cast<std::size_t>(index));
}

void StatusModel::setPair(std::size_t bar, double current, double maximum) {
    pairCurrent_[bar] = current;
    pairMaximum_[bar] = maximum;
    pairPending_.set(bar);
    changes_.bars.set(bar);
}

void StatusModel::Info1_Change(int index) {
    markChanged(index);

    if (index >= 8 && index <= 16) {
        // Items 8 and 9 work on bar 0 with the pair 8/7, and so on: a
        // maximum alone never redraws its own bar.
        const int current = index & ~1;
        setPair(static_cast<std::size_t>((index - 8) / 2), number(current), number(current - 1));
        return;
    }
    if (index >= 48 && index <= 51) {
        const long long w = barWidth(number(index) * 6);
        setBar(index - 42, static_cast<double>(w), ladderB(w));
        return;
    }
    switch (index) {
        case 20:
            setBar(5, (100 - number(20)) * 18.15, bars_[5].colour);
            break;
        case 21:
            setBar(10, number(21) * 16.2, bars_[10].colour);
            break;
        case 24:
        case 25:
            setXInfo(0, info1_[24] + "Y " + info1_[25] + "M");
            break;
        case 26: {
            const long long v = wholeNumber(number(26));
            setXInfo(1, decimal(v / 12) + "'" + decimal(v % 12) + "\"");
            break;
        }
        case 28: {
            const double v = number(28);
            setXInfo(2, v == 0 ? "Good" : v == 1 ? "Neutral" : "Evil");
            break;
        }
        case 29: {
            const double v = number(29);
            xinfo2Colour_ = v == 0 ? rgb(0, 255, 0) : v == 1 ? rgb(255, 255, 0) : rgb(255, 0, 0);
            changes_.xinfo.set(2);
            break;
        }
        case 22:
            setXInfo(3, number(22) == 0 ? "<>" : "<RP>");
            break;
        case 53:
            setXInfo(4, PositionName(wholeNumber(number(53))));
            break;
        case 52:
            setXInfo(5, PositionName(wholeNumber(number(52))));
            break;
        default:
            break;
    }
}

}  // namespace kelpa
