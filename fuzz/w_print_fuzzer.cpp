// W_Print on the eight windows (and a number outside them), fragments of
// sequences carried from call to call in each window's Pending, and reads
// of the main window whose cut telnet sequences wait for the next read.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

#include "common/run_error.h"
#include "fuzz_client.h"

using namespace kelpa;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider in(data, size);
    fuzz::FuzzClient f;
    f.c.setDebugInfo(in.ConsumeBool());
    f.c.setGraphics(in.ConsumeBool());
    while (in.remaining_bytes() > 0) {
        const int win = in.ConsumeIntegralInRange<int>(-1, kWindowCount);
        const bool received = win == kMainWindow && in.ConsumeBool();
        const auto len = in.ConsumeIntegralInRange<std::size_t>(0, 4096);
        const std::string text = in.ConsumeBytesAsString(len);
        try {
            if (received)
                f.c.parts().writer.W_PrintReceived(text);
            else
                f.c.parts().writer.W_Print(text, win);
        } catch (const RunError&) {
            // A sequence that cannot be taken apart ends the call by design.
        }
        for (int w = 0; w < kWindowCount; ++w) {
            const auto limit = static_cast<std::size_t>(windowInfo(w).tagLimit);
            if (limit && w != kDebugWindow && f.c.parts().windows.text[w].size() > limit) std::abort();
            // Every character is covered by one run.
            std::size_t covered = 0;
            f.c.parts().windows.text[w].forEachRun([&](const OutputWindow::Run& r) {
                if (r.begin != covered) std::abort();
                covered = r.end;
            });
            if (covered != f.c.parts().windows.text[w].size()) std::abort();
        }
    }
    return 0;
}
