#include "output/telnet.h"

#include "common/text.h"

namespace kelpa {

const std::string kTerminalTypeAnswer("\xFF\xFA\x18\x00" "ANSI" "\x00\xFF\xF0", 11);

std::string TelnetOptionName(int option) {
    switch (option) {
        case 0: return " NOP ";
        case 1: return " echo ";
        case 3: return " suppress go ahead ";
        case 5: return " status ";
        case 6: return " timing mark ";
        case 24: return " terminal type ";
        case 31: return " window size ";
        case 32: return " terminal speed ";
        case 33: return " remote flow control ";
        case 34: return " linemode ";
        case 36: return " environment variables ";
        default: return "unknown valopt " + decimal(option);
    }
}

namespace {

int byteAt(std::string_view text, std::size_t i) { return static_cast<unsigned char>(text[i]); }

}  // namespace

std::size_t TelnetInterpreter::S_InterpretIac(std::string_view text, int win) {
    // A sequence that the end of the text cuts is left whole for the next
    // text, and nothing of it is told before it is complete.
    if (text.size() < 2) return kUnfinished;
    const int cmd = byteAt(text, 1);
    if (cmd >= 250 && cmd <= 254 && text.size() < 3) return kUnfinished;
    // The words of an option are only built when they will be written: a
    // prompt's IAC GA comes with every line of some servers.
    auto optionWords = [&](int option, const char* after) {
        if (debug_.enabled) debug_.DebugLog(TelnetOptionName(option) + after);
    };
    switch (cmd) {
        case 240:
            debug_.DebugLog("IAC ;");
            debug_.DebugLog(" EON ");
            return 2;
        case 250: {
            const int option = byteAt(text, 2);
            std::size_t se = std::string_view::npos;
            // IAC SB and the bytes a subnegotiation may hold before it is
            // taken to be over; what comes after it is text again.
            const std::size_t bound = 2 + kMaxLinemodePayload;
            if (option == 34) {
                se = text.substr(0, bound + 1).find("\xFF\xF0", 3);
                if (se == std::string_view::npos && text.size() <= bound) return kUnfinished;
            }
            debug_.DebugLog("IAC ;");
            debug_.DebugLog(" SB ;");
            optionWords(option, ";");
            if (option != 34) {
                // No parser: the payload stays in the text and is shown.
                debug_.DebugLog(" ");
                return 3;
            }
            if (se == std::string_view::npos) {
                debug_.DebugLog("dropped " + decimal(static_cast<long long>(bound - 3)) +
                                " bytes of a subnegotiation without its end");
                return bound;
            }
            debug_.DebugLog(std::string(text.substr(3, se - 3)) + "IAC SE");
            return se + 2;
        }
        case 251:
        case 252:
        case 253: {
            const int option = byteAt(text, 2);
            debug_.DebugLog("IAC ;");
            debug_.DebugLog(cmd == 251 ? " WILL ;" : cmd == 252 ? " WONT ;" : " DO ;");
            if (cmd == 252 && option == 1) windows_.state[win].Ink = true;
            optionWords(option, "");
            if (option == 1 && cmd != 253 && win == kMainWindow && echo_) echo_(cmd == 251);
            if (cmd == 253 && option == 24 && send_) {
                std::string answer = kTerminalTypeAnswer;
                send_(answer);
            }
            return 3;
        }
        default: {
            tellUnknown(cmd);
            // Telnet's own commands go whole; any other byte after an IAC
            // is text.
            return iacCommandLength(static_cast<unsigned char>(cmd));
        }
    }
}

void TelnetInterpreter::tellUnknown(int cmd) {
    debug_.DebugLog("IAC ;");
    if (debug_.enabled) debug_.DebugLog("unknown iac command " + decimal(cmd));
}

}  // namespace kelpa
