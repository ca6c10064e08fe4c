#include "shell/client.h"

#include "command/macro_runner.h"
#include "common/numbers.h"
#include "common/text.h"
#include "sites/site_book.h"

namespace kelpa {

ClientParts::ClientParts(Platform& p)
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
      triggerEditor(p.files, p.host, [this] { LoadTriggers(); }),
      historyViews(history, writer, windows, debug, p.files, [this] { return bar.CurrentSite.ShortName; }),
      status(),
      frames(status, debug) {
    wireStatus();
    // The browser's view shows this until the first day is loaded.
    windows.text[kHistView].append("History goes here", {windows.state[kHistView].Colour});
    telnet.setSender([this](std::string& answer) { sender.S_SendData(answer); });
    commands.setExpander([this](const std::string& s) { return variables.S_ExpandVars(s); });
    commands.setWorkMeter([this] { return variables.expandedBytes(); });
    commands.setMacroRunner([this](const std::string& line) {
        std::string l = line;
        macros.S_RunMacro(l);
    });
    commands.setKeywordRunner([this](const std::string& line) { keywords.S_RunKeyword(line); });
}

void ClientParts::wireStatus() {
    session.setFrameExtractor(&frames);
    // A password typed after the server's IAC WILL ECHO is sent but not shown.
    telnet.setEchoListener([this](bool serverEchoes) { sender.setServerEchoes(serverEchoes); });
    session.setConnectListener([this] { sender.setServerEchoes(false); });
}

void Client::Form_Load() {
    // The box-drawing table is constant data (common/box_chars.h).
    p_.windows.Graphics = true;
    p_.pipeline.CleanerText = true;
    p_.windows.resetStates();
    p_.log.LogDate = p_.platform.clock.today();
    p_.LoadTriggers();
    p_.flags.reset();
    p_.platform.random.seed(static_cast<std::uint32_t>(p_.platform.clock.secondsSinceMidnight()));
    reloadSites();
    tellOtherCaseNames();
    p_.historyViews.browser.brefresh_Click();
    p_.triggerEditor.brefresh2_Click();
    p_.macroEditor.brefresh3_Click();
    p_.triggerEditor.btnTRGNew_Click();
    p_.macroEditor.BTNMacrosNew_Click();
    p_.status.startUp();
}

void ClientParts::LoadTriggers() {
    variables.clear();
    triggers.LoadTriggers();
}

void Client::SiteManagerClosed() { reloadSites(); }

void Client::reloadSites() {
    FileSystem& files = p_.platform.files;
    const SiteBookRead read = p_.bar.reload(files, [this](const std::string& w) { p_.debug.DebugLog(w); });
    if (read == SiteBookRead::Read) return;
    // Told whatever the debug switch says: the player's sites are missing.
    p_.debug.tellAlways(siteBookProblem(read, files));
}

// Names count case here. A player who copied `Triggers` or `conn.zig` from
// a case-blind system is told why they are not read.
void Client::tellOtherCaseNames() {
    FileSystem& files = p_.platform.files;
    const std::vector<std::string> present = files.entries("");
    for (const std::string name : {kSiteBookFile, TriggerStore::kNormalFolder, TriggerStore::kGlobalFolder,
                                   MacroRunner::kFolder, "logs"}) {
        for (const std::string& other : present)
            if (other != name && other.size() == name.size() && endsWithIgnoringCase(other, name))
                p_.debug.tellAlways("Names count case: there is " + other + ", which is not " + name);
    }
}

void Client::startupNote(const std::string& line) { p_.debug.tellAlways(line); }

void Client::LoadTriggers() { p_.LoadTriggers(); }

void Client::Form_Unload() { p_.platform.socket.close(); }

void Client::Form_Terminate() {
    p_.log.close();
    p_.platform.socket.close();
}

void Client::as_timer_Timer() {
    // Only a file that can be taken away counts: one that stays (a folder of
    // that name) would bring the window back every second.
    if (p_.platform.files.exists(kShowFile) && p_.platform.files.remove(kShowFile)) p_.platform.host.showMainForm();
    p_.log.checkDayChange(p_.bar.CurrentSite.ShortName);
}

int Client::Queue_Timer() { return p_.sender.queueTick(); }

void Client::Text1_Enter(std::string text) { p_.commands.enterText(std::move(text)); }

void Client::Text1_Escape() { p_.platform.host.hideMainForm(); }

void Client::Bulk_Send(std::string text) { p_.commands.enterText(std::move(text)); }

}  // namespace kelpa
