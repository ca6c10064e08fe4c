#include "session/line_pipeline.h"

#include "common/run_error.h"
#include "common/text.h"

namespace kelpa {

void LinePipeline::cleanerText(std::string& data) {
    const std::size_t g = data.find("Gold:");
    if (g == std::string::npos || data.find("MPP:") == std::string::npos) return;
    const std::size_t p = g < 2 ? std::string::npos : data.rfind("\r\n", g - 2);
    if (p == std::string::npos) {
        data += "\r\n";
        return;
    }
    // The CR of the pair stands twice: CR, CR, LF, CR, LF ahead of the line.
    data.insert(p + 1, "\r\n\r");
}

void LinePipeline::S_ProcessLines(std::string& data) {
    struct Nesting {
        int& n;
        explicit Nesting(int& depth) : n(depth) { ++n; }
        ~Nesting() { --n; }
    } nesting(nesting_);
    try {
        run(data);
    } catch (const RunError& e) {
        if (dynamic_cast<const NestingTooDeep*>(&e) && nesting_ > 1) throw;
        log_.print("\r\nERROR : " + decimal(e.number()) + "/" + e.what() + " on line " +
                   e.source());
    }
}

void LinePipeline::run(std::string& data) {
    if (CleanerText) cleanerText(data);
    writer_.W_Print(data, kMainWindow);
    log_.print(data);
    triggers_->matchGlobal(data);
    if (!triggers_->hasLineTriggers()) return;
    // The lines are fixed before the first action runs. Each nesting level
    // keeps its copy's memory: a fresh copy of a large chunk would fault in
    // new pages every time.
    if (copies_.size() < static_cast<std::size_t>(nesting_)) copies_.resize(static_cast<std::size_t>(nesting_));
    std::string& chunk = copies_[static_cast<std::size_t>(nesting_) - 1];
    chunk.assign(data);
    triggers_->matchLines(chunk);
}

}  // namespace kelpa
