// A Client on fakes with trigger files written into its program folder.
#pragma once

#include <string>

#include "support/client_harness.h"

namespace kelpa::test {

struct TriggerFixture : ClientHarness {
    // A trigger file in "triggers" (or "gtriggers"), lines joined by CR LF.
    void trigger(const std::string& name, const std::string& lines, bool global = false) {
        fp.folder.write(std::string(global ? "gtriggers/" : "triggers/") + name, lines);
    }
    std::string sent() const { return fp.socket.sent; }
};

}  // namespace kelpa::test
