#include "command/command_road.h"

#include "common/text.h"

namespace kelpa {

void CommandRoad::S_RunCommands(std::string text) {
    const int depth = depth_.current();
    if (depth == 0) startBudgets();
    if (workSpent_) return;
    if (depth_.full() || (depth > 0 && nestedTexts_ >= kNestedTextBudget)) {
        const std::string trimmed = trimBlanks(text);
        if (trimmed.empty()) return;
        const std::string head = trimmed.substr(0, trimmed.find("\r\n"));
        // What is not run is told whatever the debug switch says, once a
        // command: a runaway tree meets the depth at each of its leaves.
        if (depth_.full()) {
            if (!depthTold_)
                debug_.tellAlways("Commands nested more than " + decimal(kNestingLimit) + " deep, not run: " + quoted(head));
            depthTold_ = true;
        } else if (nestedTexts_++ == kNestedTextBudget)
            debug_.tellAlways("More than " + decimal(kNestedTextBudget) + " nested commands in one run, stopped at: " +
                              quoted(head));
        return;
    }
    if (depth > 0) {
        ++nestedTexts_;
        nestedBytes_ += text.size();
    }
    const Depth::Level level = depth_.enter();
    // A loop in place of one level of recursion per line. Trimming the rest
    // at each turn only ever removes blanks at its front: its end is the
    // end of the text, trimmed once.
    std::size_t end = text.size();
    while (end > 0 && text[end - 1] == ' ') --end;
    std::size_t start = 0;
    while (true) {
        while (start < end && text[start] == ' ') ++start;
        if (start >= end) return;
        std::size_t pair = text.find("\r\n", start);
        if (pair == std::string::npos || pair + 2 > end) pair = end;
        std::string line = text.substr(start, pair - start);
        start = pair == end ? end : pair + 2;
        if (overWorkBudget(line)) return;
        if (line.size() >= 2 && line[0] == '@') {
            debug_.DebugLog("Running Macro : " + line);
            if (runMacro_)
                runMacro_(line);
            else
                debug_.DebugLog("No macro interpreter for: " + line);
        } else if (!line.empty() && line[0] == '#') {
            if (runKeyword_)
                runKeyword_(line);
            else
                debug_.DebugLog("No keyword interpreter for: " + line);
        } else {
            S_SendLine(line);
        }
    }
}

void CommandRoad::startBudgets() {
    nestedTexts_ = 0;
    depthTold_ = false;
    nestedBytes_ = 0;
    workSpent_ = false;
    workStart_ = workMeter_ ? workMeter_() : 0;
}

bool CommandRoad::overWorkBudget(const std::string& line) {
    if (workSpent_) return true;
    const std::uint64_t done = nestedBytes_ + (workMeter_ ? workMeter_() - workStart_ : 0);
    if (done <= kWorkBudget) return false;
    workSpent_ = true;
    debug_.tellAlways("More than " + decimal(static_cast<long long>(kWorkBudget >> 20)) +
                      " MB of commands in one run, stopped at: " + quoted(line));
    return true;
}

void CommandRoad::S_SendLine(std::string line) {
    line = trimBlanks(line);
    if (expand_) line = expand_(line);
    line += ";;";
    sender_.S_SendData(line);
}

void CommandRoad::enterText(std::string text) {
    if (text.empty()) text = "\\.";
    S_RunCommands(std::move(text));
}

}  // namespace kelpa
