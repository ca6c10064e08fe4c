// The receive road over chunks cut where the fuzzer says, with the switches
// flipped between chunks and a trigger set the fuzzer writes. Whatever the bytes, the history holds every byte
// that arrived and window 0 stays within its limit.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

#include "fuzz_client.h"
#include "output/box_chars.h"

using namespace kelpa;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider in(data, size);
    fuzz::FuzzClient f;
    // A few trigger files first, normal and global; their actions may send,
    // set flags, inject and call macros, so the road re-enters itself.
    const int files = in.ConsumeIntegralInRange<int>(0, 6);
    for (int i = 0; i < files; ++i) {
        const bool global = in.ConsumeBool();
        const std::string body = in.ConsumeRandomLengthString(400);
        f.files.writeAll(std::string(global ? "gtriggers/" : "triggers/") + "t" + std::to_string(i) + ".trigger",
                         "pattern1=" + body);
    }
    if (files > 0) f.c.LoadTriggers();
    std::string expected;
    while (in.remaining_bytes() > 0) {
        // Numbers come from the end of the input, text from its front, so a
        // stream from the generator is a good seed as it is.
        const auto op = in.ConsumeIntegral<std::uint8_t>();
        const auto len = in.ConsumeIntegralInRange<std::size_t>(0, 8192);
        if (op & 0x80) {
            switch (op & 3) {
                case 0: f.c.setGraphics(!f.c.parts().windows.Graphics); break;
                case 1: f.c.setCleanerText(!f.c.parts().pipeline.CleanerText); break;
                case 2: f.c.parts().windows.state[kMainWindow].Ink = !f.c.parts().windows.state[kMainWindow].Ink; break;
                case 3: f.c.setDebugInfo(!f.c.parts().debug.enabled); break;
            }
        }
        std::string chunk = in.ConsumeBytesAsString(len);
        f.socket.incoming = chunk;
        f.c.parts().session.s_DataArrival();
        if (!f.c.parts().windows.Graphics)
            for (char& ch : chunk) ch = asciiForBox(ch);
        expected += chunk;
        if (f.c.parts().windows.text[kMainWindow].size() > 3500) std::abort();
    }
    const std::string history = f.c.parts().history.text();
    if (history.size() < expected.size()) std::abort();
    // Telnet answers are sent and join the history between chunks; the
    // received bytes keep their order around them.
    std::size_t at = 0;
    for (char ch : history)
        if (at < expected.size() && ch == expected[at]) ++at;
    if (at != expected.size()) std::abort();
    return 0;
}
