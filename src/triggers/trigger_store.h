// The trigger tables, their loader and the two matching passes.
//
// LoadTriggers reads every trigger file of both folders and builds one
// pattern index over both tables. T_Match then tests only the records the
// index names, in table order, reading the flags at the moment each record
// is tested, so an action that changes a flag acts on the records behind
// it exactly as a walk of the whole table would.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "common/depth.h"
#include "common/run_error.h"
#include "output/debug_channel.h"
#include "platform/platform.h"
#include "triggers/flag_table.h"
#include "triggers/pattern_index.h"
#include "triggers/trigger_passes.h"
#include "triggers/trigger_record.h"

namespace kelpa {

// Triggers that inject text which fires triggers again nest at most this
// deep; the next firing ends the whole received chunk.
inline constexpr int kMaxTriggerNesting = 300;

class TriggerStore : public TriggerPasses {
public:
    using CommandRunner = std::function<void(std::string)>;

    enum TableId { kNormal = 0, kGlobal = 1 };
    static constexpr const char* kNormalFolder = "triggers";
    static constexpr const char* kGlobalFolder = "gtriggers";
    static constexpr const char* kExtension = ".trigger";

    TriggerStore(FileSystem& files, DebugChannel& debug, const FlagTable& flags, CommandRunner run);

    // Both tables thrown away and read again, then the index built.
    void LoadTriggers();
    // Appends the records of one folder ("/triggers" or "/gtriggers").
    void LoadTriggerDir(TriggerRecords& table, const std::string& directoryName);
    // Builds the pattern index over both tables as they stand; LoadTriggers
    // calls it, and so may whoever fills the tables by hand.
    void indexTables();

    void T_Match(TableId table, std::string_view text);

    void matchGlobal(std::string_view chunk) override { T_Match(kGlobal, chunk); }
    bool hasLineTriggers() const override { return !TriggerTable.empty(); }
    void matchLine(std::string_view line) override { T_Match(kNormal, line); }
    // The normal table on each line of the chunk, as T_Match would, with
    // one search of the whole chunk for the long pattern texts.
    void matchLines(std::string_view chunk) override;

    TriggerRecords TriggerTable;
    TriggerRecords GlobalTriggerTable;
    std::int32_t TriggerCount() const { return static_cast<std::int32_t>(TriggerTable.size()); }
    std::int32_t GlobalTriggerCount() const { return static_cast<std::int32_t>(GlobalTriggerTable.size()); }

    // The flag test of one record, as the matcher runs it.
    static bool flagsPass(const TriggerRecord& r, const FlagTable& flags);
    // The action with "$*" replaced by the text between two blanks.
    static std::string commandText(const std::string& action, std::string_view text);

private:
    friend struct PatternIndexProbe;
    struct Scratch {
        std::vector<PatternIndex::Candidate> candidates;
        std::vector<PatternIndex::Found> found;
    };
    Scratch& scratch();
    void fireCandidates(const TriggerRecords& t, std::string_view text,
                        const std::vector<PatternIndex::Candidate>& candidates);
    void fire(const TriggerRecord& r, std::int32_t index, std::string_view text);

    FileSystem& files_;
    DebugChannel& debug_;
    const FlagTable& flags_;
    CommandRunner run_;
    PatternIndex index_;
    Depth depth_{kMaxTriggerNesting};
    std::uint64_t generation_ = 0;
    // One per nesting level, kept between calls.
    std::deque<Scratch> scratch_;
};

}  // namespace kelpa
