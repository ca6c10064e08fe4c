#include "output/ansi.h"

#include <string>

#include "common/run_error.h"
#include "common/text.h"

namespace kelpa {

std::uint32_t AnsiInterpreter::A_ColourFor(int digit) {
    if (digit >= 0 && digit < 8) return kAnsiColours[digit];
    debug_.DebugLog("unknown color " + decimal(digit));
    return 0;
}

void AnsiInterpreter::A_ApplySgr(std::string_view param, int win) {
    WindowState& st = windows_.state[win];
    SgrEffect quiet;
    if (addQuietSgr(quiet, param)) {
        quiet.applyTo(st);
        return;
    }
    if (param.size() == 1) {
        debug_.DebugLog("unknown SING :" + std::string(param));
        return;
    }
    // Two characters: a colour 8 or 9, or no colour at all.
    if (param[0] == '3')
        st.Colour = A_ColourFor(param[1] - '0');
    else if (param[0] == '4')
        st.BackColour = A_ColourFor(param[1] - '0');
    else
        debug_.DebugLog("unknown SING/DBL " + std::string(param));
}

void AnsiInterpreter::A_ApplySgrList(std::string_view params, int win) {
    forEachSgrParam(params, [&](std::string_view param) {
        A_ApplySgr(param, win);
        return true;
    });
}

void AnsiInterpreter::A_ParseCsi(std::string_view seq, int win) {
    char last = seq.empty() ? '\0' : seq.back();
    if (last >= 'a' && last <= 'z') last = static_cast<char>(last - 'a' + 'A');
    switch (last) {
        case 'M': {
            if (seq.size() < 3) throw RunError::invalidArgument("A_ParseCsi");
            A_ApplySgrList(seq.substr(2, seq.size() - 3), win);
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
