#include "triggers/pattern_index.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <tuple>
#include <unordered_map>

namespace kelpa {

namespace {

struct TrieNode {
    std::vector<std::pair<unsigned char, std::int32_t>> children;  // sorted by byte
    std::int32_t output = -1;
};

std::int32_t findChild(const TrieNode& n, unsigned char c) {
    auto it = std::lower_bound(n.children.begin(), n.children.end(), c,
                               [](const auto& e, unsigned char b) { return e.first < b; });
    return it != n.children.end() && it->first == c ? it->second : -1;
}

// Fibonacci hashing: the top bits of the product depend on every key byte.
constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15u;

std::uint64_t load64(const unsigned char* p) {
    std::uint64_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

// The texts' bitset: the top bits of a hash pick its word (at most
// 2^kMaxWordBits of them); the 12 bits below those pick two bits in it.
constexpr unsigned kMaxWordBits = 14;
// The window bitset has at most 2^kMaxFilterBits bits, one a key.
constexpr unsigned kMaxFilterBits = 20;
std::size_t filterWord(std::uint64_t h, std::size_t mask) { return static_cast<std::size_t>(h >> (64 - kMaxWordBits)) & mask; }
bool filterPasses(std::uint64_t word, std::uint64_t h) {
    return (word >> (h >> (64 - kMaxWordBits - 6) & 63) & word >> (h >> (64 - kMaxWordBits - 12) & 63) & 1) != 0;
}
std::uint64_t filterBits(std::uint64_t h) {
    return std::uint64_t{1} << (h >> (64 - kMaxWordBits - 6) & 63) |
           std::uint64_t{1} << (h >> (64 - kMaxWordBits - 12) & 63);
}

// The first and the last bytes of a text, up to 8 each, as words, and a
// hash of both with the length: enough to tell apart texts that share a
// window, without reading the whole text.
std::uint64_t headOf(const unsigned char* text, std::size_t length) {
    if (length >= 8) return load64(text);
    unsigned char bytes[8] = {};
    std::memcpy(bytes, text, length);
    return load64(bytes);
}
std::uint64_t tailOf(const unsigned char* text, std::size_t length) {
    return length >= 8 ? load64(text + length - 8) : headOf(text, length);
}
std::uint64_t textHash(std::uint64_t head, std::uint64_t tail, std::size_t length) {
    return ((head * kMultiplier) ^ tail ^ length) * 0xC2B2AE3D27D4EB4Fu;
}

// Bytes of a word: letters, digits and anything beyond ASCII.
bool wordByte(unsigned char c) { return c >= 0x80 || (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z'); }

// How rare a window is likely to be in prose: the bytes of words other than
// its longest piece of one. A window inside a single word (or a word with
// the blanks around it) meets every use of that word; one that spans the
// end of a word and the start of the next meets only that pair.
int rarity(std::string_view window) {
    int letters = 0, run = 0, longest = 0;
    for (char ch : window) {
        run = wordByte(static_cast<unsigned char>(ch)) ? run + 1 : 0;
        letters += run != 0;
        longest = std::max(longest, run);
    }
    return letters - longest;
}

unsigned log2Ceil(std::size_t n) { return n <= 1 ? 0u : static_cast<unsigned>(std::bit_width(n - 1)); }

}  // namespace

void PatternIndex::build(const TriggerRecords* const (&tables)[kTables], int flagCount) {
    std::unordered_map<std::string_view, std::int32_t> ids;
    std::vector<std::string> texts;
    auto idOf = [&](const std::string& t) {
        auto [it, added] = ids.try_emplace(t, static_cast<std::int32_t>(texts.size()));
        if (added) texts.push_back(t);
        return it->second;
    };

    std::vector<std::vector<std::int32_t>> groupTexts[kTables];
    for (int t = 0; t < kTables; ++t) {
        Table& tb = tables_[t];
        tb = Table{};
        const TriggerRecords& table = *tables[t];
        for (std::size_t i = 0; i < table.size(); ++i) {
            const TriggerRecord& r = table[i];
            const auto rec = static_cast<std::int32_t>(i);
            bool risky = false;
            for (int g = 1; g <= r.FlagGroupCount; ++g)
                for (std::int32_t v : r.flagGroup(g).Values) risky = risky || v < 0 || v >= flagCount;
            if (risky) tb.risky.push_back(rec);

            bool free = r.PatternGroupCount <= 0, freeNeedsText = true;
            for (int g = 1; g <= r.PatternGroupCount; ++g) {
                const PatternGroup& group = r.patternGroup(g);
                std::vector<std::int32_t> distinct;
                for (const std::string& text : group.Texts)
                    if (!text.empty()) distinct.push_back(idOf(text));
                std::sort(distinct.begin(), distinct.end());
                distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
                if (distinct.empty()) {
                    // Holds without a search: always when empty, on any
                    // non-empty text when it holds only empty texts.
                    free = true;
                    freeNeedsText = freeNeedsText && group.Count() > 0;
                    continue;
                }
                tb.groups.push_back({rec, static_cast<std::int32_t>(distinct.size())});
                groupTexts[t].push_back(std::move(distinct));
            }
            if (r.PatternGroupCount <= 0) freeNeedsText = false;
            if (free) tb.free.push_back({rec, freeNeedsText});
        }
        tb.recordStamp.assign(table.size(), 0);
        tb.groupStamp.assign(tb.groups.size(), 0);
        tb.groupHits.assign(tb.groups.size(), 0);
    }

    for (int t = 0; t < kTables; ++t) {
        Table& tb = tables_[t];
        tb.postingBegin.assign(texts.size() + 1, 0);
        for (const auto& d : groupTexts[t])
            for (std::int32_t id : d) ++tb.postingBegin[static_cast<std::size_t>(id) + 1];
        for (std::size_t k = 1; k < tb.postingBegin.size(); ++k) tb.postingBegin[k] += tb.postingBegin[k - 1];
        tb.postings.assign(tb.postingBegin.back(), 0);
        std::vector<std::uint32_t> fill(tb.postingBegin.begin(), tb.postingBegin.end() - 1);
        for (std::size_t g = 0; g < groupTexts[t].size(); ++g)
            for (std::int32_t id : groupTexts[t][g]) tb.postings[fill[static_cast<std::size_t>(id)]++] = static_cast<std::int32_t>(g);
    }

    seenStamp_.assign(texts.size(), 0);
    seenEpoch_ = 0;
    seen_.clear();
    buildAutomaton(texts, denseBudget_);
    buildFilter(texts, filterWordsLog2_);
}

void PatternIndex::buildFilter(const std::vector<std::string>& texts, unsigned filterWordsLog2) {
    keyLen_ = 0;
    stride_ = 1;
    filter_.clear();
    places_.clear();
    textSlots_.clear();
    textFilter_.clear();
    textBytes_.clear();
    textBegin_.assign(1, 0);
    std::size_t shortest = std::numeric_limits<std::size_t>::max();
    for (std::size_t id = 0; id < texts.size(); ++id) {
        textBytes_ += texts[id];
        textBegin_.push_back(static_cast<std::uint32_t>(textBytes_.size()));
        if (texts[id].size() >= kLongText) shortest = std::min(shortest, texts[id].size());
    }
    if (shortest == std::numeric_limits<std::size_t>::max()) return;

    // Every text has a key window at `stride_` neighbouring offsets, so a
    // scan that tests only every stride_-th window of the text still meets
    // each occurrence, exactly once. A wider stride costs keys, a shorter
    // window more windows that pass by chance; the shortest text decides.
    stride_ = std::clamp<std::size_t>((shortest - 2) / 2, 1, 8);
    keyLen_ = std::min<std::size_t>(8, shortest - stride_ + 1);
    unsigned char bytes[8] = {};
    std::memset(bytes, 0xff, keyLen_);
    keyMask_ = load64(bytes);
    struct Keyed {
        std::uint64_t key;
        std::uint32_t offset, length;
        std::int32_t text;
    };
    std::vector<Keyed> keyed;
    std::size_t longTexts = 0;
    for (std::size_t id = 0; id < texts.size(); ++id) {
        const std::string& t = texts[id];
        if (t.size() < kLongText) continue;
        ++longTexts;
        const std::size_t first = keyOffset(t, keyLen_, stride_);
        for (std::size_t j = 0; j < stride_; ++j) {
            unsigned char window[8] = {};
            std::memcpy(window, t.data() + first + j, keyLen_);
            keyed.push_back({load64(window), static_cast<std::uint32_t>(first + j),
                             static_cast<std::uint32_t>(t.size()), static_cast<std::int32_t>(id)});
        }
    }
    std::sort(keyed.begin(), keyed.end(), [](const Keyed& a, const Keyed& b) {
        return std::tie(a.key, a.offset, a.length, a.text) < std::tie(b.key, b.offset, b.length, b.text);
    });
    // One place for each run of texts with the same key at the same offset
    // and of the same length, with the check word of its shared bytes.
    std::vector<Place> places;
    for (std::size_t k = 0; k < keyed.size();) {
        std::size_t end = k + 1;
        while (end < keyed.size() && keyed[end].key == keyed[k].key && keyed[end].offset == keyed[k].offset &&
               keyed[end].length == keyed[k].length)
            ++end;
        std::vector<std::string_view> family;
        for (std::size_t m = k; m < end; ++m) family.push_back(texts[static_cast<std::size_t>(keyed[m].text)]);
        places.push_back(placeOf(family, keyed[k].offset, keyLen_));
        places.back().key = keyed[k].key;
        k = end;
    }
    std::size_t keys = 0;
    for (std::size_t k = 0; k < places.size(); ++k) keys += k == 0 || places[k].key != places[k - 1].key;

    // One bit a key, one set in 128 or fewer: a window that is no key
    // passes about one time in 128 or less. 16 KB for about a thousand
    // keys, which stays in the first-level cache; 128 KB at most.
    const unsigned bits =
        filterWordsLog2 ? filterWordsLog2 + 6 : std::clamp(log2Ceil(keys) + 7, 9u, kMaxFilterBits);
    filter_.assign(std::size_t{1} << (bits - 6), 0);
    filterShift_ = 64 - bits;
    // The places of a key stand one after another along its probe, the
    // last one marked. Nearly every window that passes the filter is a key
    // and reads this table: at most a quarter full, the first slot read is
    // most often the key's own. The text table, read far less often, is at
    // most two thirds full.
    const unsigned placeBits = std::max(1u, log2Ceil(places.size() * 4));
    placeShift_ = 64 - placeBits;
    places_.assign(std::size_t{1} << placeBits, Place{});
    const std::size_t placeMask = places_.size() - 1;
    for (std::size_t k = 0; k < places.size(); ++k) {
        const std::uint64_t h = places[k].key * kMultiplier;
        filter_[(h >> filterShift_) >> 6] |= std::uint64_t{1} << ((h >> filterShift_) & 63);
        places[k].last = k + 1 == places.size() || places[k + 1].key != places[k].key;
        std::size_t i = h >> placeShift_;
        while (places_[i].length != 0) i = (i + 1) & placeMask;
        places_[i] = places[k];
    }
    // Four texts a word: about eight bits of 64 set, so a place where no
    // text stands passes about one time in 60.
    textFilter_.assign(std::size_t{1} << std::min(kMaxWordBits, log2Ceil(longTexts / 4)), 0);
    const unsigned textBits = std::max(1u, log2Ceil(longTexts + longTexts / 2));
    textShift_ = 64 - textBits;
    textSlots_.assign(std::size_t{1} << textBits, TextSlot{});
    const std::size_t textMask = textSlots_.size() - 1;
    for (std::size_t id = 0; id < texts.size(); ++id) {
        const std::string& t = texts[id];
        if (t.size() < kLongText) continue;
        const auto* data = reinterpret_cast<const unsigned char*>(t.data());
        TextSlot slot{headOf(data, t.size()), tailOf(data, t.size()), textBegin_[id],
                      static_cast<std::uint32_t>(t.size()), static_cast<std::int32_t>(id)};
        const std::uint64_t h = textHash(slot.head, slot.tail, slot.length);
        textFilter_[filterWord(h, textFilter_.size() - 1)] |= filterBits(h);
        std::size_t i = h >> textShift_;
        while (textSlots_[i].length != 0) i = (i + 1) & textMask;
        textSlots_[i] = slot;
    }
}

std::size_t PatternIndex::keyOffset(std::string_view text, std::size_t keyLen, std::size_t stride) {
    // The run of `stride` neighbouring windows whose least rare window is
    // the rarest; the first such run, so that texts that differ only in
    // their last bytes share their keys.
    std::size_t best = 0;
    int bestRarity = -1;
    for (std::size_t first = 0; first + stride - 1 + keyLen <= text.size(); ++first) {
        int r = std::numeric_limits<int>::max();
        for (std::size_t j = 0; j < stride; ++j) r = std::min(r, rarity(text.substr(first + j, keyLen)));
        if (r > bestRarity) {
            bestRarity = r;
            best = first;
        }
    }
    return best;
}

PatternIndex::Place PatternIndex::placeOf(std::span<const std::string_view> family, std::uint32_t offset,
                                          std::size_t keyLen) {
    const std::string_view first = family.front();
    const auto length = static_cast<std::uint32_t>(first.size());
    auto shared = [&](std::size_t i) {
        for (std::string_view t : family)
            if (t[i] != first[i]) return false;
        return true;
    };
    // The 8 bytes (all of a shorter text) that hold the most shared bytes
    // outside the key window: those tell the most that the key did not.
    const std::size_t width = std::min<std::size_t>(8, length);
    std::size_t bestAt = 0;
    int bestCount = -1;
    for (std::size_t at = 0; at + width <= length; ++at) {
        int count = 0;
        for (std::size_t i = at; i < at + width; ++i) count += (i < offset || i >= offset + keyLen) && shared(i);
        if (count > bestCount) {
            bestCount = count;
            bestAt = at;
        }
    }
    unsigned char value[8] = {}, mask[8] = {};
    for (std::size_t i = 0; i < width; ++i)
        if (shared(bestAt + i)) {
            value[i] = static_cast<unsigned char>(first[bestAt + i]);
            mask[i] = 0xff;
        }
    Place place;
    place.check = load64(value);
    place.checkMask = load64(mask);
    place.offset = offset;
    place.length = length;
    place.checkAt = static_cast<std::uint32_t>(bestAt);
    return place;
}

void PatternIndex::buildAutomaton(const std::vector<std::string>& texts, std::size_t denseBudget) {
    std::vector<TrieNode> trie(1);
    bool used[256] = {};
    for (std::size_t id = 0; id < texts.size(); ++id) {
        if (texts[id].size() >= kLongText) continue;
        std::int32_t s = 0;
        for (char ch : texts[id]) {
            const auto c = static_cast<unsigned char>(ch);
            used[c] = true;
            std::int32_t next = findChild(trie[static_cast<std::size_t>(s)], c);
            if (next < 0) {
                next = static_cast<std::int32_t>(trie.size());
                auto& kids = trie[static_cast<std::size_t>(s)].children;
                kids.insert(std::lower_bound(kids.begin(), kids.end(), c,
                                             [](const auto& e, unsigned char b) { return e.first < b; }),
                            {c, next});
                trie.emplace_back();
            }
            s = next;
        }
        trie[static_cast<std::size_t>(s)].output = static_cast<std::int32_t>(id);
    }

    // Bytes that stand in no pattern share class 0.
    classes_ = 1;
    for (int c = 0; c < 256; ++c) classOf_[c] = used[c] ? static_cast<std::uint8_t>(classes_++) : 0;
    classes_ += classes_ % 2;

    // Breadth-first numbering: a state's fail target gets a lower number.
    std::vector<std::int32_t> order{0}, number(trie.size(), 0);
    for (std::size_t q = 0; q < order.size(); ++q)
        for (auto [c, v] : trie[static_cast<std::size_t>(order[q])].children) {
            number[static_cast<std::size_t>(v)] = static_cast<std::int32_t>(order.size());
            order.push_back(v);
        }
    nodes_.assign(trie.size(), Node{});
    edgeByte_.clear();
    edgeTarget_.clear();
    for (std::size_t n = 0; n < order.size(); ++n) {
        const TrieNode& t = trie[static_cast<std::size_t>(order[n])];
        nodes_[n].output = t.output;
        nodes_[n].edgeBegin = static_cast<std::uint32_t>(edgeByte_.size());
        nodes_[n].edgeCount = static_cast<std::uint32_t>(t.children.size());
        for (auto [c, v] : t.children) {
            edgeByte_.push_back(c);
            edgeTarget_.push_back(number[static_cast<std::size_t>(v)]);
        }
    }

    denseStates_ = std::min(nodes_.size(), std::max<std::size_t>(1, denseBudget / classes_));
    dense_.assign(denseStates_ * classes_, 0);
    firstOut_.assign(nodes_.size(), -1);
    for (std::size_t u = 0; u < nodes_.size(); ++u) {
        // Rows are copied from the fail target's finished row, then the
        // state's own edges are written over it (below).
        Node& nu = nodes_[u];
        if (u < denseStates_) {
            std::int32_t* row = &dense_[u * classes_];
            if (u != 0) {
                const std::int32_t* failRow = &dense_[static_cast<std::size_t>(nu.fail) * classes_];
                std::copy(failRow, failRow + classes_, row);
            }
        }
        // Children get their fail links and output chains before any row
        // points at them: they are numbered after u.
        for (std::uint32_t e = 0; e < nu.edgeCount; ++e) {
            const auto v = static_cast<std::size_t>(edgeTarget_[nu.edgeBegin + e]);
            Node& nv = nodes_[v];
            nv.fail = u == 0 ? 0 : step(nu.fail, edgeByte_[nu.edgeBegin + e]);
            const Node& f = nodes_[static_cast<std::size_t>(nv.fail)];
            nv.nextOut = f.output >= 0 ? nv.fail : f.nextOut;
            firstOut_[v] = nv.output >= 0 ? static_cast<std::int32_t>(v) : nv.nextOut;
        }
        if (u < denseStates_) {
            std::int32_t* row = &dense_[u * classes_];
            for (std::uint32_t e = 0; e < nu.edgeCount; ++e)
                row[classOf_[edgeByte_[nu.edgeBegin + e]]] = encode(edgeTarget_[nu.edgeBegin + e]);
        }
    }
}

std::int32_t PatternIndex::encode(std::int32_t state) const {
    const auto st = static_cast<std::size_t>(state);
    const std::int32_t mark = firstOut_[st] >= 0 ? 1 : 0;
    if (st < denseStates_) return static_cast<std::int32_t>(st * classes_) | mark;
    return -2 * (state + 1) | mark;
}

std::int32_t PatternIndex::decode(std::int32_t entry) const {
    const std::int32_t base = entry & ~1;
    return base >= 0 ? static_cast<std::int32_t>(static_cast<std::size_t>(base) / classes_) : -(base / 2) - 1;
}

std::int32_t PatternIndex::step(std::int32_t s, unsigned char c) const {
    while (static_cast<std::size_t>(s) >= denseStates_) {
        const Node& n = nodes_[static_cast<std::size_t>(s)];
        const unsigned char* b = edgeByte_.data() + n.edgeBegin;
        const unsigned char* e = b + n.edgeCount;
        const unsigned char* it = n.edgeCount <= 8 ? std::find(b, e, c) : std::lower_bound(b, e, c);
        if (it != e && *it == c) return edgeTarget_[n.edgeBegin + static_cast<std::size_t>(it - b)];
        s = n.fail;
    }
    return decode(dense_[static_cast<std::size_t>(s) * classes_ + classOf_[c]]);
}

void PatternIndex::startSeen() {
    seen_.clear();
    if (++seenEpoch_ == 0) {
        std::fill(seenStamp_.begin(), seenStamp_.end(), 0);
        seenEpoch_ = 1;
    }
}

void PatternIndex::see(std::int32_t id) {
    std::uint32_t& stamp = seenStamp_[static_cast<std::size_t>(id)];
    if (stamp == seenEpoch_) return;
    stamp = seenEpoch_;
    seen_.push_back(id);
}

void PatternIndex::scan(std::string_view text) {
    startSeen();
    if (keyLen_ != 0 && text.size() >= keyLen_)
        scanLong(text, [this](std::int32_t id, std::size_t, std::size_t) { see(id); });
    if (nodes_.size() > 1) scanShort(text);
}

void PatternIndex::findLongBody(std::string_view chunk, std::vector<Found>& out) {
    out.clear();
    if (keyLen_ == 0 || chunk.size() < keyLen_) return;
    scanLong(chunk, [&out](std::int32_t id, std::size_t start, std::size_t end) {
        out.push_back({static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(end), id});
    });
    // Found by window, which with a stride is not quite by end.
    auto byEnd = [](const Found& a, const Found& b) { return a.end < b.end; };
    if (!std::is_sorted(out.begin(), out.end(), byEnd)) std::sort(out.begin(), out.end(), byEnd);
}

// Inlined (see the class), so that the BMI2 copy of findLong has a scan built for BMI2.
template <class Report>
void PatternIndex::scanLong(std::string_view text, Report&& report) {
    const auto* s = reinterpret_cast<const unsigned char*>(text.data());
    const std::size_t n = text.size(), stride = stride_;
    const std::uint64_t mask = keyMask_;
    const std::uint64_t* filter = filter_.data();
    const unsigned shift = filterShift_;
    auto passes = [filter, shift](std::uint64_t h) {
        const std::uint64_t bit = h >> shift;
        return static_cast<unsigned>(filter[bit >> 6] >> (bit & 63)) & 1u;
    };
    std::size_t p = 0;
    // A block of 64 windows is tested without a branch a window, each
    // giving one bit of a word; only the few that pass are looked up,
    // after the block.
    constexpr std::size_t kBlock = 64;
    while (p + 8 <= n) {
        const std::size_t windows =
            p + (kBlock - 1) * stride + 8 <= n ? kBlock : (n - 8 - p) / stride + 1;
        // From the last window down, so that the first ends in the low bit
        // and each step is a doubling, not a shift by a count.
        std::uint64_t hits = 0;
        const unsigned char* block = s + p;
        for (std::size_t w = windows; w-- > 0;) hits = hits * 2 + passes((load64(block + w * stride) & mask) * kMultiplier);
        for (; hits != 0; hits &= hits - 1) {
            const std::size_t at = p + static_cast<std::size_t>(std::countr_zero(hits)) * stride;
            const std::uint64_t key = load64(s + at) & mask;
            verify(s, n, at, key, key * kMultiplier, report);
        }
        p += windows * stride;
    }
    // The last windows, from a copy with room for the 64-bit loads.
    if (p + keyLen_ <= n) {
        unsigned char tail[16] = {};
        std::memcpy(tail, s + p, n - p);
        for (std::size_t q = 0; p + keyLen_ <= n; p += stride, q += stride) {
            const std::uint64_t key = load64(tail + q) & mask;
            const std::uint64_t h = key * kMultiplier;
            if (passes(h)) verify(s, n, p, key, h, report);
        }
    }
}

template <class Report>
void PatternIndex::verify(const unsigned char* text, std::size_t size, std::size_t at, std::uint64_t key,
                          std::uint64_t hash, Report& report) {
    const std::size_t textMask = textSlots_.size() - 1;
    auto tryPlace = [&](const Place& place) {
        // The text must start and end inside the one searched.
        if (place.offset > at || place.length > size - (at - place.offset)) return;
        const std::size_t start = at - place.offset;
        const std::uint64_t word =
            place.length >= 8 ? load64(text + start + place.checkAt) : headOf(text + start, place.length);
        if ((word & place.checkMask) != place.check) return;
        const std::uint64_t head = headOf(text + start, place.length), tail = tailOf(text + start, place.length);
        const std::uint64_t h = textHash(head, tail, place.length);
        if (!filterPasses(textFilter_[filterWord(h, textFilter_.size() - 1)], h)) return;
        for (std::size_t i = h >> textShift_; textSlots_[i].length != 0; i = (i + 1) & textMask) {
            const TextSlot& t = textSlots_[i];
            if (t.head != head || t.tail != tail || t.length != place.length) continue;
            if (t.length <= 16 || std::memcmp(text + start, textBytes_.data() + t.begin, t.length) == 0) {
                report(t.text, start, start + t.length);
                return;  // texts are distinct: no other one stands here
            }
        }
    };
    const std::size_t placeMask = places_.size() - 1;
    for (std::size_t r = hash >> placeShift_; places_[r].length != 0; r = (r + 1) & placeMask) {
        const Place& place = places_[r];
        if (place.key != key) continue;
        tryPlace(place);
        if (place.last) return;
    }
}

// Each window of the scan shifts twice by a count known only at run time;
// with BMI2 each such shift is one instruction instead of three. The body
// is inlined into two functions, one built for BMI2, and the processor's
// answer is asked once.
#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#define KELPA_SCAN_DISPATCH 1
__attribute__((target("bmi2")))
#endif
void PatternIndex::findLongBmi2(std::string_view chunk, std::vector<Found>& out) {
    findLongBody(chunk, out);
}

void PatternIndex::findLong(std::string_view chunk, std::vector<Found>& out) {
#ifdef KELPA_SCAN_DISPATCH
    static const bool bmi2 = __builtin_cpu_supports("bmi2");
    if (bmi2) return findLongBmi2(chunk, out);
#endif
    findLongBody(chunk, out);
}

void PatternIndex::scanShort(std::string_view text) {
    const std::int32_t* dense = dense_.data();
    std::int32_t entry = 0;  // the root's row
    for (char ch : text) {
        const auto c = static_cast<unsigned char>(ch);
        const std::int32_t base = entry & ~1;
        entry = base >= 0 ? dense[base + classOf_[c]] : encode(step(decode(base), c));
        if (!(entry & 1)) continue;
        for (std::int32_t o = firstOut_[static_cast<std::size_t>(decode(entry))]; o >= 0;
             o = nodes_[static_cast<std::size_t>(o)].nextOut)
            see(nodes_[static_cast<std::size_t>(o)].output);
    }
}

void PatternIndex::candidates(int t, std::string_view text, std::vector<Candidate>& out) {
    Table& tb = tables_[t];
    if (!text.empty() && !tb.groups.empty()) scan(text);
    else seen_.clear();
    collect(tb, text.empty(), out);
}

void PatternIndex::lineCandidates(int t, std::string_view line, std::size_t offset, std::span<const Found> found,
                                  std::vector<Candidate>& out) {
    Table& tb = tables_[t];
    seen_.clear();
    if (!line.empty() && !tb.groups.empty() && (!found.empty() || nodes_.size() > 1)) {
        startSeen();
        for (const Found& f : found)
            if (f.start >= offset) see(f.text);
        if (nodes_.size() > 1) scanShort(line);
    }
    collect(tb, line.empty(), out);
}

void PatternIndex::collect(Table& tb, bool textEmpty, std::vector<Candidate>& out) {
    out.clear();
    // Most lines of a flood: nothing occurs and nothing holds without a search.
    if (seen_.empty() && tb.free.empty() && tb.risky.empty()) return;
    if (++tb.epoch == 0) {
        std::fill(tb.groupStamp.begin(), tb.groupStamp.end(), 0);
        std::fill(tb.recordStamp.begin(), tb.recordStamp.end(), 0);
        tb.epoch = 1;
    }
    const std::uint32_t epoch = tb.epoch;
    auto take = [&](std::int32_t rec, bool holds) {
        std::uint32_t& stamp = tb.recordStamp[static_cast<std::size_t>(rec)];
        if (stamp == epoch) return;
        stamp = epoch;
        out.push_back({rec, holds});
    };
    for (std::int32_t id : seen_) {
        const std::uint32_t end = tb.postingBegin[static_cast<std::size_t>(id) + 1];
        for (std::uint32_t p = tb.postingBegin[static_cast<std::size_t>(id)]; p < end; ++p) {
            const auto g = static_cast<std::size_t>(tb.postings[p]);
            if (tb.groupStamp[g] != epoch) {
                tb.groupStamp[g] = epoch;
                tb.groupHits[g] = 0;
            }
            if (++tb.groupHits[g] == tb.groups[g].need) take(tb.groups[g].record, true);
        }
    }
    for (const FreeRecord& f : tb.free)
        if (!f.needsText || !textEmpty) take(f.record, true);
    for (std::int32_t rec : tb.risky) take(rec, false);
    if (out.size() > 1)
        std::sort(out.begin(), out.end(), [](const Candidate& a, const Candidate& b) { return a.record < b.record; });
}

}  // namespace kelpa
