// The loaded form of a trigger file: one record per part, each carrying its
// own copy of the file's flag block.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kelpa {

// Group numbers run from 0 to 50; a group holds at most 50 entries. Group 0
// may be filled but is never tested.
inline constexpr int kMaxGroup = 50;
inline constexpr int kMaxGroupEntries = 50;

struct FlagGroup {
    std::vector<std::int32_t> Values;  // in file order; Count is its size
    std::int32_t Count() const { return static_cast<std::int32_t>(Values.size()); }
};

struct PatternGroup {
    std::vector<std::string> Texts;  // in file order; Count is its size
    std::int32_t Count() const { return static_cast<std::int32_t>(Texts.size()); }
};

struct TriggerRecord {
    std::string FilePath;
    std::int32_t PartNumber = 0;
    // The group number of the last flag line read, not the largest one.
    std::int32_t FlagGroupCount = 0;
    // Indexed by group number; only as long as the largest group filled.
    std::vector<FlagGroup> FlagGroups;
    std::int32_t PatternGroupCount = 0;
    std::vector<PatternGroup> PatternGroups;
    std::string Action;

    // Group g, or an empty group if it was never filled.
    const FlagGroup& flagGroup(int g) const;
    const PatternGroup& patternGroup(int g) const;
};

using TriggerRecords = std::vector<TriggerRecord>;

}  // namespace kelpa
