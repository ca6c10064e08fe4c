#include "session/line_pipeline.h"

#include <new>

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
    const Depth::Level level = nesting_.enter();
    try {
        run(data);
    } catch (const RunError& e) {
        if (dynamic_cast<const NestingTooDeep*>(&e) && nesting_.current() > 1) throw;
        printError(e.number(), e.what(), e.source());
    } catch (const std::bad_alloc&) {
        // Any failure below ends the chunk the same way, never escaping to
        // a handler that would tell it elsewhere.
        printError(7, "Out of memory", "S_ProcessLines");
    } catch (const std::exception& e) {
        printError(51, e.what(), "S_ProcessLines");
    }
}

void LinePipeline::printError(int number, const std::string& description, const std::string& source) {
    log_.print("\r\nERROR : " + decimal(number) + "/" + description + " on line " + source);
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
    const auto level = static_cast<std::size_t>(nesting_.current());
    if (copies_.size() < level) copies_.resize(level);
    std::string& chunk = copies_[level - 1];
    chunk.assign(data);
    triggers_->matchLines(chunk);
}

}  // namespace kelpa
