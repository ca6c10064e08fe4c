#include "command/variables.h"

#include <algorithm>
#include <queue>

#include "command/words.h"
#include "common/numbers.h"
#include "common/text.h"

namespace kelpa {

int VariableTable::S_FindVal(const std::string& name) const {
    const auto it = byName_.find(name);
    return it == byName_.end() ? VariableCount() + 1 : it->second;
}

void VariableTable::S_SetVal(const std::string& name, const std::string& value) {
    // The clock is read only for the debug line: a trigger that counts
    // with #math sets a variable on every firing.
    const int started = debug_.enabled ? clock_.secondsSinceMidnight() : 0;
    const int n = S_FindVal(name);
    if (n > VariableCount()) {
        Variables.push_back({name, value});
        byName_.emplace(name, n);
        addName(name, n);
    } else {
        Variables[static_cast<std::size_t>(n - 1)].Value = value;
    }
    if (!debug_.enabled) return;
    int took = clock_.secondsSinceMidnight() - started;
    if (took < 0) took += 86400;
    debug_.DebugLog("Setting value of " + decimal(n) + " " + name + " to " + value + "  operation took " +
                    numberText(took) + " seconds.");
}

void VariableTable::clear() {
    Variables.clear();
    byName_.clear();
    trie_.assign(1, Node{});
    percentInName_ = false;
}

int VariableTable::child(int node, unsigned char c) const {
    for (const auto& [k, to] : trie_[static_cast<std::size_t>(node)].next)
        if (k == c) return to;
    return -1;
}

void VariableTable::addName(const std::string& name, int entry) {
    if (name.find('%') != std::string::npos) percentInName_ = true;
    int node = 0;
    for (unsigned char c : name) {
        int next = child(node, c);
        if (next < 0) {
            next = static_cast<int>(trie_.size());
            trie_[static_cast<std::size_t>(node)].next.emplace_back(c, next);
            trie_.emplace_back();
        }
        node = next;
    }
    trie_[static_cast<std::size_t>(node)].entry = entry;
}

std::string VariableTable::expandByPasses(std::string_view text) const {
    std::string out(text);
    for (const Entry& e : Variables) {
        const std::string ref = "%" + e.Name;
        if (replacedSize(out, ref, e.Value) > expansionLimit(text.size())) {
            debug_.DebugLog("Text too long after expansion, left as it was");
            return std::string(text);
        }
        out = replaceAll(out, ref, e.Value);
    }
    return out;
}

struct ExpansionScratch {
    struct Piece {
        std::string_view text;
        int next = -1;
    };
    struct Token {
        int head = -1, last = -1;  // its pieces: the text behind its "%"
        int prev = -1, next = -1;
        unsigned generation = 0;
        int touchedIn = 0;  // the pass that last changed it, while waiting
        bool alive = true;
    };
    std::vector<Token> tokens;
    std::vector<Piece> pieces;
};

VariableTable::VariableTable(DebugChannel& debug, const Clock& clock)
    : debug_(debug), clock_(clock), scratch_(std::make_unique<ExpansionScratch>()) {
    clear();
}

VariableTable::~VariableTable() = default;

// When no name holds "%", a reference is "%" and a name, so each "%" of the
// text heads at most one match per pass and matches never overlap. The text
// is kept as a chain of tokens, each a "%" and the text up to the next "%",
// and each token waits for the first later entry whose name begins its
// text. Running the entries' passes in table order then only touches the
// tokens that match, and a replacement changes only its own token and the
// one before it. Pieces of text are views into the text and the values,
// chained by index, so that joining two tokens costs nothing.
class Expansion {
public:
    Expansion(const VariableTable& table, std::string_view text)
        : t_(table), tokens_(table.scratch_->tokens), pieces_(table.scratch_->pieces) {
        tokens_.clear();
        pieces_.clear();
        const std::size_t first = text.find('%');
        const std::size_t references = countOf(text, "%");
        tokens_.reserve(references + 1);
        pieces_.reserve(references + 1);
        tokens_.push_back(Token{});
        if (first > 0) append(0, text.substr(0, first));
        std::size_t p = first;
        int prev = 0;
        while (p != std::string_view::npos) {
            const std::size_t next = text.find('%', p + 1);
            const int id = newToken(prev);
            append(id, text.substr(p + 1, next == std::string_view::npos ? next : next - p - 1));
            prev = id;
            p = next;
        }
        size_ = text.size();
        limit_ = VariableTable::expansionLimit(text.size());
    }

