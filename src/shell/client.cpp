#include "shell/client.h"

namespace kelpa {

Client::Client(Platform& p)
    : platform(p),
      debug(windows.text[kDebugWindow]),
      telnet(windows, debug),
      ansi(windows, debug),
      writer(windows, debug, telnet, ansi),
      log(p.files, p.clock, debug),
      sender(p.socket, log, writer, history, debug, p.random, p.host),
      commands(sender, debug),
      triggers(p.files, debug, flags, [this](std::string text) { commands.S_RunCommands(std::move(text)); }),
      pipeline(writer, log, triggers),
      session(p, bar, log, debug, history, windows, pipeline),
      variables(debug, p.clock),
      keywords({variables, flags, windows, writer, debug, pipeline, sender, p.host, commands}),
      macros(variables, p.files, debug, commands, keywords.OverrideDir),
      macroEditor(p.files, p.host, keywords.OverrideDir),
      triggerEditor(p.files, p.host, [this] { LoadTriggers(); }) {
    telnet.setSender([this](std::string& answer) { sender.S_SendData(answer); });
    commands.setExpander([this](const std::string& s) { return variables.S_ExpandVars(s); });
    commands.setWorkMeter([this] { return variables.expandedBytes(); });
    commands.setMacroRunner([this](const std::string& line) {
        std::string l = line;
        macros.S_RunMacro(l);
    });
    commands.setKeywordRunner([this](const std::string& line) { keywords.S_RunKeyword(line); });
}

void Client::Form_Load() {
    // The box-drawing table is constant data (output/box_chars.h).
    windows.Graphics = true;
    pipeline.CleanerText = true;
    windows.resetStates();
    log.LogDate = platform.clock.today();
    LoadTriggers();
    flags.reset();
    platform.random.seed(static_cast<std::uint32_t>(platform.clock.secondsSinceMidnight()));
    bar.reload(platform.files, [this](const std::string& w) { debug.DebugLog(w); });
    triggerEditor.brefresh2_Click();
    macroEditor.brefresh3_Click();
    triggerEditor.btnTRGNew_Click();
    macroEditor.BTNMacrosNew_Click();
}

void Client::LoadTriggers() {
    variables.clear();
    triggers.LoadTriggers();
}

void Client::Form_Unload() { platform.socket.close(); }

void Client::Form_Terminate() {
    log.close();
    platform.socket.close();
}

void Client::as_timer_Timer() {
    if (platform.files.exists(kShowFile)) {
        platform.files.remove(kShowFile);
        platform.host.showMainForm();
    }
    log.checkDayChange(bar.CurrentSite.ShortName);
}

int Client::Queue_Timer() { return sender.queueTick(); }

void Client::Text1_Enter(std::string text) { commands.enterText(std::move(text)); }

void Client::Text1_Escape() { platform.host.hideMainForm(); }

void Client::Bulk_Send(std::string text) { commands.enterText(std::move(text)); }

}  // namespace kelpa
