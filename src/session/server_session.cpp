#include "session/server_session.h"

#include "common/text.h"

namespace kelpa {

std::string ServerSession::expandInitString(const std::string& init) {
    std::string s = replaceAll(init, "#24#", std::string(1, '\x18'));
    s = replaceAll(s, "#25#", std::string(1, '\x19'));
    s = replaceAll(s, "#26#", std::string(1, '\x1A'));
    return replaceAll(s, "#10#", "\n");
}

void ServerSession::CMD_CONNECT_Click() {
    p_.socket.connect(bar_.Site, bar_.PPort);
    bar_.connectEnabled = false;
    bar_.disconnectEnabled = true;
    debug_.DebugLog("hinstance:" + decimal(p_.host.instanceHandle()));
    debug_.DebugLog(std::string("prev instance:") + (p_.host.previousInstance() ? "True" : "False"));
}

void ServerSession::s_Connect() {
    // A sequence cut by the end of the last connection never gets its end:
    // the new stream starts clean.
    windows_.state[kMainWindow].CutPending.clear();
    if (frames_) frames_->newStream();
    if (onConnect_) onConnect_();
    log_.open(bar_.CurrentSite.ShortName);
    p_.host.focusCommandLine();
    const SiteRecord* site = bar_.selected();
    if (!site || site->InitString.empty()) return;
    // Straight to the socket: not echoed, logged or kept.
    const std::string init = expandInitString(site->InitString);
    if (!p_.socket.sendData(init)) debug_.DebugLog(Socket::refusedLine(init));
}

void ServerSession::closeLog() {
    if (log_.LogFile != 0) log_.close();
}

void ServerSession::CMD_DISCONNECT_Click() {
    p_.socket.close();
    closeLog();
    bar_.connectEnabled = true;
    bar_.disconnectEnabled = false;
}

void ServerSession::s_Close() {
    p_.socket.close();
    bar_.connectEnabled = true;
    bar_.disconnectEnabled = false;
    closeLog();
}

void ServerSession::s_Error(int number, const std::string& description, long long scode) {
    p_.socket.close();
    const std::string line = "Sock " + decimal(number) + " " + description + " " + decimal(scode);
    debug_.DebugLog(line);
    log_.print(line);
    bar_.connectEnabled = true;
    bar_.disconnectEnabled = false;
}

}  // namespace kelpa
