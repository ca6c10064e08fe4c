// Which records of a table can fire on a text, found with one pass over the
// text instead of a search per record and pattern.
//
// A pass reports the non-empty pattern texts of both tables that occur in
// the text. Texts of four bytes or more are found through short windows
// of theirs: every first, second, third or fourth window of the text
// (the longer the shortest text, the wider the step) is hashed and tested
// in a bitset, and only the windows that pass are looked up and the text
// compared. The work per window does not depend on the byte before, so it
// runs at the processor's width instead of one memory latency a byte, and
// it barely grows with the number of texts. Shorter texts go into a small
// Aho-Corasick automaton, walked only when there are some. Each occurring
// text counts towards the groups that hold it, and a group whose distinct
// texts have all been counted holds. A record is a candidate when one of its
// tested groups holds, or when a group holds without any search (empty,
// or only empty texts and the text is not empty), or when its flag block
// names a flag that does not exist (the flag test must then still run, to
// end the chunk with its error). Candidates come back in table order, each with
// the result of its pattern test; the caller tests the flags at that
// moment.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "triggers/trigger_record.h"

namespace kelpa {

class PatternIndex {
public:
    static constexpr int kTables = 2;
    static constexpr std::size_t kDenseBudget = std::size_t{4} << 20;
    // Texts this long or longer go through the window filter.
    static constexpr std::size_t kLongText = 4;

    struct Candidate {
        std::int32_t record;
        bool patternsHold;
    };
    // A place where a text of kLongText bytes or more occurs.
    struct Found {
        std::uint32_t start, end;
        std::int32_t text;
    };

    // Built once per load, over both tables.
    void build(const TriggerRecords* const (&tables)[kTables], int flagCount);

    // The candidates of table `t` for `text`, in table order, into `out`.
    // The index's own scratch state is free again when this returns, so a
    // nested call (an action that injects text) is safe.
    void candidates(int t, std::string_view text, std::vector<Candidate>& out);

    // The line pass looks at the whole chunk once: findLong gives every
    // place where a long text occurs, by end; lineCandidates then takes a
    // line that starts at `offset` in that chunk with the places that end
    // within it (those that start before it are left out).
    void findLong(std::string_view chunk, std::vector<Found>& out);
    void lineCandidates(int t, std::string_view line, std::size_t offset, std::span<const Found> found,
                        std::vector<Candidate>& out);
    // Whether a line of table `t` where no long text occurs has no
    // candidates: no short texts, no record that holds without a search
    // or names a flag that does not exist.
    bool onlyFoundLinesMatch(int t) const {
        return nodes_.size() <= 1 && tables_[t].free.empty() && tables_[t].risky.empty();
    }


private:
    // Tests shrink these so that every path of the walk is taken.
    friend struct PatternIndexProbe;
    // Bounds the automaton's table of full rows, in entries.
    std::size_t denseBudget_ = kDenseBudget;
    // log2 of the window bitset's 64-bit words; 0 sizes it by the number of keys.
    unsigned filterWordsLog2_ = 0;

    struct Node {
        std::int32_t fail = 0;
        std::int32_t output = -1;   // text ending here, or -1
        std::int32_t nextOut = -1;  // nearest state down the fail chain with an output
        std::uint32_t edgeBegin = 0;
        std::uint32_t edgeCount = 0;
    };
    struct Group {
        std::int32_t record;
        std::int32_t need;  // distinct non-empty texts
    };
    struct FreeRecord {
        std::int32_t record;
        bool needsText;  // its free groups hold only empty texts
    };
    struct Table {
        std::vector<Group> groups;
        std::vector<std::uint32_t> postingBegin;  // per text id, into postings
        std::vector<std::int32_t> postings;       // group ids
        std::vector<FreeRecord> free;
        std::vector<std::int32_t> risky;  // names a flag that does not exist
        std::vector<std::uint32_t> groupStamp;
        std::vector<std::int32_t> groupHits;
        std::vector<std::uint32_t> recordStamp;
        std::uint32_t epoch = 0;
    };

