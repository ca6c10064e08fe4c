#include "triggers/trigger_file.h"

#include <vector>

#include "common/lines.h"
#include "common/numbers.h"
#include "common/text.h"

namespace kelpa {

const FlagGroup& TriggerRecord::flagGroup(int g) const {
    static const FlagGroup empty;
    return g >= 0 && static_cast<std::size_t>(g) < FlagGroups.size() ? FlagGroups[static_cast<std::size_t>(g)]
                                                                       : empty;
}

const PatternGroup& TriggerRecord::patternGroup(int g) const {
    static const PatternGroup empty;
    return g >= 0 && static_cast<std::size_t>(g) < PatternGroups.size()
               ? PatternGroups[static_cast<std::size_t>(g)]
               : empty;
}

bool startsWithUpper(std::string_view line, std::string_view key) {
    if (line.size() < key.size()) return false;
    for (std::size_t i = 0; i < key.size(); ++i) {
        char c = line[i];
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
        if (c != key[i]) return false;
    }
    return true;
}

namespace {

struct Fault {
    TriggerFileFault f;
};

class Reader {
public:
    explicit Reader(std::string_view bytes) : lines_(fileLines(bytes)) {}
    bool atEnd() const { return next_ >= lines_.size(); }
    int lineNumber() const { return static_cast<int>(next_); }
    std::string_view read() {
        if (atEnd()) throw Fault{{lineNumber() + 1, "the file ends where a further line is needed"}};
        return lines_[next_++];
    }

private:
    std::vector<std::string_view> lines_;
    std::size_t next_ = 0;
};

// Key column `keyEnd` (0-based) up to the first "=", and the value behind it.
void splitField(std::string_view line, std::size_t keyEnd, int lineNo, std::int32_t& group,
                std::string_view& value) {
    const std::size_t eq = line.find('=');
    if (eq == std::string_view::npos) throw Fault{{lineNo, "no \"=\" in the line"}};
    std::int32_t g = 0;
    if (!valInt32(line.substr(keyEnd, eq - keyEnd), g) || g < 0 || g > kMaxGroup)
        throw Fault{{lineNo, "group number outside 0 to 50"}};
    group = g;
    value = line.substr(eq + 1);
}

template <typename Group>
auto& entriesOf(std::vector<Group>& groups, std::int32_t g, int lineNo) {
    if (groups.size() <= static_cast<std::size_t>(g)) groups.resize(static_cast<std::size_t>(g) + 1);
    Group& group = groups[static_cast<std::size_t>(g)];
    if (group.Count() >= kMaxGroupEntries) throw Fault{{lineNo, "more than 50 entries in one group"}};
    return group;
}

std::string actionText(std::string_view line) {
    const std::size_t eq = line.find('=');
    return std::string(eq == std::string_view::npos ? line : line.substr(eq + 1));
}

}  // namespace

bool isFlagLine(std::string_view line) { return startsWithUpper(line, "FLAG"); }
bool isPatternLine(std::string_view line) { return startsWithUpper(line, "PATTERN"); }

TriggerFileResult readTriggerFile(std::string_view bytes, const std::string& filePath, TriggerRecords& table,
                                  const std::function<void(const std::string&)>& debug) {
    const std::size_t first = table.size();
    TriggerFileResult result;
    try {
        if (isUtf16Text(bytes)) throw Fault{{1, kUtf16Reason}};
        Reader in(bytes);
        table.emplace_back();
        table.back().FilePath = filePath;
        table.back().PartNumber = 1;
        std::string_view line = in.read();

        std::int32_t last = 0;
        while (isFlagLine(line)) {
            std::int32_t g = 0;
            std::string_view value;
            splitField(line, 4, in.lineNumber(), g, value);
            std::int32_t v = 0;
            if (!valInt32(value, v)) throw Fault{{in.lineNumber(), "flag number beyond 32 bits"}};
            entriesOf(table.back().FlagGroups, g, in.lineNumber()).Values.push_back(v);
            last = g;
            line = in.read();
        }
        table.back().FlagGroupCount = last;

        while (!in.atEnd()) {
            TriggerRecord& r = table.back();
            last = 0;
            while (isPatternLine(line)) {
                std::int32_t g = 0;
                std::string_view text;
                splitField(line, 7, in.lineNumber(), g, text);
                entriesOf(r.PatternGroups, g, in.lineNumber()).Texts.emplace_back(text);
                last = g;
                line = in.read();
            }
            r.PatternGroupCount = last;
            r.Action = actionText(line);
            while (!in.atEnd() && !isPatternLine(line)) line = in.read();
            if (isPatternLine(line)) {
                if (table.size() - first == 1) debug("Found a parts , loading parts ");
                const TriggerRecord& head = table[first];
                TriggerRecord part;
                part.FilePath = head.FilePath;
                part.FlagGroupCount = head.FlagGroupCount;
                // Only the groups that are tested travel to the later parts.
                if (head.FlagGroupCount > 0) {
                    part.FlagGroups.resize(static_cast<std::size_t>(head.FlagGroupCount) + 1);
                    for (int g = 1; g <= head.FlagGroupCount; ++g)
                        part.FlagGroups[static_cast<std::size_t>(g)] = head.flagGroup(g);
                }
                part.PartNumber = static_cast<std::int32_t>(table.size() - first + 1);
                table.push_back(std::move(part));
            }
        }
    } catch (const Fault& f) {
        table.resize(first);
        result.ok = false;
        result.fault = f.f;
        return result;
    }
    result.parts = static_cast<int>(table.size() - first);
    if (result.parts > 1) debug("Total parts loaded : " + decimal(result.parts));
    return result;
}

}  // namespace kelpa
