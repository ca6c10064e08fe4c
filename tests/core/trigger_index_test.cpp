// The indexed matcher against a plain walk of every record, the reference
// reading, on many random tables and texts: the same records must
// fire in the same order with the same command texts, and a flag that does
// not exist must fail at the same record.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "common/lines.h"
#include "support/client_harness.h"
#include "triggers/trigger_store.h"

namespace kelpa {

// Shrinks the index's tables so that the sparse rows and colliding windows
// are walked too.
struct PatternIndexProbe {
    static void tune(TriggerStore& store, std::size_t denseBudget, unsigned filterWordsLog2) {
        store.index_.denseBudget_ = denseBudget;
        store.index_.filterWordsLog2_ = filterWordsLog2;
    }
    static bool onlyFoundLines(const TriggerStore& store) {
        return store.index_.onlyFoundLinesMatch(TriggerStore::kNormal);
    }
    static std::pair<std::size_t, std::size_t> window(const TriggerStore& store) {
        return {store.index_.keyLen_, store.index_.stride_};
    }
};

}  // namespace kelpa

namespace kelpa::test {
namespace {

// Actions read "<id> <op> <flag> $*": op s sets, c clears, n does nothing.
void applyAction(const std::string& command, FlagTable& flags) {
    const std::size_t sp = command.find(' ');
    if (command[sp + 1] != 'n') flags.set(std::stoi(command.substr(sp + 3)), command[sp + 1] == 's');
}

// A record fires when one of its first FlagGroupCount flag groups is all set
// (every flag of a group tested is read) and one of its first
// PatternGroupCount pattern groups all occurs; no groups hold always.
void plainMatch(const TriggerRecords& table, std::string_view text, FlagTable& flags, std::vector<std::string>& out) {
    auto isSet = [&](int v) {
        if (v < 0 || v >= FlagTable::kCount) throw RunError(340, "no such flag", "plain");
        return flags.value[static_cast<std::size_t>(v)];
    };
    auto occurs = [&](const std::string& p) { return !text.empty() && text.find(p) != std::string_view::npos; };
    for (const TriggerRecord& r : table) {
        bool flagsHold = r.FlagGroupCount == 0, textsHold = r.PatternGroupCount == 0;
        for (int g = 1; g <= r.FlagGroupCount && !flagsHold; ++g) {
            flagsHold = true;
            for (int v : r.flagGroup(g).Values) flagsHold = isSet(v) && flagsHold;
        }
        for (int g = 1; g <= r.PatternGroupCount && !textsHold; ++g)
            textsHold = std::all_of(r.patternGroup(g).Texts.begin(), r.patternGroup(g).Texts.end(), occurs);
        if (!flagsHold || !textsHold) continue;
        out.push_back(TriggerStore::commandText(r.Action, text));
        applyAction(out.back(), flags);
    }
}

struct Random {
    std::mt19937 rng;
    std::vector<std::string> pool;  // pattern texts made so far
    std::size_t longFrom = 4;        // texts of 4 bytes or more are at least this long
    int below(int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); }
    const std::string& earlier() { return pool[rng() % pool.size()]; }
    // Few bytes, so patterns share windows and often nearly match.
    std::string text(int maxLen) {
        static const char bytes[] = {'a', 'b', 'a', 'c', '\r', '\n', 'a', 'b', '$', '\xff', '\0', '\x80'};
        std::string s;
        for (int n = below(maxLen + 1); n > 0; --n) s += bytes[below(sizeof bytes)];
        return s;
    }
    // Short and long texts, and texts made from earlier ones: one inside
    // another, sharing its end or its start, or off by its last byte.
    std::string pattern() {
        std::string p = below(3) == 0 ? text(3) : text(14);
        if (!pool.empty() && below(2) == 0) {
            const std::string& q = earlier();
            const int way = below(4);
            p = way == 0   ? q.substr(0, static_cast<std::size_t>(below(static_cast<int>(q.size()) + 1)))
                : way == 1 ? p + q
                : way == 2 ? q + p
                : q.empty() ? p
                            : q.substr(0, q.size() - 1) + text(1);
        }
        while (p.size() >= 4 && p.size() < longFrom) p += text(1) + "a";
        pool.push_back(p);
        return p;
    }
    // Random bytes with pattern texts planted, some cut or changed.
    std::string chunk() {
        std::string s;
        for (int k = below(5); k > 0; --k)
            s += below(2) || pool.empty() ? text(8) : below(4) ? pattern() : earlier();
        return s;
    }
};

TriggerRecords randomTable(Random& r, int& nextId) {
    TriggerRecords table(static_cast<std::size_t>(r.below(30)));
    for (TriggerRecord& rec : table) {
        rec.FlagGroupCount = r.below(3);
        rec.FlagGroups.resize(static_cast<std::size_t>(r.below(4) + rec.FlagGroupCount));
        for (FlagGroup& g : rec.FlagGroups)
            for (int k = r.below(3); k > 0; --k) g.Values.push_back(r.below(40) == 0 ? 84 : r.below(6));
        rec.PatternGroupCount = r.below(4);
        rec.PatternGroups.resize(static_cast<std::size_t>(r.below(3) + rec.PatternGroupCount));
        for (PatternGroup& g : rec.PatternGroups)
            for (int k = r.below(4); k > 0; --k) g.Texts.push_back(r.pattern());
        rec.Action = std::to_string(nextId++) + " " + "scnn"[r.below(4)] + " " + std::to_string(r.below(6)) +
                     (r.below(2) ? " $*" : "");
    }
    return table;
}

template <typename F>
bool fails(F run) {
    try {
        run();
    } catch (const RunError&) {
        return true;
    }
    return false;
}

// Every record searches, every flag exists and every text is long, so that
// the line pass need look only at the lines where a text occurs.
void onlyLongTexts(Random& r, TriggerRecords& table) {
    for (TriggerRecord& rec : table) {
        for (FlagGroup& g : rec.FlagGroups)
            for (std::int32_t& v : g.Values) v = v == 84 ? 1 : v;
        rec.PatternGroupCount = std::max(rec.PatternGroupCount, 1);
        rec.PatternGroups.resize(std::max(rec.PatternGroups.size(), static_cast<std::size_t>(rec.PatternGroupCount) + 1));
        for (PatternGroup& g : rec.PatternGroups) {
            std::erase_if(g.Texts, [](const std::string& t) { return t.size() < PatternIndex::kLongText; });
            while (g.Texts.empty()) {
                std::string p = r.pattern();  // planted in the chunks, as the pool is
                if (p.size() >= PatternIndex::kLongText) g.Texts.push_back(p);
            }
        }
    }
}

// A store whose actions are gathered in `got` (and with `apply` set the flags
// as a run would), beside the flags and results of a plain walk.
struct Walked {
    FakePlatform fp;
    OutputWindow debugWindow;
    DebugChannel debug{debugWindow};
    FlagTable flags, plainFlags;
    std::vector<std::string> got, want;
    TriggerStore store;
    explicit Walked(bool apply)
        : store(fp.files, debug, flags, [this, apply](std::string command) {
              got.push_back(command);
              if (apply) applyAction(command, flags);
          }) {}
};

TEST(TriggerIndex, FiresWhatAWalkOfEveryRecordFiresOnRandomTablesAndTexts) {
    Random r{std::mt19937(20261123), {}, 4};
    int fired = 0, foundLinesOnly = 0;
    std::set<std::pair<std::size_t, std::size_t>> windows;  // length, stride
    for (int round = 0; round < 300; ++round) {
        Walked s(true);
        int id = 0;
        r.pool.clear();
        // The shortest text of 4 bytes or more sets the window and its step.
        r.longFrom = round % 2 ? 4 : static_cast<std::size_t>(5 + r.below(14));
        s.store.TriggerTable = randomTable(r, id);
        s.store.GlobalTriggerTable = randomTable(r, id);
        if (round % 4 == 3) {
            onlyLongTexts(r, s.store.TriggerTable);
            onlyLongTexts(r, s.store.GlobalTriggerTable);
        }
        // Every other round only the root has a full row of next states;
        // one round in three the bitset has 2 to 8 words, so that windows collide.
        PatternIndexProbe::tune(s.store, round % 2 ? PatternIndex::kDenseBudget : 1,
                                round % 3 ? 0 : static_cast<unsigned>(1 + r.below(4)));
        s.store.indexTables();
        windows.insert(PatternIndexProbe::window(s.store));
        foundLinesOnly += PatternIndexProbe::onlyFoundLines(s.store);
        for (int k = 0; k < 6; ++k) s.flags.set(k, r.below(2) == 0);
        s.plainFlags = s.flags;
        for (int chunk = 0; chunk < 20; ++chunk) {
            const std::string text = r.chunk();
            const bool gotError = fails([&] {
                s.store.T_Match(TriggerStore::kGlobal, text);
                // The road's pass over the whole chunk, or T_Match line by line.
                if (chunk % 2) return s.store.matchLines(text);
                LineCursor lines(text);
                for (std::string_view line; lines.next(line);) s.store.T_Match(TriggerStore::kNormal, line);
            });
            const bool wantError = fails([&] {
                plainMatch(s.store.GlobalTriggerTable, text, s.plainFlags, s.want);
                LineCursor lines(text);
                for (std::string_view line; lines.next(line);)
                    plainMatch(s.store.TriggerTable, line, s.plainFlags, s.want);
            });
            SCOPED_TRACE("round " + std::to_string(round) + " chunk " + std::to_string(chunk));
            ASSERT_EQ(gotError, wantError);
            ASSERT_EQ(s.got, s.want);  // and so the flags the actions set agree
        }
        fired += static_cast<int>(s.got.size());
    }
    EXPECT_GT(fired, 10000);  // the tables do fire, often
    EXPECT_GE(foundLinesOnly, 60);
    windows.erase({0, 1});  // no text of 4 bytes or more
    EXPECT_EQ(windows.size(), 12u);  // every window and step of a shortest text from 4 to 18 bytes
}

// A record that fires on one text and leaves the flags alone.
void addTextRecord(TriggerRecords& table, std::string text) {
    TriggerRecord r;
    r.PatternGroupCount = 1;
    r.PatternGroups.resize(2);
    r.PatternGroups[1].Texts = {std::move(text)};
    r.Action = std::to_string(table.size()) + " n 0 $*";
    table.push_back(r);
}

// Prose: lines of a few words, and trigger sets of phrases of those words
// with near misses that share all but the last byte, so that the keys meet
// their words and stems everywhere and whole families share a place. The
// shortest phrase decides the window and its step.
TEST(TriggerIndex, FiresWhatAWalkFiresOnPhrasesOfAFewWordsAndTheirNearMisses) {
    static const char* words[] = {"a", "on", "lie", "gold", "sword", "dragon", "between", "ancient"};
    std::mt19937 rng(7);
    auto word = [&] { return std::string(words[rng() % std::size(words)]); };
    int fired = 0;
    for (int round = 0; round < 40; ++round) {
        Walked s(false);
        const int phrases = 1 + static_cast<int>(rng() % 12);
        for (int k = 0; k < phrases; ++k) {
            std::string phrase = word() + " " + word();
            if (round % 3) phrase += " " + word();
            // The phrase and near misses: the last byte changed, or cut.
            const std::string stem = phrase.substr(0, phrase.size() - 1);
            for (const std::string& text : {phrase, stem, stem + "x", stem + "d", stem + "n", stem + "Q", stem + "t"})
                if (text.size() >= PatternIndex::kLongText) addTextRecord(s.store.TriggerTable, text);
        }
        // Some rounds also hold phrases across a line end, which the scan
        // may find before a phrase that ends earlier, and a short text, so
        // that every line is walked.
        for (int k = 0; round % 4 == 1 && k < 6; ++k)
            addTextRecord(s.store.TriggerTable, k ? word() + " " + word() + "\r\n" + word() : std::string("on"));
        s.store.indexTables();
        for (int chunk = 0; chunk < 10; ++chunk) {
            std::string text;
            for (int line = 0; line < 20; ++line) {
                for (int w = 0; w < 12; ++w) text += (w ? " " : "") + word();
                text += "\r\n";
            }
            text.resize(text.size() - rng() % 40);  // a read can end anywhere
            s.store.matchLines(text);
            LineCursor lines(text);
            for (std::string_view line; lines.next(line);)
                plainMatch(s.store.TriggerTable, line, s.plainFlags, s.want);
            ASSERT_EQ(s.got, s.want) << "round " << round << " chunk " << chunk;
        }
        fired += static_cast<int>(s.got.size());
    }
    EXPECT_GT(fired, 1000);
}

}  // namespace
}  // namespace kelpa::test
