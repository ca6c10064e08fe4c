// S_RunMacro: "@name args" reads macros/name.macro (or the override
// folder's file of that name), puts the arguments into its text and runs it.
#pragma once

#include <string>

#include "command/command_road.h"
#include "command/variables.h"
#include "output/debug_channel.h"
#include "platform/platform.h"

namespace kelpa {

class MacroRunner {
public:
    static constexpr const char* kFolder = "macros";
    // Parameters that no argument fills are removed up to this number;
    // above it they stay in the text.
    static constexpr int kLastCleared = 20;
    // A body that the arguments would grow beyond this is not run.
    static constexpr std::size_t kMaxBodySize = VariableTable::kMaxExpandedSize;

    MacroRunner(VariableTable& variables, FileSystem& files, DebugChannel& debug, CommandRoad& commands,
                const std::string& overrideDir)
        : variables_(variables), files_(files), debug_(debug), commands_(commands), overrideDir_(overrideDir) {}

    void S_RunMacro(std::string& line);

    // The folder that macro files are read from and written to, with its
    // trailing "/": "macros/" or "macros/<dir>/".
    static std::string folder(const std::string& overrideDir);
    // A name or folder with its backslashes turned into slashes.
    static std::string slashes(const std::string& path);

    // The lines of a macro file, cut at CR LF, a lone CR or a lone LF.
    static std::string bodyOf(const std::string& fileText);

    // Cleans the argument text and puts its words into the body.
    static bool putArguments(std::string& body, std::string args);

private:
    std::string fileOf(const std::string& folder, const std::string& name) const;
    void tellOtherCase(const std::string& name);

    VariableTable& variables_;
    FileSystem& files_;
    DebugChannel& debug_;
    CommandRoad& commands_;
    const std::string& overrideDir_;
};

}  // namespace kelpa
