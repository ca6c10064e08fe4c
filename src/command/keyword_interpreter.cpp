#include "command/keyword_interpreter.h"

#include <cmath>
#include <unordered_map>

#include "command/words.h"
#include "common/numbers.h"
#include "common/run_error.h"
#include "common/text.h"

namespace kelpa {

namespace {

const char* const kHelpLines[] = {
    "OVERRIDE par1 : sets an override directory for macros",
    "SETFLAG/SF par1 par2 : sets a flag par1 to par2 (0/1)",
    "INK par1 : enables / disables writing to main window (INK 0/1)",
    "LABELFLAG/LF par1 par2 : sets a flag name par1 to par2 ",
    "LABELWINDOW/LW par1 par2 : sets the window name par1 to par2 ",
    "UNLABELWINDOWS/ULW : unsets the windows name ",
    "SWITCHFLAG/SWF par1 : switch the flag par1",
    "SETVAL/SV par1 par2 : sets a variable par1 to value par2",
    "UNSETVAL/UV par1 : unsets the variable par1",
    "ECHO/E par1 line : prints on window par1 the line",
    "NOP/REP : does nothing",
    "INJECT/I par1: acts as if par1 has been received",
    "QUEUE/Q par1 : Queues par1 for later use (random timing less tha  53 seconds)",
    "BOSS : hides the window",
    "HELP : prints this stuff",
    "IFEQ : if equal",
    "IFGT : if greater",
    "IFLT : if lower",
    "IFDIF/IFNEQ : if different",
    "IFGTE : if greater or equal",
    "IFLTE : if lower or equal",
    "MATH par1 par2 par3 par4: sets a variable par1 to the value of par2(par3,par4). par2 is an operand of + - * / ",
};

}  // namespace

KeywordInterpreter::Handler KeywordInterpreter::find(const std::string& kw) {
    using K = KeywordInterpreter;
    static const std::unordered_map<std::string, Handler> table = {
        {"INK", &K::INK},           {"SETFLAG", &K::SETFLAG},     {"SF", &K::SETFLAG},
        {"LABELFLAG", &K::LABELFLAG}, {"LF", &K::LABELFLAG},      {"SWITCHFLAG", &K::SWITCHFLAG},
        {"SWF", &K::SWITCHFLAG},    {"CLEARFLAGS", &K::CLEARFLAGS}, {"CF", &K::CLEARFLAGS},
        {"LABELWINDOW", &K::LABELWINDOW}, {"LW", &K::LABELWINDOW}, {"UNLABELWINDOW", &K::UNLABELWINDOW},
        {"ULW", &K::UNLABELWINDOW}, {"SETVAL", &K::SETVAL},       {"SV", &K::SETVAL},
        {"UNSETVAL", &K::UNSETVAL}, {"UV", &K::UNSETVAL},         {"MATH", &K::MATH},
        {"MSGBOX", &K::MSGBOX},     {"MB", &K::MSGBOX},           {"ECHO", &K::ECHO},
        {"E", &K::ECHO},            {"INJECT", &K::INJECT},       {"I", &K::INJECT},
        {"QUEUE", &K::QUEUE},       {"Q", &K::QUEUE},             {"NOP", &K::NOP},
        {"REM", &K::NOP},           {"BOSS", &K::BOSS},           {"OVERRIDE", &K::OVERRIDE},
        {"HELP", &K::HELP},         {"IFGT", &K::IFGT},           {"IFLT", &K::IFLT},
        {"IFGTE", &K::IFGTE},       {"IFLTE", &K::IFLTE},         {"IFEQ", &K::IFEQ},
        {"IFDIF", &K::IFDIF},       {"IFNEQ", &K::IFDIF},         {"IFNULL", &K::IFNULL},
        {"IFNOTNULL", &K::IFNOTNULL},
    };
    const auto it = table.find(kw);
    return it == table.end() ? nullptr : it->second;
}

void KeywordInterpreter::S_RunKeyword(const std::string& line) {
    // Fold first, so that names in any case are found; values are not
    // folded again.
    std::string s = trimBlanks(upperCase(std::string_view(line).substr(line.empty() ? 0 : 1)));
    s = p_.variables.S_ExpandVars(s);
    const std::string kw = getword(s);
    const Handler h = find(kw);
    if (!h) {
        p_.debug.DebugLog("Unknown key word " + kw);
        return;
    }
    (this->*h)(s);
}

int KeywordInterpreter::flagIndex(const std::string& word) {
    const double n = Val(word);
    const int lower = 0, upper = FlagTable::kCount - 1;
    if (n < lower || n > upper) {
        p_.debug.DebugLog("Flag " + numberText(n) + " out of boundries " + decimal(lower) + "," + decimal(upper));
        return -1;
    }
    return static_cast<int>(std::nearbyint(n));
}

void KeywordInterpreter::INK(std::string& s) {
    const std::string w = getword(s);
    p_.windows.state[kMainWindow].Ink = w == "ON" || w == "TRUE" || Val(w) == 1;
}

void KeywordInterpreter::SETFLAG(std::string& s) {
    const int i = flagIndex(getword(s));
    const std::string value = getword(s);
    if (i >= 0) p_.flags.set(i, value != "0");
}

void KeywordInterpreter::LABELFLAG(std::string& s) {
    const int i = flagIndex(getword(s));
    const std::string label = getword(s);
    if (i >= 0) p_.flags.setCaption(i, label);
}

void KeywordInterpreter::SWITCHFLAG(std::string& s) {
    const int i = flagIndex(getword(s));
    if (i >= 0) p_.flags.set(i, !p_.flags.value[static_cast<std::size_t>(i)]);
}

void KeywordInterpreter::CLEARFLAGS(std::string&) {
    p_.debug.DebugLog("Clearing all flags");
    p_.flags.reset();
}

void KeywordInterpreter::LABELWINDOW(std::string& s) {
    const double n = Val(getword(s));
    const std::string label = getword(s);
    if (n < 1 || n > 4) {
        p_.debug.DebugLog("Window " + numberText(n) + " out of boundries 1,4");
        return;
    }
    // Number n labels "Custom n", the tab of window n + 1.
    const int tab = TabCaptions::kFirstCustom - 1 + static_cast<int>(std::nearbyint(n));
    tabs.caption[static_cast<std::size_t>(tab)] = label;
    ++tabs.revision;
}

void KeywordInterpreter::UNLABELWINDOW(std::string&) {
    for (int i = 0; i < 4; ++i)
        tabs.caption[static_cast<std::size_t>(TabCaptions::kFirstCustom + i)] = "Custom " + decimal(i + 1);
    ++tabs.revision;
}

void KeywordInterpreter::SETVAL(std::string& s) {
    const std::string name = getword(s);
    std::string value;
    value.reserve(s.size());
    for (char c : s)
        if (c != '\r') value += c;
    p_.variables.S_SetVal(name, value);
}

void KeywordInterpreter::UNSETVAL(std::string& s) { p_.variables.S_SetVal(getword(s), ""); }

void KeywordInterpreter::MATH(std::string& s) {
    const std::string name = getword(s);
    const std::string op = getword(s);
    const double a = Val(getword(s));
    const double b = Val(getword(s));
    double r = 0;
    if (op == "+") {
        r = a + b;
    } else if (op == "*") {
        r = a * b;
    } else if (op == "/") {
        if (b == 0)
            p_.debug.DebugLog("Division by 0");
        else
            r = a / b;
    } else if (op == "-") {
        r = a - b;
    }
    if (!std::isfinite(r)) {
        // Beyond the range of a double: told, and the variable still set.
        p_.debug.DebugLog("Overflow");
        r = 0;
    }
    p_.variables.S_SetVal(name, numberText(r));
}

void KeywordInterpreter::MSGBOX(std::string& s) { p_.host.messageBox(s); }

void KeywordInterpreter::ECHO(std::string& s) {
    const std::string word = getword(s);
    std::int32_t win = 0;
    if (!valInt32(word, win)) {
        // Beyond 32 bits: the player is told the number as given.
        p_.writer.tellNoSuchWindow(numberText(std::nearbyint(Val(word))));
        return;
    }
    try {
        p_.writer.W_Print(s + "\r\n", win);
    } catch (const RunError&) {
        // A broken sequence ends the print only; what was written stays.
    }
}

void KeywordInterpreter::INJECT(std::string& s) { p_.pipeline.S_ProcessLines(s, LinePipeline::Source::Injected); }

void KeywordInterpreter::QUEUE(std::string& s) { p_.sender.s_queuedata(s); }

void KeywordInterpreter::NOP(std::string&) {}

void KeywordInterpreter::BOSS(std::string&) { p_.host.hideMainForm(); }

void KeywordInterpreter::OVERRIDE(std::string& s) {
    OverrideDir = getword(s);
    if (OverrideDir.empty())
        p_.debug.DebugLog("Override Directory has been cleared.");
    else
        p_.debug.DebugLog("Override Directory is now: " + OverrideDir);
}

void KeywordInterpreter::HELP(std::string&) {
    for (const char* line : kHelpLines) p_.debug.DebugLog(line);
}

void KeywordInterpreter::thenPart(bool holds, const std::string& rest) {
    if (holds) p_.commands.S_RunCommands(rest);
}

void KeywordInterpreter::IFGT(std::string& s) {
    const double a = Val(getword(s)), b = Val(getword(s));
    thenPart(a > b, s);
}

void KeywordInterpreter::IFLT(std::string& s) {
    const double a = Val(getword(s)), b = Val(getword(s));
    thenPart(a < b, s);
}

void KeywordInterpreter::IFGTE(std::string& s) {
    const double a = Val(getword(s)), b = Val(getword(s));
    thenPart(a >= b, s);
}

void KeywordInterpreter::IFLTE(std::string& s) {
    const double a = Val(getword(s)), b = Val(getword(s));
    thenPart(a <= b, s);
}

void KeywordInterpreter::IFEQ(std::string& s) {
    const std::string a = getword(s), b = getword(s);
    thenPart(a == b, s);
}

void KeywordInterpreter::IFDIF(std::string& s) {
    const std::string a = getword(s), b = getword(s);
    thenPart(a != b, s);
}

// The reference in front expanded to nothing when the line now starts with
// the then-part itself; it stayed as it was when it was not in the table.
void KeywordInterpreter::IFNULL(std::string& s) {
    std::string rest = trimBlanks(s);
    const char c = rest.empty() ? '\0' : rest[0];
    if (c == '#' || c == '@') {
        thenPart(true, rest);
    } else if (c == '%') {
        getword(rest);
        thenPart(true, rest);
    }
}

void KeywordInterpreter::IFNOTNULL(std::string& s) {
    std::string rest = trimBlanks(s);
    const char c = rest.empty() ? '\0' : rest[0];
    if (c == '#' || c == '@' || c == '%') return;
    getword(rest);
    thenPart(true, rest);
}

}  // namespace kelpa
