// S_RunCommands: a command text cut at CR LF, each line down its road:
// "@" to the macros, "#" to the keywords, the rest to the server.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "command/sender.h"
#include "common/depth.h"
#include "output/debug_channel.h"

namespace kelpa {

class CommandRoad {
public:
    using LineHandler = std::function<void(const std::string&)>;
    using Expander = std::function<std::string(const std::string&)>;
    // Macros, then-parts and trigger actions nest command texts; a circle
    // among them ends at this depth with a debug line.
    static constexpr int kNestingLimit = 900;
    // A text that branches (a macro calling itself twice) stays under the
    // depth yet doubles its work at every level; one command from outside
    // may run at most this many nested texts. Enough for a pasted text of
    // thousands of conditions, and a runaway tree still ends within a
    // fraction of a second.
    static constexpr int kNestedTextBudget = 20000;
    // Values that double themselves reach the expansion cap in a few lines,
    // and a line that names one a thousand times then costs a gigabyte. One
    // command from outside may grow by expansion and nest at most this many
    // bytes; a line that expands to itself costs nothing.
    static constexpr std::uint64_t kWorkBudget = std::uint64_t{4} << 20;

    CommandRoad(Sender& sender, DebugChannel& debug) : sender_(sender), debug_(debug) {}

    // The macro and keyword interpreters plug in here; the variable table
    // serves the expansion. Without them a line on those roads only leaves
    // a debug line and never reaches the server.
    void setMacroRunner(LineHandler h) { runMacro_ = std::move(h); }
    void setKeywordRunner(LineHandler h) { runKeyword_ = std::move(h); }
    void setExpander(Expander e) { expand_ = std::move(e); }
    // Bytes that expansions added so far, by anyone; read at each line.
    void setWorkMeter(std::function<std::uint64_t()> m) { workMeter_ = std::move(m); }

    void S_RunCommands(std::string text);
    void S_SendLine(std::string line);

    // Enter in the command line, or Send in the Bulk dialog.
    void enterText(std::string text);

private:
    void startBudgets();
    bool overWorkBudget(const std::string& line);

    Sender& sender_;
    DebugChannel& debug_;
    LineHandler runMacro_;
    LineHandler runKeyword_;
    Expander expand_;
    std::function<std::uint64_t()> workMeter_;
    Depth depth_{kNestingLimit};
    int nestedTexts_ = 0;
    bool depthTold_ = false;
    std::uint64_t workStart_ = 0;
    std::uint64_t nestedBytes_ = 0;
    bool workSpent_ = false;
};

}  // namespace kelpa
