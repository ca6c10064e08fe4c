#include "session/ansi.h"

#include <string>

#include "common/run_error.h"
#include "common/text.h"

namespace kelpa {

namespace {

constexpr std::uint32_t kGrey = rgb(128, 128, 128);

int digitValue(char c) { return c >= '0' && c <= '9' ? c - '0' : 0; }

}  // namespace

std::uint32_t AnsiInterpreter::A_ColourFor(int digit) {
    static constexpr std::uint32_t base[8] = {
        kGrey,          rgb(128, 0, 0),   rgb(0, 128, 0),   rgb(128, 128, 0),
        rgb(0, 0, 128), rgb(128, 0, 128), rgb(0, 128, 128), kGrey,
    };
    if (digit >= 0 && digit < 8) return base[digit];
    debug_.DebugLog("unknown color " + decimal(digit));
    return 0;
}

void AnsiInterpreter::A_ApplySgr(std::string_view param, int win) {
    WindowState& st = windows_.state[win];
    if (param.empty()) {
        st.Colour = kGrey;
        st.NotBold = true;
        return;
    }
    if (param.size() == 1) {
        switch (param[0]) {
            case '0':
                st.Colour = kGrey;
                st.NotBold = true;
                st.Underline = st.Blink = st.Reverse = false;
                return;
            case '1': st.NotBold = false; return;
            case '4': st.Underline = true; return;
            case '5': st.Blink = true; return;
            case '7': st.Reverse = true; return;
            default: debug_.DebugLog("unknown SING :" + std::string(param)); return;
        }
    }
    if (param.size() == 2) {
        if (param[0] == '3')
            st.Colour = A_ColourFor(digitValue(param[1]));
        else if (param[0] == '4')
            st.BackColour = A_ColourFor(digitValue(param[1]));
        else
            debug_.DebugLog("unknown SING/DBL " + std::string(param));
    }
    // Three characters or more: ignored.
}

void AnsiInterpreter::A_ParseCsi(std::string_view seq, int win) {
    char last = seq.empty() ? '\0' : seq.back();
    if (last >= 'a' && last <= 'z') last = static_cast<char>(last - 'a' + 'A');
    switch (last) {
        case 'M': {
            if (seq.size() < 3) throw RunError::invalidArgument("A_ParseCsi");
            std::string_view params = seq.substr(2, seq.size() - 3);
            std::size_t from = 0;
            while (true) {
                std::size_t semi = params.find(';', from);
                if (semi == std::string_view::npos) {
                    A_ApplySgr(params.substr(from), win);
                    break;
                }
                A_ApplySgr(params.substr(from, semi - from), win);
                from = semi + 1;
            }
            return;
        }
        case 'H':
        case 'K':
            return;
        case 'J':
            windows_.text[win].clear();
            windows_.state[win].StartLen = 0;
            return;
        default:
            debug_.DebugLog("ANSI not supported " + std::string(seq));
    }
}

}  // namespace kelpa
