#include "output/debug_channel.h"

namespace kelpa {

void DebugChannel::DebugLog(std::string text) {
    if (!enabled) return;
    if (!text.empty() && text.back() == ';')
        text.pop_back();
    else
        text += "\r\n";
    // Rewriting the whole text loses every colour in the window.
    window_.flattenToPlain();
    TextStyle plain;
    plain.plain = true;
    window_.append(text, plain);
    if (window_.size() > kMaxChars) window_.cutAfterFirst(window_.size() - kMaxChars * 4 / 5);
}

void DebugChannel::tellAlways(const std::string& line) {
    const bool on = enabled;
    enabled = true;
    DebugLog(line);
    enabled = on;
}

}  // namespace kelpa