    // False when the text would grow beyond the limit.
    bool run() {
        for (std::size_t id = 1; id < tokens_.size(); ++id) schedule(static_cast<int>(id), 0);
        std::vector<int> batch, touched;
        while (!queue_.empty()) {
            const int pass = queue_.top().pass;
            batch.clear();
            while (!queue_.empty() && queue_.top().pass == pass) {
                const Waiting w = queue_.top();
                queue_.pop();
                const Token& tok = tokens_[static_cast<std::size_t>(w.token)];
                if (tok.alive && tok.generation == w.generation) batch.push_back(w.token);
            }
            touched.clear();
            for (int id : batch) {
                replace(id, pass, touched);
                if (size_ > limit_) return false;
            }
            for (int id : touched) {
                Token& tok = tokens_[static_cast<std::size_t>(id)];
                tok.touchedIn = 0;
                if (id == 0 || !tok.alive) continue;
                ++tok.generation;
                schedule(id, pass);
            }
        }
        return true;
    }

    std::string text() const {
        std::string out;
        out.reserve(size_);
        for (int id = 0; id >= 0; id = tokens_[static_cast<std::size_t>(id)].next) {
            if (id != 0) out += '%';
            for (int p = tokens_[static_cast<std::size_t>(id)].head; p >= 0; p = pieces_[static_cast<std::size_t>(p)].next)
                out.append(pieces_[static_cast<std::size_t>(p)].text);
        }
        return out;
    }

private:
    using Piece = ExpansionScratch::Piece;
    using Token = ExpansionScratch::Token;
    struct Waiting {
        int pass;
        int token;
        unsigned generation;
        bool operator>(const Waiting& o) const { return pass != o.pass ? pass > o.pass : token > o.token; }
    };

    Token& at(int id) { return tokens_[static_cast<std::size_t>(id)]; }
    Piece& piece(int p) { return pieces_[static_cast<std::size_t>(p)]; }

    void append(int id, std::string_view text) {
        if (text.empty()) return;
        const int p = static_cast<int>(pieces_.size());
        pieces_.push_back({text, -1});
        Token& tok = at(id);
        if (tok.last >= 0)
            piece(tok.last).next = p;
        else
            tok.head = p;
        tok.last = p;
    }

    void prepend(int id, std::string_view text) {
        if (text.empty()) return;
        const int p = static_cast<int>(pieces_.size());
        pieces_.push_back({text, at(id).head});
        Token& tok = at(id);
        tok.head = p;
        if (tok.last < 0) tok.last = p;
    }

    // Moves all of `from`'s text to the end of `to`'s.
    void join(int to, int from) {
        Token& src = at(from);
        if (src.head < 0) return;
        Token& dst = at(to);
        if (dst.last >= 0)
            piece(dst.last).next = src.head;
        else
            dst.head = src.head;
        dst.last = src.last;
        src.head = src.last = -1;
    }

    int newToken(int after) {
        const int id = static_cast<int>(tokens_.size());
        Token tok;
        tok.prev = after;
        tok.next = at(after).next;
        tokens_.push_back(tok);
        if (tok.next >= 0) at(tok.next).prev = id;
        at(after).next = id;
        return id;
    }

    void touch(int id, int pass, std::vector<int>& touched) {
        Token& tok = at(id);
        if (tok.touchedIn == pass) return;
        tok.touchedIn = pass;
        touched.push_back(id);
    }

