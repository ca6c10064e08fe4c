// The variable table and its substitution. Entries keep the order in which
// their names were first set; that order is the order of substitution.
#pragma once

#include <memory>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "output/debug_channel.h"
#include "platform/platform.h"

namespace kelpa {

struct ExpansionScratch;

class VariableTable {
public:
    struct Entry {
        std::string Name;
        std::string Value;
    };
    // A text that would grow beyond this while being expanded is left as
    // it was; doubling values could otherwise exhaust the memory.
    static constexpr std::size_t kMaxExpandedSize = 1u << 20;
    // A long text may still double.
    static std::size_t expansionLimit(std::size_t textSize) {
        return textSize > kMaxExpandedSize / 2 ? textSize * 2 : kMaxExpandedSize;
    }

    VariableTable(DebugChannel& debug, const Clock& clock);
    ~VariableTable();

    int VariableCount() const { return static_cast<int>(Variables.size()); }
    // Entry n, numbered from 1.
    const Entry& entry(int n) const { return Variables.at(static_cast<std::size_t>(n - 1)); }

    // The entry number of the name, or VariableCount() + 1.
    int S_FindVal(const std::string& name) const;
    // Sets (or adds) the entry and tells it on the debug channel.
    void S_SetVal(const std::string& name, const std::string& value);
    // Replaces "%" and each name by its value, entry by entry in table
    // order, exactly as one pass per entry would; an index over the names
    // makes the cost follow the text and its references, not the table.
    std::string S_ExpandVars(std::string_view text) const;
    // Bytes every expansion so far added to its text: what the command road
    // weighs a runaway run by.
    std::uint64_t expandedBytes() const { return expandedBytes_; }
    // Empties the table, as the trigger loader does.
    void clear();

private:
    mutable std::uint64_t expandedBytes_ = 0;
    struct Node {
        std::vector<std::pair<unsigned char, int>> next;
        int entry = 0;  // the entry whose name ends here, 0 for none
    };
    friend class Expansion;
    int child(int node, unsigned char c) const;
    void addName(const std::string& name, int entry);
    std::string expandByPasses(std::string_view text) const;
    std::string expandOnce(std::string_view text) const;

    DebugChannel& debug_;
    const Clock& clock_;
    std::vector<Entry> Variables;
    std::unordered_map<std::string, int> byName_;
    std::vector<Node> trie_;
    // A name holding "%" can span several references; such tables take
    // the plain road of one pass per entry.
    bool percentInName_ = false;
    std::unique_ptr<ExpansionScratch> scratch_;
};

}  // namespace kelpa
