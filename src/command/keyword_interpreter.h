// S_RunKeyword: one "#" line, one keyword. Flags, variables, window labels,
// printing, injected text, the queue, arithmetic and conditions.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "command/command_road.h"
#include "command/sender.h"
#include "command/variables.h"
#include "output/debug_channel.h"
#include "output/output_writer.h"
#include "output/window_state.h"
#include "platform/platform.h"
#include "session/line_pipeline.h"
#include "triggers/flag_table.h"

namespace kelpa {

// The captions of the tabs of SSTab1; those of the custom tabs are the
// labels of the custom windows.
struct TabCaptions {
    static constexpr int kCount = 7;
    static constexpr int kFirstCustom = 2;
    std::array<std::string, kCount> caption{"Main", "System", "Custom 1", "Custom 2", "Custom 3", "Custom 4", "Tools"};
    // Changes with every write, so that the window can follow.
    std::uint64_t revision = 0;
};

class KeywordInterpreter {
public:
    struct Parts {
        VariableTable& variables;
        FlagTable& flags;
        OutputWindows& windows;
        OutputWriter& writer;
        DebugChannel& debug;
        LinePipeline& pipeline;
        Sender& sender;
        Host& host;
        CommandRoad& commands;
    };
    explicit KeywordInterpreter(Parts parts) : p_(parts) {}

    void S_RunKeyword(const std::string& line);

    // Set by the keyword OVERRIDE only; read by the macros and their editor.
    std::string OverrideDir;
    TabCaptions tabs;

private:
    using Handler = void (KeywordInterpreter::*)(std::string& s);
    static Handler find(const std::string& kw);

    // Addresses a flag by its word; -1 (after the debug line) when out of
    // bounds.
    int flagIndex(const std::string& word);
    void thenPart(bool holds, const std::string& rest);

    void INK(std::string& s);
    void SETFLAG(std::string& s);
    void LABELFLAG(std::string& s);
    void SWITCHFLAG(std::string& s);
    void CLEARFLAGS(std::string& s);
    void LABELWINDOW(std::string& s);
    void UNLABELWINDOW(std::string& s);
    void SETVAL(std::string& s);
    void UNSETVAL(std::string& s);
    void MATH(std::string& s);
    void MSGBOX(std::string& s);
    void ECHO(std::string& s);
    void INJECT(std::string& s);
    void QUEUE(std::string& s);
    void NOP(std::string& s);
    void BOSS(std::string& s);
    void OVERRIDE(std::string& s);
    void HELP(std::string& s);
    void IFGT(std::string& s);
    void IFLT(std::string& s);
    void IFGTE(std::string& s);
    void IFLTE(std::string& s);
    void IFEQ(std::string& s);
    void IFDIF(std::string& s);
    void IFNULL(std::string& s);
    void IFNOTNULL(std::string& s);

    Parts p_;
};

}  // namespace kelpa
