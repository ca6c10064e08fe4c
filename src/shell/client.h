// Everything the main form holds, as plain objects, wired in the order the
// roads need. The Qt window owns one Client and mirrors it.
#pragma once

#include <string>

#include "command/command_road.h"
#include "command/keyword_interpreter.h"
#include "command/macro_editor.h"
#include "command/macro_runner.h"
#include "command/variables.h"
#include "command/sender.h"
#include "history/history_text.h"
#include "history/session_log.h"
#include "output/debug_channel.h"
#include "output/output_writer.h"
#include "output/window_state.h"
#include "platform/platform.h"
#include "output/ansi.h"
#include "session/line_pipeline.h"
#include "session/server_session.h"
#include "output/telnet.h"
#include "sites/connection_bar.h"
#include "status/status_frames.h"
#include "status/status_model.h"
#include "triggers/flag_table.h"
#include "triggers/trigger_editor.h"
#include "triggers/trigger_store.h"

namespace kelpa {

class Client {
public:
    // The file whose appearance brings the hidden window back.
    static constexpr const char* kShowFile = "show.txt";

    explicit Client(Platform& platform);
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    void Form_Load();
    void Form_Unload();
    void Form_Terminate();

    void as_timer_Timer();
    // Returns the next interval of the timer.
    int Queue_Timer();
    void Timer3_Timer() { status.Timer3_Timer(); }

    // Enter in the command line with its text; Escape hides the window.
    void Text1_Enter(std::string text);
    void Text1_Escape();
    // The Bulk dialog closed with Send.
    void Bulk_Send(std::string text);

    void setGraphics(bool on) { windows.Graphics = on; }
    void setCleanerText(bool on) { pipeline.CleanerText = on; }
    void setDebugInfo(bool on) { debug.enabled = on; }

    // Both trigger tables read again; the variables are forgotten.
    void LoadTriggers();

    Platform& platform;
    OutputWindows windows;
    DebugChannel debug;
    TelnetInterpreter telnet;
    AnsiInterpreter ansi;
    OutputWriter writer;
    HistoryText history;
    SessionLog log;
    Sender sender;
    FlagTable flags;
    CommandRoad commands;
    TriggerStore triggers;
    LinePipeline pipeline;
    ConnectionBar bar;
    ServerSession session;
    VariableTable variables;
    KeywordInterpreter keywords;
    MacroRunner macros;
    MacroEditor macroEditor;
    TriggerEditor triggerEditor;
    StatusModel status;
    StatusFrames frames;

private:
    void wireStatus();
};

}  // namespace kelpa