    void buildAutomaton(const std::vector<std::string>& texts, std::size_t denseBudget);
    void buildFilter(const std::vector<std::string>& texts, unsigned filterWordsLog2);
    std::int32_t step(std::int32_t s, unsigned char c) const;
    // Row entries: a dense state as the start of its row, a deeper one as a
    // negative number; the low bit marks a state where an output chain
    // starts. The walk then needs no multiplication per byte.
    std::int32_t encode(std::int32_t state) const;
    std::int32_t decode(std::int32_t entry) const;
    void scan(std::string_view text);
    void scanShort(std::string_view text);
    // Calls report(text id, start, end) for every place a long text occurs.
    template <class Report>
    [[gnu::always_inline]] inline void scanLong(std::string_view text, Report&& report);
    // findLong's work, built once for any x86-64 processor and once more
    // for one with BMI2; findLong picks.
    [[gnu::always_inline]] inline void findLongBody(std::string_view chunk, std::vector<Found>& out);
    void findLongBmi2(std::string_view chunk, std::vector<Found>& out);
    template <class Report>
    void verify(const unsigned char* text, std::size_t size, std::size_t at, std::uint64_t key, std::uint64_t hash,
                Report& report);
    void startSeen();
    void see(std::int32_t id);
    void collect(Table& tb, bool textEmpty, std::vector<Candidate>& out);

    // The window filter over the texts of kLongText bytes or more. A key
    // is a window of keyLen_ bytes, as they lie in memory, in a 64-bit word
    // with the other bytes masked off; each text has one at each of
    // stride_ neighbouring offsets, where its windows look rarest in prose
    // (keyOffset). The top bits of a key's hash pick one bit of a bitset,
    // which must be set. A window that passes finds, in an open table, each
    // place (offset in the text, length) where its key stands in some text,
    // one after another along the key's probe. A place carries a check: one
    // word of the text (the bytes at checkAt, all of a text shorter than 8)
    // masked to the bytes that every text of the place shares; most windows
    // that are a key stand where no text does, and this turns them away
    // with one load. Past the check, the text that would stand there is
    // looked up whole in a second open table, by its first and last 8 bytes
    // and length: texts that share a window (near misses of one another,
    // phrases with the same words) cost one lookup a place, not one
    // comparison each. A bitset of the texts' hashes, small enough to stay
    // in the first-level cache, turns away most of those before the table
    // is read.
    struct Place {
        std::uint64_t key = 0;
        std::uint64_t check = 0, checkMask = 0;
        std::uint32_t offset = 0;  // of the window in the text
        std::uint32_t length = 0;  // 0: a free slot
        std::uint32_t checkAt = 0;
        std::uint32_t last = 0;  // the key's last place along its probe
    };
    // Where the `stride` key windows of a text begin.
    static std::size_t keyOffset(std::string_view text, std::size_t keyLen, std::size_t stride);
    static Place placeOf(std::span<const std::string_view> family, std::uint32_t offset, std::size_t keyLen);
    struct TextSlot {
        std::uint64_t head = 0, tail = 0;  // first and last bytes, up to 8 each
        std::uint32_t begin = 0;           // into textBytes_
        std::uint32_t length = 0;          // 0: a free slot
        std::int32_t text = -1;
    };
    std::size_t keyLen_ = 0;  // 4 to 8; 0 without long texts
    std::size_t stride_ = 1;
    std::uint64_t keyMask_ = 0;
    std::vector<std::uint64_t> filter_;
    unsigned filterShift_ = 64;
    unsigned placeShift_ = 64;
    std::vector<Place> places_;
    std::vector<std::uint64_t> textFilter_;
    unsigned textShift_ = 64;
    std::vector<TextSlot> textSlots_;
    std::vector<std::uint32_t> textBegin_;   // per text id, into textBytes_
    std::string textBytes_;

    // States are numbered breadth first. The first `denseStates_` have a
    // full row of next states over the byte classes, so that the common
    // case is one lookup per byte; deeper states, if the rows would grow
    // too large, follow their fail links down to a dense one.
    std::vector<Node> nodes_;
    std::vector<std::int32_t> firstOut_;  // per state: the first state of its output chain
    std::vector<unsigned char> edgeByte_;
    std::vector<std::int32_t> edgeTarget_;
    std::uint8_t classOf_[256] = {};
    std::size_t classes_ = 1;  // even, so that row starts leave the low bit free
    std::size_t denseStates_ = 0;
    std::vector<std::int32_t> dense_;
    std::vector<std::uint32_t> seenStamp_;
    std::uint32_t seenEpoch_ = 0;
    std::vector<std::int32_t> seen_;
    Table tables_[kTables];
};

}  // namespace kelpa
