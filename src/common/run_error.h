// The one kind of failure that the receive road catches: a routine met text
// it cannot take apart. Carries what the log's error line prints.
#pragma once

#include <stdexcept>
#include <string>

namespace kelpa {

class RunError : public std::runtime_error {
public:
    RunError(int number, const std::string& description, std::string source)
        : std::runtime_error(description), number_(number), source_(std::move(source)) {}

    int number() const { return number_; }
    const std::string& source() const { return source_; }

    // The classic "invalid procedure call or argument" that a bad text raises.
    static RunError invalidArgument(std::string source) {
        return RunError(5, "Invalid procedure call or argument", std::move(source));
    }

private:
    int number_;
    std::string source_;
};

// Trigger actions that inject text which fires triggers again, nested past
// the limit. The receive road lets it pass through the nested chunks and
// writes its line once, for the outermost one, so a runaway loop ends the
// whole received chunk and its cost stays bounded.
class NestingTooDeep : public RunError {
public:
    NestingTooDeep() : RunError(28, "Out of stack space", "T_Match") {}
};

}  // namespace kelpa
