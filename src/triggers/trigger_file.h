// Reading one trigger file into records. The format's rules are kept to the
// letter; the cases that have no sound outcome (an empty file, a file that
// ends where a further line is needed, a flag or pattern line without "=",
// a group number outside 0 to 50, a 51st entry in a group) stop the file.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "triggers/trigger_record.h"

namespace kelpa {

struct TriggerFileFault {
    int line = 0;  // from 1; the line that could not be taken
    std::string reason;
};

struct TriggerFileResult {
    bool ok = true;
    TriggerFileFault fault;
    int parts = 0;  // records appended
};

// Appends the parts of `bytes` to `table`. On a fault the file's records
// are taken out again, so the table holds either all of a file or none of
// it. `debug` takes the format's own messages ("Found a parts ...").
TriggerFileResult readTriggerFile(std::string_view bytes, const std::string& filePath, TriggerRecords& table,
                                  const std::function<void(const std::string&)>& debug);

// Whether the line begins with `key` (upper case), letters compared without case.
bool startsWithUpper(std::string_view line, std::string_view key);

bool isFlagLine(std::string_view line);
bool isPatternLine(std::string_view line);

}  // namespace kelpa
