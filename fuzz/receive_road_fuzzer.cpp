// The receive road over chunks cut where the fuzzer says (also right behind
// an IAC or a frame's 24), with the switches flipped between chunks and a
// trigger set the fuzzer writes. Whatever the bytes, the history holds every
// byte that arrived but for the status frames, as a plain reading of the
// whole stream at once finds them, and window 0 stays within its limit.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "fuzz_client.h"
#include "common/box_chars.h"

using namespace kelpa;

namespace {

// Which bytes of the whole stream are text and not frame: a 24 starts a
// frame unless it is the option of IAC WILL/WONT/DO/DONT or stands inside
// IAC SB ... IAC SE (right behind a lone IAC it starts one: IAC 24 is no
// telnet command). Inputs stay far below the bounds on frames and
// subnegotiations, so those are left out here.
std::vector<bool> textBytes(const std::string& s) {
    std::vector<bool> keep(s.size(), true);
    std::size_t i = 0;
    auto at = [&](std::size_t k) { return static_cast<unsigned char>(s[k]); };
    while (i < s.size()) {
        if (at(i) == 24) {
            const std::size_t end = s.find('\x1A', i + 1);
            const std::size_t stop = end == std::string::npos ? s.size() : end + 1;
            for (std::size_t k = i; k < stop; ++k) keep[k] = false;
            i = stop;
        } else if (at(i) == 255 && i + 1 < s.size() && at(i + 1) >= 251 && at(i + 1) <= 254) {
            i += 3;
        } else if (at(i) == 255 && i + 1 < s.size() && at(i + 1) == 250) {
            std::size_t j = i + 2;
            while (j < s.size() && !(at(j) == 255 && j + 1 < s.size() && at(j + 1) == 240))
                j += at(j) == 255 ? 2 : 1;
            i = j + 2;
        } else {
            i += at(i) == 255 && i + 1 < s.size() && at(i + 1) != 24 ? 2 : 1;
        }
    }
    return keep;
}

}  // namespace

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
    std::string whole;
    std::vector<std::pair<std::size_t, bool>> chunks;  // end in `whole`, graphics
    auto deliver = [&](const std::string& chunk) {
        f.socket.incoming = chunk;
        f.c.parts().session.s_DataArrival();
        whole += chunk;
        chunks.emplace_back(whole.size(), f.c.parts().windows.Graphics);
    };
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
        // A read that ends right behind an IAC or a frame's 24.
        const std::size_t cut = (op & 0x40) ? chunk.find_first_of(std::string("\xFF\x18", 2)) : std::string::npos;
        if (cut != std::string::npos) {
            deliver(chunk.substr(0, cut + 1));
            deliver(chunk.substr(cut + 1));
        } else {
            deliver(chunk);
        }
        if (f.c.parts().windows.text[kMainWindow].size() > 3500) std::abort();
    }
    const std::vector<bool> keep = textBytes(whole);
    std::string expected;
    std::size_t from = 0;
    for (auto [end, graphics] : chunks) {
        for (std::size_t k = from; k < end; ++k)
            if (keep[k]) expected += graphics ? whole[k] : asciiForBox(whole[k]);
        from = end;
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
