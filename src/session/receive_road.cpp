// The road of one received chunk, top to bottom.
#include "common/box_chars.h"
#include "session/server_session.h"

namespace kelpa {

void ServerSession::s_DataArrival() {
    // 1. Bytes that come after the connection ended stay unread.
    if (p_.socket.state() != Socket::kConnected) return;
    // 2. Everything that has arrived.
    std::string data = p_.socket.getData();
    // 3. Status frames leave the chunk; an unfinished one waits.
    if (frames_) frames_->S_ExtractFrames(data);
    // 4. Without graphics, box-drawing bytes become ASCII for good.
    if (!windows_.Graphics)
        for (char& c : data) c = asciiForBox(c);
    // 5. Nothing left to show.
    if (data.empty()) return;
    // 6. The raw text of the run.
    history_.append(data);
    // 7. Display, log and triggers.
    pipeline_.S_ProcessLines(data, LinePipeline::Source::Received);
}

}  // namespace kelpa
