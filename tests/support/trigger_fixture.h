// A Client on fakes with trigger files written into its program folder and
// a small stand-in for the keywords a trigger action uses: "#SET n",
// "#CLR n" and "#INJECT text" ("|" stands for CR LF in the text).
#pragma once

#include <string>

#include "common/text.h"
#include "support/client_harness.h"

namespace kelpa::test {

struct TriggerFixture : ClientHarness {
    TriggerFixture() {
        c.commands.setKeywordRunner([this](const std::string& line) { keyword(line); });
    }

    void keyword(const std::string& line) {
        if (line.rfind("#SET ", 0) == 0) c.flags.set(std::stoi(line.substr(5)), true);
        if (line.rfind("#CLR ", 0) == 0) c.flags.set(std::stoi(line.substr(5)), false);
        if (line.rfind("#INJECT ", 0) == 0) {
            std::string text = replaceAll(line.substr(8), "|", "\r\n");
            c.pipeline.S_ProcessLines(text);
        }
    }

    // A trigger file in "triggers" (or "gtriggers"), lines joined by CR LF.
    void trigger(const std::string& name, const std::string& lines, bool global = false) {
        fp.folder.write(std::string(global ? "gtriggers/" : "triggers/") + name, lines);
    }
    void receive(const std::string& chunk) {
        fp.socket.incoming = chunk;
        c.session.s_DataArrival();
    }
    std::string sent() const { return fp.socket.sent; }
};

}  // namespace kelpa::test
