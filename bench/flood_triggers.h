// The trigger set of the flood benches: in each block of twenty, one
// three-word phrase of the generated stream's words and nineteen near misses
// that share all but its last letter, changed to one that begins no word, so
// that they never occur yet their stems do, often.
#pragma once

#include <string>
#include <string_view>

namespace kelpa::bench {

// The stream's own words (stream_gen.h), so that patterns meet real text.
inline const char* const kFloodWords[] = {
    "the",     "dragon", "sword",   "gleams", "north",   "you",     "see",    "a",
    "dark",    "forest", "path",    "winds",  "between", "ancient", "oaks",   "and",
    "glowing", "runes",  "guard",   "shouts", "gold",    "coins",   "lie",    "on",
    "floor",   "tavern", "keeper",  "smiles", "warmly",  "east",    "west",   "stairs"};

// Whether a text can stand where a word of the stream begins: a whole word
// or the start of one (the last word of a line is cut at the line's width).
inline bool startsAWord(const std::string& s) {
    for (const char* w : kFloodWords)
        if (std::string_view(w).starts_with(s)) return true;
    return false;
}

// Trigger i: in each block of twenty, the first a three-word phrase of the
// stream, the others the same phrase with the last letter changed, capitals
// last, so that the near misses of a phrase are all different.
inline std::string floodTriggerPattern(int i) {
    const int k = i / 20;
    const std::string head =
        std::string(kFloodWords[k % 32]) + " " + kFloodWords[(k / 32 + 7 * k + 1) % 32] + " ";
    const std::string third = kFloodWords[(3 * k + 5) % 32];
    if (i % 20 == 0) return head + third;
    const std::string stem = third.substr(0, third.size() - 1);
    int left = i % 20;
    for (const char* letters : {"abcdefghijklmnopqrstuvwxyz", "ABCDEFGHIJKLMNOPQRSTUVWXYZ"})
        for (const char* c = letters; *c; ++c)
            if (!startsAWord(stem + *c) && --left == 0) return head + stem + *c;
    return head + stem + "?";
}

// What each firing runs.
inline constexpr const char* kFloodTriggerAction = "#math hits + %hits 1";

}  // namespace kelpa::bench
