// S_ProcessLines: a chunk (or injected text) to the main window, the log and
// the triggers, in that order. The one failure handler of the receive road.
#pragma once

#include <string>

#include "common/depth.h"
#include "history/session_log.h"
#include "output/output_writer.h"
#include "triggers/trigger_passes.h"

namespace kelpa {

class LinePipeline {
public:
    LinePipeline(OutputWriter& writer, SessionLog& log, TriggerPasses& triggers)
        : writer_(writer), log_(log), triggers_(&triggers) {}

    // Mirror of the check box "Cleaner Text".
    bool CleanerText = true;

    void setTriggers(TriggerPasses& triggers) { triggers_ = &triggers; }

    // Where a text comes from: read from the server, or put in by #INJECT.
    enum class Source { Received, Injected };
    void S_ProcessLines(std::string& data, Source from);

    // The extra line breaks ahead of "Gold:" when "MPP:" is in the chunk too.
    static void cleanerText(std::string& data);

private:
    void run(std::string& data, Source from);
    void printError(int number, const std::string& description, const std::string& source);

    OutputWriter& writer_;
    SessionLog& log_;
    TriggerPasses* triggers_;
    Depth nesting_;
};

}  // namespace kelpa
