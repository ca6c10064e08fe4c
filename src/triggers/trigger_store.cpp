#include "triggers/trigger_store.h"

#include "common/text.h"
#include "common/lines.h"
#include "triggers/trigger_file.h"

namespace kelpa {

TriggerStore::TriggerStore(FileSystem& files, DebugChannel& debug, const FlagTable& flags, CommandRunner run)
    : files_(files), debug_(debug), flags_(flags), run_(std::move(run)) {}

void TriggerStore::LoadTriggers() {
    ++generation_;
    GlobalTriggerTable.clear();
    TriggerTable.clear();
    LoadTriggerDir(TriggerTable, std::string("/") + kNormalFolder);
    LoadTriggerDir(GlobalTriggerTable, std::string("/") + kGlobalFolder);
    indexTables();
}

void TriggerStore::indexTables() {
    const TriggerRecords* tables[PatternIndex::kTables] = {&TriggerTable, &GlobalTriggerTable};
    index_.build(tables, FlagTable::kCount);
}

void TriggerStore::LoadTriggerDir(TriggerRecords& table, const std::string& directoryName) {
    const std::string folder = directoryName.substr(1);
    auto debug = [this](const std::string& s) { debug_.DebugLog(s); };
    for (const std::string& name : files_.list(folder, kExtension)) {
        debug_.DebugLog("loading trigger " + name + " from " + directoryName);
        const std::string path = folder + "/" + name;
        std::string bytes;
        if (!files_.readAll(path, bytes)) {
            debug_.DebugLog("Trigger file not read: " + files_.absolute(path));
            continue;
        }
        const TriggerFileResult r = readTriggerFile(bytes, files_.absolute(path), table, debug);
        if (!r.ok)
            debug_.DebugLog("Trigger file not loaded: " + files_.absolute(path) + " line " +
                            decimal(r.fault.line) + ": " + r.fault.reason);
    }
}

bool TriggerStore::flagsPass(const TriggerRecord& r, const FlagTable& flags) {
    bool pass = true;
    for (int g = 1; g <= r.FlagGroupCount; ++g) {
        pass = true;
        // Every entry is read, also after one failed: a flag that does not
        // exist fails the chunk even then.
        for (std::int32_t v : r.flagGroup(g).Values) {
            if (v < 0 || v >= FlagTable::kCount)
                throw RunError(340, "Control array element '" + decimal(v) + "' doesn't exist", "T_Match");
            if (!flags.value[static_cast<std::size_t>(v)]) pass = false;
        }
        if (pass) break;
    }
    return pass;
}

std::string TriggerStore::commandText(const std::string& action, std::string_view text) {
    if (action.find("$*") == std::string::npos) return action;
    std::string with;
    with.reserve(text.size() + 2);
    with += ' ';
    with += text;
    with += ' ';
    return replaceAll(action, "$*", with);
}

TriggerStore::Scratch& TriggerStore::scratch() {
    // Actions run while a level's lists are in use and may nest a pass of
    // their own, which takes the next level: a deque keeps the others where
    // they are.
    const auto level = static_cast<std::size_t>(depth_.current());
    if (scratch_.size() <= level) scratch_.resize(level + 1);
    return scratch_[level];
}

void TriggerStore::T_Match(TableId table, std::string_view text) {
    const TriggerRecords& t = table == kGlobal ? GlobalTriggerTable : TriggerTable;
    if (t.empty()) return;
    Scratch& s = scratch();
    index_.candidates(table, text, s.candidates);
    fireCandidates(t, text, s.candidates);
}

void TriggerStore::matchLines(std::string_view chunk) {
    if (TriggerTable.empty()) return;
    Scratch& s = scratch();
    index_.findLong(chunk, s.found);
    const std::uint64_t generation = generation_;
    if (index_.onlyFoundLinesMatch(kNormal)) {
        // Only the lines where a long text occurs can fire: the others are
        // not cut out at all. Line ends are the CR LF pairs, which cannot
        // overlap, so the line holding a place starts behind the last pair
        // before it.
        std::size_t pos = 0, k = 0;
        while (k < s.found.size()) {
            const std::size_t at = s.found[k].start;
            const std::size_t back = chunk.substr(pos, at - pos).rfind("\r\n");
            const std::size_t start = back == std::string_view::npos ? pos : pos + back + 2;
            const std::size_t pair = chunk.find("\r\n", start);
            const std::size_t end = pair == std::string_view::npos ? chunk.size() : pair;
            const std::size_t first = k;
            while (k < s.found.size() && s.found[k].end <= end) ++k;
            if (k == first) {
                ++k;  // runs over the line's end: in no line
                continue;
            }
            const std::string_view line = chunk.substr(start, end - start);
            index_.lineCandidates(kNormal, line, start, std::span(s.found).subspan(first, k - first), s.candidates);
            fireCandidates(TriggerTable, line, s.candidates);
            if (end == chunk.size()) return;
            if (generation_ != generation) return matchLines(chunk.substr(end + 2));
            pos = end + 2;
        }
        return;
    }
    std::size_t k = 0;
    LineCursor lines(chunk);
    std::string_view line;
    while (lines.next(line)) {
        const auto pos = static_cast<std::size_t>(line.data() - chunk.data());
        const std::size_t end = pos + line.size();
        const std::size_t first = k;
        while (k < s.found.size() && s.found[k].end <= end) ++k;
        index_.lineCandidates(kNormal, line, pos, std::span(s.found).subspan(first, k - first), s.candidates);
        fireCandidates(TriggerTable, line, s.candidates);
        // After a reload the other lines meet the new tables.
        if (generation_ != generation && end < chunk.size()) return matchLines(chunk.substr(end + 2));
    }
}

void TriggerStore::fireCandidates(const TriggerRecords& t, std::string_view text,
                                  const std::vector<PatternIndex::Candidate>& candidates) {
    const std::uint64_t generation = generation_;
    for (std::size_t k = 0; k < candidates.size(); ++k) {
        // A reload while an action waited (a message box lets the Reload
        // button be pressed) ends this pass: its records are gone.
        if (generation_ != generation) return;
        const PatternIndex::Candidate c = candidates[k];
        const TriggerRecord& r = t[static_cast<std::size_t>(c.record)];
        if (!flagsPass(r, flags_) || !c.patternsHold) continue;
        fire(r, c.record, text);
    }
}

void TriggerStore::fire(const TriggerRecord& r, std::int32_t index, std::string_view text) {
    std::string command = commandText(r.Action, text);
    if (debug_.enabled)
        debug_.DebugLog("Fired trigger " + decimal(index) + " :" + r.FilePath + " Part " + decimal(r.PartNumber));
    if (depth_.full()) throw NestingTooDeep();
    const Depth::Level level = depth_.enter();
    run_(std::move(command));
}

}  // namespace kelpa
