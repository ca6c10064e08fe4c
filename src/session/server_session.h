// The one server connection: the connect and disconnect buttons and the
// socket's events, with the receive road of every chunk.
#pragma once

#include <functional>
#include <string>

#include "history/history_text.h"
#include "history/session_log.h"
#include "output/debug_channel.h"
#include "output/window_state.h"
#include "platform/platform.h"
#include "session/line_pipeline.h"
#include "sites/connection_bar.h"
#include "status/frame_extractor.h"

namespace kelpa {

class ServerSession {
public:
    ServerSession(Platform& platform, ConnectionBar& bar, SessionLog& log, DebugChannel& debug,
                  HistoryText& history, OutputWindows& windows, LinePipeline& pipeline)
        : p_(platform), bar_(bar), log_(log), debug_(debug), history_(history),
          windows_(windows), pipeline_(pipeline) {}

    void setFrameExtractor(FrameExtractor* frames) { frames_ = frames; }
    // Told at each Connect event, before anything is sent.
    void setConnectListener(std::function<void()> listener) { onConnect_ = std::move(listener); }

    void CMD_CONNECT_Click();
    void CMD_DISCONNECT_Click();

    void s_Connect();
    void s_DataArrival();  // receive_road.cpp
    void s_Close();
    void s_Error(int number, const std::string& description, long long scode);

    // The init string of a site with its marks turned into characters.
    static std::string expandInitString(const std::string& init);

private:
    void closeLog();

    Platform& p_;
    ConnectionBar& bar_;
    SessionLog& log_;
    DebugChannel& debug_;
    HistoryText& history_;
    OutputWindows& windows_;
    LinePipeline& pipeline_;
    FrameExtractor* frames_ = nullptr;
    std::function<void()> onConnect_;
};

}  // namespace kelpa
