#include "output/telnet.h"

#include "common/run_error.h"
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

int byteAt(std::string_view text, std::size_t i) {
    if (i >= text.size()) throw RunError::invalidArgument("S_InterpretIac");
    return static_cast<unsigned char>(text[i]);
}

}  // namespace

std::size_t TelnetInterpreter::S_InterpretIac(std::string_view text, int win) {
    // The words of an option are only built when they will be written: a
    // prompt's IAC GA comes with every line of some servers.
    auto optionWords = [&](int option, const char* after) {
        if (debug_.enabled) debug_.DebugLog(TelnetOptionName(option) + after);
    };
    const int cmd = byteAt(text, 1);
    debug_.DebugLog("IAC ;");
    switch (cmd) {
        case 240:
            debug_.DebugLog(" EON ");
            return 2;
        case 250: {
            debug_.DebugLog(" SB ;");
            const int option = byteAt(text, 2);
            optionWords(option, ";");
            if (option != 34) {
                // No parser: the payload stays in the text and is shown.
                debug_.DebugLog(" ");
                return 3;
            }
            const std::size_t se = text.find("\xFF\xF0", 3);
            if (se == std::string_view::npos) throw RunError::invalidArgument("S_InterpretIac");
            debug_.DebugLog(std::string(text.substr(3, se - 3)) + "IAC SE");
            return se + 2;
        }
        case 251:
            debug_.DebugLog(" WILL ;");
            optionWords(byteAt(text, 2), "");
            return 3;
        case 252: {
            debug_.DebugLog(" WONT ;");
            const int option = byteAt(text, 2);
            if (option == 1) windows_.state[win].Ink = true;
            optionWords(option, "");
            return 3;
        }
        case 253: {
            debug_.DebugLog(" DO ;");
            const int option = byteAt(text, 2);
            optionWords(option, "");
            if (option == 24 && send_) {
                std::string answer = kTerminalTypeAnswer;
                send_(answer);
            }
            return 3;
        }
        default:
            // Only the IAC goes; the command byte is shown as text.
            if (debug_.enabled) debug_.DebugLog("unknown iac command " + decimal(cmd));
            return 1;
    }
}

}  // namespace kelpa
