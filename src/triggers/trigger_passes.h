// The two trigger passes that the receive road runs on every chunk. The
// trigger store serves them; with no triggers loaded both do nothing.
#pragma once

#include <string_view>

#include "common/lines.h"

namespace kelpa {

class TriggerPasses {
public:
    virtual ~TriggerPasses() = default;
    // Global triggers: the whole chunk, CR LF pairs included.
    virtual void matchGlobal(std::string_view chunk) = 0;
    // Whether the line pass has anything to test; lets the road skip
    // cutting the chunk into lines.
    virtual bool hasLineTriggers() const = 0;
    // Normal triggers: one line at a time.
    virtual void matchLine(std::string_view line) = 0;
    // Normal triggers on every line of a chunk in order, the lines cut at
    // CR LF pairs. A pass that can look at the whole chunk at once does.
    virtual void matchLines(std::string_view chunk) {
        LineCursor lines(chunk);
        std::string_view line;
        while (lines.next(line)) matchLine(line);
    }
};

// The tables before any trigger file is read.
class EmptyTriggerTables : public TriggerPasses {
public:
    void matchGlobal(std::string_view) override {}
    bool hasLineTriggers() const override { return false; }
    void matchLine(std::string_view) override {}
};

}  // namespace kelpa
