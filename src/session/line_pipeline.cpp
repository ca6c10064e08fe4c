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

void LinePipeline::S_ProcessLines(std::string& data, Source from) {
    const Depth::Level level = nesting_.enter();
    try {
        run(data, from);
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

void LinePipeline::run(std::string& data, Source from) {
    if (CleanerText) cleanerText(data);
    if (from == Source::Received)
        writer_.W_PrintReceived(data);
    else
        writer_.W_Print(data, kMainWindow);
    log_.print(data);
    triggers_->matchGlobal(data);
    // The chunk is read in place: it is this call's own text, which no
    // action can reach (an injected text is another string, and received
    // chunks wait until this handler is over).
    if (triggers_->hasLineTriggers()) triggers_->matchLines(data);
}

}  // namespace kelpa
