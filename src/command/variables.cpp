#include "command/variables.h"

#include <algorithm>
#include <list>
#include <queue>

#include "command/words.h"
#include "common/text.h"

namespace kelpa {

int VariableTable::S_FindVal(const std::string& name) const {
    const auto it = byName_.find(name);
    return it == byName_.end() ? VariableCount() + 1 : it->second;
}

void VariableTable::S_SetVal(const std::string& name, const std::string& value) {
    const int started = clock_.secondsSinceMidnight();
    const int n = S_FindVal(name);
    if (n > VariableCount()) {
        Variables.push_back({name, value});
        byName_.emplace(name, n);
        addName(name, n);
    } else {
        Variables[static_cast<std::size_t>(n - 1)].Value = value;
    }
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
        out = replaceAll(out, "%" + e.Name, e.Value);
        if (out.size() > kMaxExpandedSize) {
            debug_.DebugLog("Text too long after expansion, left as it was");
            return std::string(text);
        }
    }
    return out;
}

// When no name holds "%", a reference is "%" and a name, so each "%" of the
// text heads at most one match per pass and matches never overlap. The text
// is kept as a chain of tokens, each a "%" and the text up to the next "%",
// and each token waits for the first later entry whose name begins its
// text. Running the entries' passes in table order then only touches the
// tokens that match, and a replacement changes only its own token and the
// one before it.
class Expansion {
public:
    Expansion(const VariableTable& table, std::string_view text) : t_(table) {
        const std::size_t first = text.find('%');
        tokens_.push_back(Token{});
        if (first > 0) tokens_[0].tail.push_back(text.substr(0, std::min(first, text.size())));
        std::size_t p = first;
        int prev = 0;
        while (p != std::string_view::npos) {
            const std::size_t next = text.find('%', p + 1);
            const std::string_view tail = text.substr(p + 1, next == std::string_view::npos ? next : next - p - 1);
            const int id = newToken(prev);
            if (!tail.empty()) tokens_[static_cast<std::size_t>(id)].tail.push_back(tail);
            prev = id;
            p = next;
        }
        size_ = text.size();
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
                if (size_ > VariableTable::kMaxExpandedSize) return false;
            }
            std::sort(touched.begin(), touched.end());
            touched.erase(std::unique(touched.begin(), touched.end()), touched.end());
            for (int id : touched) {
                Token& tok = tokens_[static_cast<std::size_t>(id)];
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
            for (std::string_view piece : tokens_[static_cast<std::size_t>(id)].tail) out.append(piece);
        }
        return out;
    }

private:
    struct Token {
        std::list<std::string_view> tail;  // the text behind its "%"
        int prev = -1, next = -1;
        unsigned generation = 0;
        bool alive = true;
    };
    struct Waiting {
        int pass;
        int token;
        unsigned generation;
        bool operator>(const Waiting& o) const { return pass != o.pass ? pass > o.pass : token > o.token; }
    };

    int newToken(int after) {
        const int id = static_cast<int>(tokens_.size());
        Token tok;
        tok.prev = after;
        tok.next = tokens_[static_cast<std::size_t>(after)].next;
        tokens_.push_back(std::move(tok));
        if (tokens_[static_cast<std::size_t>(id)].next >= 0)
            tokens_[static_cast<std::size_t>(tokens_[static_cast<std::size_t>(id)].next)].prev = id;
        tokens_[static_cast<std::size_t>(after)].next = id;
        return id;
    }

    // The first entry after `pass` whose name begins the token's text.
    void schedule(int id, int pass) {
        const Token& tok = tokens_[static_cast<std::size_t>(id)];
        int best = 0;
        auto consider = [&](int node) {
            const int e = t_.trie_[static_cast<std::size_t>(node)].entry;
            if (e > pass && (best == 0 || e < best)) best = e;
        };
        int node = 0;
        consider(node);
        for (std::string_view piece : tok.tail) {
            for (unsigned char c : piece) {
                node = t_.child(node, c);
                if (node < 0) goto done;
                consider(node);
            }
        }
    done:
        if (best > 0) queue_.push({best, id, tok.generation});
    }

    void replace(int id, int entry, std::vector<int>& touched) {
        Token& tok = tokens_[static_cast<std::size_t>(id)];
        const VariableTable::Entry& e = t_.entry(entry);
        // Drop the name from the front of the token's text.
        std::size_t drop = e.Name.size();
        while (drop > 0) {
            std::string_view& front = tok.tail.front();
            if (front.size() <= drop) {
                drop -= front.size();
                tok.tail.pop_front();
            } else {
                front.remove_prefix(drop);
                drop = 0;
            }
        }
        size_ = size_ + e.Value.size() - e.Name.size() - 1;
        const std::string_view value(e.Value);
        const std::size_t firstPercent = value.find('%');
        Token& prev = tokens_[static_cast<std::size_t>(tok.prev)];
        const std::string_view head = value.substr(0, firstPercent);
        if (!head.empty()) {
            prev.tail.push_back(head);
            touched.push_back(tok.prev);
        }
        if (firstPercent == std::string_view::npos) {
            // The whole value and the rest of the token join the token before.
            if (!tok.tail.empty()) touched.push_back(tok.prev);
            prev.tail.splice(prev.tail.end(), tok.tail);
            unlink(id);
            return;
        }
        // "%" pieces of the value become tokens; the last one keeps the rest.
        int after = tok.prev;
        std::size_t p = firstPercent;
        while (true) {
            const std::size_t next = value.find('%', p + 1);
            const std::string_view piece =
                value.substr(p + 1, next == std::string_view::npos ? next : next - p - 1);
            if (next == std::string_view::npos) {
                Token& last = tokens_[static_cast<std::size_t>(id)];
                if (!piece.empty()) last.tail.push_front(piece);
                touched.push_back(id);
                return;
            }
            const int fresh = newToken(after);
            if (!piece.empty()) tokens_[static_cast<std::size_t>(fresh)].tail.push_back(piece);
            touched.push_back(fresh);
            after = fresh;
            p = next;
        }
    }

    void unlink(int id) {
        Token& tok = tokens_[static_cast<std::size_t>(id)];
        tok.alive = false;
        tokens_[static_cast<std::size_t>(tok.prev)].next = tok.next;
        if (tok.next >= 0) tokens_[static_cast<std::size_t>(tok.next)].prev = tok.prev;
    }

    const VariableTable& t_;
    std::vector<Token> tokens_;
    std::priority_queue<Waiting, std::vector<Waiting>, std::greater<Waiting>> queue_;
    std::size_t size_ = 0;
};

std::string VariableTable::S_ExpandVars(std::string_view text) const {
    if (Variables.empty() || text.find('%') == std::string_view::npos) return std::string(text);
    if (percentInName_) return expandByPasses(text);
    Expansion run(*this, text);
    if (!run.run()) {
        debug_.DebugLog("Text too long after expansion, left as it was");
        return std::string(text);
    }
    return run.text();
}

}  // namespace kelpa
