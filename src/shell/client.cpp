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
      triggerEditor(p.files, [this] { LoadTriggers(); }) {
    telnet.setSender([this](std::string& answer) { sender.S_SendData(answer); });
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
    triggerEditor.btnTRGNew_Click();
}

void Client::LoadTriggers() {
    // The variable table is emptied here once the keywords keep one.
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
