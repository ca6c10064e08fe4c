// The little of telnet that the client speaks: it answers the terminal type
// and tells the debug window about everything else.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "output/debug_channel.h"
#include "output/window_state.h"

namespace kelpa {

// IAC SB TERMINAL-TYPE IS "ANSI" NUL IAC SE: eleven bytes.
extern const std::string kTerminalTypeAnswer;

std::string TelnetOptionName(int option);

// How many bytes IAC and the command byte `cmd` take when no payload
// follows: EOR and NOP to GA two, SB, WILL, WONT, DO and DONT three (with
// their option); after any other byte only the IAC goes.
constexpr std::size_t iacCommandLength(unsigned char cmd) {
    if (cmd >= 239 && cmd <= 249) return 2;
    if (cmd >= 250 && cmd <= 254) return 3;
    return 1;
}

class TelnetInterpreter {
public:
    using Sender = std::function<void(std::string&)>;

    TelnetInterpreter(OutputWindows& windows, DebugChannel& debug)
        : windows_(windows), debug_(debug) {}

    // A linemode subnegotiation waits this long for its IAC SE.
    static constexpr std::size_t kMaxLinemodePayload = 64 * 1024;
    static constexpr std::size_t kUnfinished = 0;

    // The road by which the terminal type answer leaves (S_SendData).
    void setSender(Sender send) { send_ = std::move(send); }
    // Told of the server's IAC WILL ECHO (true) and IAC WONT ECHO (false)
    // in the main window.
    void setEchoListener(std::function<void(bool)> echo) { echo_ = std::move(echo); }

    // Takes one sequence off the head of `text`, which starts with IAC and
    // is not IAC IAC, and returns how many characters it used; kUnfinished
    // when the text ends inside the sequence, which is then left untold.
    std::size_t S_InterpretIac(std::string_view text, int win);
    // The debug lines of a command without meaning here ("IAC unknown iac
    // command 249"), also for the doubled IAC that the writer shows as 255.
    void tellUnknown(int cmd);

private:
    OutputWindows& windows_;
    DebugChannel& debug_;
    Sender send_;
    std::function<void(bool)> echo_;
};

}  // namespace kelpa
