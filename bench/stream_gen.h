// A realistic server stream, the same for the same size and seed: coloured
// prose, box-drawing lines, prompts ended by IAC GA, password prompts inside
// IAC WILL ECHO / IAC WONT ECHO, and an IAC DO 24 near the start. The counts
// let a bench check that every piece went the whole road.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <random>
#include <string>
#include <utility>

namespace kelpa::bench {

struct StreamCounts {
    std::size_t bytes = 0;
    std::size_t lineEnds = 0;   // CR LF pairs
    std::size_t proseLines = 0;
    std::size_t sgr = 0;        // ESC [ ... m sequences
    std::size_t boxLines = 0;
    std::size_t prompts = 0;    // each ended by IAC GA
    std::size_t passwords = 0;  // IAC WILL ECHO ... IAC WONT ECHO
    std::size_t do24 = 0;
    std::size_t frames = 0;
    std::size_t frameBytes = 0;  // 24 to 26, all of them
    std::size_t iac = 0;        // IAC bytes, all of them commands

    std::string format() const {
        char buf[512];
        std::snprintf(buf, sizeof buf,
                      "bytes=%zu\nline_ends=%zu\nprose_lines=%zu\nsgr=%zu\nbox_lines=%zu\n"
                      "prompts=%zu\npasswords=%zu\ndo24=%zu\nframes=%zu\nframe_bytes=%zu\niac=%zu\n",
                      bytes, lineEnds, proseLines, sgr, boxLines, prompts, passwords, do24,
                      frames, frameBytes, iac);
        return buf;
    }
};

struct StreamOptions {
    std::size_t size = 20u << 20;
    std::uint32_t seed = 1;
    bool frames = false;  // a status frame of 6 items behind every line
};

class StreamGenerator {
public:
    explicit StreamGenerator(const StreamOptions& o) : o_(o), rng_(o.seed) {}

    std::string generate() {
        out_.reserve(o_.size + 256);
        line("Welcome to the Kelpa bench realm.");
        iac(253, 24);
        ++c_.do24;
        while (out_.size() < o_.size) {
            const unsigned pick = rng_() % 100;
            if (pick < 78) prose();
            else if (pick < 90) box();
            else if (pick < 99) prompt();
            else if (pick == 99 && rng_() % 8 == 0) password();
            if (o_.frames) frame();
        }
        c_.bytes = out_.size();
        return std::move(out_);
    }
    const StreamCounts& counts() const { return c_; }

private:
    static constexpr const char* kWords[] = {
        "the",    "dragon", "sword",  "gleams", "north",   "you",     "see",    "a",
        "dark",   "forest", "path",   "winds",  "between", "ancient", "oaks",   "and",
        "glowing", "runes", "guard",  "shouts", "gold",    "coins",   "lie",    "on",
        "floor",  "tavern", "keeper", "smiles", "warmly",  "east",    "west",   "stairs"};
    static constexpr const char* kColours[] = {"0", "1;31", "0;32", "33", "1;34", "35",
                                               "0;36", "1;37", "0;1;33", "31;1"};

    void crlf() {
        out_ += "\r\n";
        ++c_.lineEnds;
    }
    void line(const std::string& s) {
        out_ += s;
        crlf();
    }
    void iac(int cmd, int opt) {
        out_ += '\xFF';
        out_ += static_cast<char>(cmd);
        out_ += static_cast<char>(opt);
        ++c_.iac;
    }
    void sgr() {
        out_ += "\x1b[";
        out_ += kColours[rng_() % std::size(kColours)];
        out_ += 'm';
        ++c_.sgr;
    }
    void prose() {
        const std::size_t width = 70 + rng_() % 21;
        const unsigned changes = 3 + rng_() % 4;
        std::string text;
        while (text.size() < width) {
            if (!text.empty()) text += ' ';
            text += kWords[rng_() % std::size(kWords)];
        }
        text.resize(width);
        // Colour changes at spread-out places of the line.
        std::size_t from = 0;
        for (unsigned i = 0; i < changes; ++i) {
            const std::size_t to = i == 0 ? 0 : from + 1 + rng_() % (width / changes);
            out_.append(text, from, std::min(to, width) - from);
            from = std::min(to, width);
            sgr();
        }
        out_.append(text, from, std::string::npos);
        crlf();
        ++c_.proseLines;
    }
    void box() {
        const std::size_t w = 20 + rng_() % 50;
        auto row = [&](char l, char fill, char r) {
            out_ += l;
            out_.append(w, fill);
            out_ += r;
            crlf();
            ++c_.boxLines;
        };
        row('\xC9', '\xCD', '\xBB');
        row('\xBA', ' ', '\xBA');
        row('\xC8', '\xCD', '\xBC');
    }
    void prompt() {
        out_ += "<" + std::to_string(rng_() % 500) + "hp " + std::to_string(rng_() % 300) +
                "m " + std::to_string(rng_() % 200) + "mv> ";
        out_ += '\xFF';
        out_ += '\xF9';
        ++c_.iac;
        ++c_.prompts;
    }
    void password() {
        out_ += "Password: ";
        iac(251, 1);
        iac(252, 1);
        crlf();
        ++c_.passwords;
    }
    // A prompt-style frame: three pairs of the Life page.
    void frame() {
        const std::size_t start = out_.size();
        out_ += '\x18';
        for (auto [max, cur] : {std::pair{7, 8}, {11, 12}, {15, 16}}) {
            const unsigned top = 100 + rng_() % 400;
            out_ += "1," + std::to_string(max) + "," + std::to_string(top) + '\x19';
            out_ += "1," + std::to_string(cur) + "," + std::to_string(rng_() % (top + 1)) + '\x19';
        }
        out_ += '\x1A';
        ++c_.frames;
        c_.frameBytes += out_.size() - start;
    }

    StreamOptions o_;
    std::mt19937 rng_;
    std::string out_;
    StreamCounts c_;
};

inline std::string generateStream(const StreamOptions& o, StreamCounts* counts = nullptr) {
    StreamGenerator g(o);
    std::string s = g.generate();
    if (counts) *counts = g.counts();
    return s;
}

}  // namespace kelpa::bench
