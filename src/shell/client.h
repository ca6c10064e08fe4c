// Everything the main form holds, as plain objects, wired in the order the
// roads need. The Qt window owns one Client: it asks the Client for what it
// mirrors and tells it what the user and the socket did, and never reaches
// the objects behind it.
#pragma once

#include <string>

#include "command/command_road.h"
#include "command/keyword_interpreter.h"
#include "command/macro_editor.h"
#include "command/macro_runner.h"
#include "command/variables.h"
#include "command/sender.h"
#include "history/history_text.h"
#include "history/history_views.h"
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

// The objects the roads run through. Tests, benches and fuzzers reach them
// through Client::parts(); the window uses Client's own methods.
struct ClientParts {
    explicit ClientParts(Platform& platform);
    ClientParts(const ClientParts&) = delete;
    ClientParts& operator=(const ClientParts&) = delete;

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
    HistoryViews historyViews;
    StatusModel status;
    StatusFrames frames;

private:
    void wireStatus();
};

class Client {
public:
    // The file whose appearance brings the hidden window back.
    static constexpr const char* kShowFile = "show.txt";

    explicit Client(Platform& platform) : p_(platform) {}
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    void Form_Load();
    void Form_Unload();
    void Form_Terminate();

    void as_timer_Timer();
    // Returns the next interval of the timer.
    int Queue_Timer();
    void Timer3_Timer() { p_.status.Timer3_Timer(); }

    // The socket's events.
    void s_Connect() { p_.session.s_Connect(); }
    void s_DataArrival() { p_.session.s_DataArrival(); }
    void s_Close() { p_.session.s_Close(); }
    void s_Error(int number, const std::string& description, long long scode) {
        p_.session.s_Error(number, description, scode);
    }

    // What the user did.
    // Enter in the command line with its text; Escape hides the window.
    void Text1_Enter(std::string text);
    void Text1_Escape();
    // The Bulk dialog closed with Send.
    void Bulk_Send(std::string text);
    void CMD_CONNECT_Click() { p_.session.CMD_CONNECT_Click(); }
    void CMD_DISCONNECT_Click() { p_.session.CMD_DISCONNECT_Click(); }
    void CB_Connections_Click(int index) { p_.bar.CB_Connections_Click(index); }
    // The texts typed into the host and port boxes.
    void Site_Change(std::string text) { p_.bar.Site = std::move(text); }
    void PPort_Change(std::string text) { p_.bar.PPort = std::move(text); }
    void SPort_Change(std::string text) { p_.bar.SPort = std::move(text); }
    void TRGFLAG_Click(int index, bool on) { p_.flags.set(index, on); }
    void setGraphics(bool on) { p_.windows.Graphics = on; }
    void setCleanerText(bool on) { p_.pipeline.CleanerText = on; }
    void setDebugInfo(bool on) { p_.debug.enabled = on; }

    // Both trigger tables read again; the variables are forgotten.
    void LoadTriggers();
    // After the site manager closed: the book read again, the first site selected.
    void SiteManagerClosed();
    // A line of the start-up in the debug window, shown whatever its switch.
    void startupNote(const std::string& line);

    // The program's folder, for the dialogs that read and write its files.
    FileSystem& files() { return p_.platform.files; }

    // A line on the debug channel (a handler's failure, say).
    void DebugLog(const std::string& line) { p_.debug.DebugLog(line); }
    // Where the raw text of the run is kept; null keeps it in memory.
    void setHistoryStore(HistoryStore* store) { p_.history.setStore(store); }

    // What the window mirrors.
    const OutputWindow& window(int win) const { return p_.windows.text[static_cast<std::size_t>(win)]; }
    const ConnectionBar& connectionBar() const { return p_.bar; }
    const FlagTable& flags() const { return p_.flags; }
    const TabCaptions& tabCaptions() const { return p_.keywords.tabs; }
    bool graphics() const { return p_.windows.Graphics; }
    bool cleanerText() const { return p_.pipeline.CleanerText; }
    bool debugInfo() const { return p_.debug.enabled; }
    // The editor pages mirror these models and hand them the user's edits.
    TriggerEditor& triggerEditor() { return p_.triggerEditor; }
    MacroEditor& macroEditor() { return p_.macroEditor; }
    // The History pages: the pager, the browser of day logs, Seek and Filter.
    HistoryViews& historyViews() { return p_.historyViews; }
    // The status panel's cells, bars and captions.
    StatusModel& statusModel() { return p_.status; }
    // While the server echoes, typed text is a password.
    bool serverEchoes() const { return p_.sender.serverEchoes(); }

    ClientParts& parts() { return p_; }
    const ClientParts& parts() const { return p_; }

private:
    void reloadSites();
    void tellOtherCaseNames();

    ClientParts p_;
};

}  // namespace kelpa
