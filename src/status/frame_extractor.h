// Takes the status frames out of a received chunk before anything else sees
// it. Without a panel the chunk passes unchanged.
#pragma once

#include <string>

namespace kelpa {

class FrameExtractor {
public:
    virtual ~FrameExtractor() = default;
    // May shorten `data`; an unfinished frame at its end is kept back.
    virtual void S_ExtractFrames(std::string& data) = 0;
    // A new connection: a telnet sequence the last one cut off is over. A
    // frame still waiting for its end keeps waiting.
    virtual void newStream() {}
};

}  // namespace kelpa