    // The first entry after `pass` whose name begins the token's text.
    void schedule(int id, int pass) {
        int best = 0;
        auto consider = [&](int node) {
            const int e = t_.trie_[static_cast<std::size_t>(node)].entry;
            if (e > pass && (best == 0 || e < best)) best = e;
        };
        int node = 0;
        consider(node);
        for (int p = at(id).head; p >= 0 && node >= 0; p = piece(p).next) {
            for (unsigned char c : piece(p).text) {
                node = t_.child(node, c);
                if (node < 0) break;
                consider(node);
            }
        }
        if (best > 0) queue_.push({best, id, at(id).generation});
    }

    void replace(int id, int entry, std::vector<int>& touched) {
        const VariableTable::Entry& e = t_.entry(entry);
        // Drop the name from the front of the token's text.
        std::size_t drop = e.Name.size();
        while (drop > 0) {
            Token& tok = at(id);
            Piece& front = piece(tok.head);
            if (front.text.size() <= drop) {
                drop -= front.text.size();
                tok.head = front.next;
                if (tok.head < 0) tok.last = -1;
            } else {
                front.text.remove_prefix(drop);
                drop = 0;
            }
        }
        size_ = size_ + e.Value.size() - e.Name.size() - 1;
        const std::string_view value(e.Value);
        const std::size_t firstPercent = value.find('%');
        const int prev = at(id).prev;
        const std::string_view head = value.substr(0, firstPercent);
        if (!head.empty()) {
            append(prev, head);
            touch(prev, entry, touched);
        }
        if (firstPercent == std::string_view::npos) {
            // The whole value and the rest of the token join the token before.
            if (at(id).head >= 0) touch(prev, entry, touched);
            join(prev, id);
            unlink(id);
            return;
        }
        // "%" pieces of the value become tokens; the last one keeps the rest.
        int after = prev;
        std::size_t p = firstPercent;
        while (true) {
            const std::size_t next = value.find('%', p + 1);
            const std::string_view text = value.substr(p + 1, next == std::string_view::npos ? next : next - p - 1);
            if (next == std::string_view::npos) {
                prepend(id, text);
                touch(id, entry, touched);
                return;
            }
            const int fresh = newToken(after);
            append(fresh, text);
            touch(fresh, entry, touched);
            after = fresh;
            p = next;
        }
    }

    void unlink(int id) {
        Token& tok = at(id);
        tok.alive = false;
        at(tok.prev).next = tok.next;
        if (tok.next >= 0) at(tok.next).prev = tok.prev;
    }

    const VariableTable& t_;
    // Kept by the table between calls, so that long texts do not fault
    // fresh pages in at every expansion.
    std::vector<Token>& tokens_;
    std::vector<Piece>& pieces_;
    std::priority_queue<Waiting, std::vector<Waiting>, std::greater<Waiting>> queue_;
    std::size_t size_ = 0;
    std::size_t limit_ = 0;
};

std::string VariableTable::S_ExpandVars(std::string_view text) const {
    std::string out = expandOnce(text);
    // Only growth is work beyond the text itself: a long pasted line is not.
    if (out.size() > text.size()) expandedBytes_ += out.size() - text.size();
    return out;
}

std::string VariableTable::expandOnce(std::string_view text) const {
    if (Variables.empty() || text.find('%') == std::string_view::npos) return std::string(text);
    if (percentInName_) return expandByPasses(text);
    std::string out;
    bool done;
    {
        Expansion run(*this, text);
        done = run.run();
        if (done) out = run.text();
    }
    // The scratch stays for the next line, unless a huge text grew it.
    constexpr std::size_t kKept = 1u << 20;
    if (scratch_->tokens.capacity() > kKept || scratch_->pieces.capacity() > kKept) *scratch_ = ExpansionScratch{};
    if (!done) {
        debug_.DebugLog("Text too long after expansion, left as it was");
        return std::string(text);
    }
    return out;
}

}  // namespace kelpa
