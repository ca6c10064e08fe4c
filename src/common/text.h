// Byte-string helpers shared by the core. One character per byte; positions
// count from 1 only where a routine says so.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kelpa {

inline constexpr char kIac = static_cast<char>(255);
inline constexpr char kEsc = static_cast<char>(27);
inline constexpr std::string_view kCrLf = "\r\n";

// Removes blanks (character 32 only) at both ends; tabs, CR and LF stay.
std::string trimBlanks(std::string_view s);

// Replaces every occurrence of `from` (non-empty) by `to`, left to right,
// in one pass.
std::string replaceAll(std::string_view s, std::string_view from, std::string_view to);

// How many times `what` (non-empty) occurs, left to right, without overlap.
std::size_t countOf(std::string_view s, std::string_view what);

// The length of replaceAll(s, from, to), without building it.
inline std::size_t replacedSize(std::string_view s, std::string_view from, std::string_view to) {
    const std::size_t n = countOf(s, from);
    return s.size() - n * from.size() + n * to.size();
}

// The parts of a path cut at "/", empty ones included.
std::vector<std::string_view> pathParts(std::string_view path);
// Whether a relative path climbs above its start through ".." parts
// ("a/../.." does, "a/../b" does not).
bool climbsOut(std::string_view path);

// A text in double quotes, for a debug line that names it: one that ends in
// ";" would otherwise leave the debug line open.
inline std::string quoted(std::string_view s) { return "\"" + std::string(s) + "\""; }

// Decimal text of a whole number.
std::string decimal(long long n);

// Whether `name` ends with `suffix`, letters compared without case.
bool endsWithIgnoringCase(std::string_view name, std::string_view suffix);

// Whether a name can be a file of the editors' folders on any system the
// folders may be copied to: not blank, not ending in a blank or a dot
// (which case-blind systems drop), and none of \ / : * ? " < > | or NUL
// (so the templates' "?" must be replaced).
bool portableFileName(std::string_view name);

// The editors' message for a name that is not one.
std::string refusedNameMessage(std::string_view kind, std::string_view name);

// Why the editors refuse `name` in a folder whose files of their kind are
// `present`: not a portable name, or another file whose name differs only
// in case (on a case-blind system the two would be one file). Empty when
// the name may be used.
std::string nameRefusal(std::string_view kind, std::string_view name, const std::vector<std::string>& present);

// The editors' message for a file they could not save or delete:
// "Cannot save the macro <path>: <why>." (no reason: only the full stop).
std::string fileFailureMessage(std::string_view action, std::string_view path, std::string_view why);

}  // namespace kelpa
