#include "command/macro_runner.h"

#include <set>

#include "command/words.h"
#include "common/lines.h"
#include "common/text.h"

namespace kelpa {

namespace {

constexpr std::string_view kSuffix = ".macro";

// The numbers n up to `most` whose "%n" stands in the text. "%123" holds
// "%1", "%12" and "%123".
std::set<long long> referenced(const std::string& body, long long most) {
    std::set<long long> found;
    for (std::size_t p = body.find('%'); p != std::string::npos; p = body.find('%', p + 1)) {
        long long n = 0;
        for (std::size_t i = p + 1; i < body.size() && body[i] >= '0' && body[i] <= '9'; ++i) {
            n = n * 10 + (body[i] - '0');
            if (n == 0 || n > most) break;
            found.insert(n);
        }
    }
    return found;
}

}  // namespace

// No macro lies outside macros/: the override folder's empty, "." and ".."
// parts are passed over, as in a site's log folder.
std::string MacroRunner::folder(const std::string& overrideDir) {
    std::string f = std::string(kFolder) + "/";
    const std::string dir = slashes(overrideDir);
    for (const std::string_view part : pathParts(dir))
        if (!part.empty() && part != "." && part != "..") f.append(part).append("/");
    return f;
}

// Macro sets written on Windows name their sub-folders with backslashes.
std::string MacroRunner::slashes(const std::string& path) { return replaceAll(path, "\\", "/"); }

std::string MacroRunner::bodyOf(const std::string& text) {
    std::string body;
    for (std::string_view line : fileLines(text))
        if (line.find_first_not_of(' ') != std::string_view::npos) body.append(line).append(kCrLf);
    return body;
}

bool MacroRunner::putArguments(std::string& body, std::string args) {
    for (const char* mark : {".", "?", "!", ",", ";"}) args = replaceAll(args, mark, " ");
    for (int i = 0; i < 3; ++i) args = replaceAll(args, "  ", " ");
    args = trimBlanks(args);

    std::vector<std::string> words;
    while (!args.empty()) {
        const std::size_t blank = args.find(' ');
        words.push_back(args.substr(0, blank));
        args.erase(0, blank == std::string::npos ? args.size() : blank + 1);
    }
    // One pass per number, in ascending order, so that a word put in for
    // "%1" can hold "%2"; numbers that cannot match are skipped.
    const long long last = std::max<long long>(static_cast<long long>(words.size()), kLastCleared);
    std::set<long long> due = referenced(body, last);
    while (!due.empty()) {
        const long long n = *due.begin();
        const std::string word = n <= static_cast<long long>(words.size())
                                     ? words[static_cast<std::size_t>(n - 1)]
                                     : std::string();
        std::string ref(1, '%');  // appended, not "%" + ...: GCC 12 warns falsely on that
        ref += decimal(n);
        if (replacedSize(body, ref, word) > kMaxBodySize) return false;
        body = replaceAll(body, ref, word);
        due = referenced(body, last);
        due.erase(due.begin(), due.upper_bound(n));
    }
    return true;
}

void MacroRunner::S_RunMacro(std::string& line) {
    line = variables_.S_ExpandVars(line);
    if (line.empty()) return;
    const std::size_t blank = line.find(' ');
    const std::string name = slashes(line.substr(1, (blank == std::string::npos ? line.size() : blank) - 1));
    const std::string args = blank == std::string::npos ? std::string() : line.substr(blank + 1);

    std::string path = fileOf(folder(""), name);
    if (!overrideDir_.empty()) {
        const std::string over = fileOf(folder(overrideDir_), name);
        if (files_.exists(over)) path = over;
    }
    std::string text;
    // A name that climbs out of macros/ ("@../x") names no macro.
    if (climbsOut(name) || !files_.exists(path) || !files_.readAll(path, text)) {
        debug_.DebugLog("\r\n" + files_.absolute(path) + " UNKNOWN MACRO for command " + args + "\r\n");
        tellOtherCase(name);
        return;
    }
    if (isUtf16Text(text)) {
        debug_.tellAlways("Macro " + name + " not run: " + kUtf16Reason);
        return;
    }
    std::string body = bodyOf(text);
    if (!putArguments(body, args)) {
        debug_.tellAlways("Macro " + name + " too long with its arguments, not run");
        return;
    }
    commands_.S_RunCommands(std::move(body));
}

// The name counts case; its extension is found in any case, as folders
// copied from a case-blind system write it.
std::string MacroRunner::fileOf(const std::string& folder, const std::string& name) const {
    const std::string exact = folder + name + std::string(kSuffix);
    if (files_.exists(exact)) return exact;
    for (const std::string& file : files_.list(folder, std::string(kSuffix)))
        if (file.size() == name.size() + kSuffix.size() && file.compare(0, name.size(), name) == 0)
            return folder + file;
    return exact;
}

// File names count case on Linux; a player used to a case-blind system is
// told of a file that differs in case only.
void MacroRunner::tellOtherCase(const std::string& name) {
    const std::string wanted = name + std::string(kSuffix);
    std::vector<std::string> folders{folder("")};
    if (!overrideDir_.empty()) folders.insert(folders.begin(), folder(overrideDir_));
    for (const std::string& f : folders)
        for (const std::string& file : files_.list(f, std::string(kSuffix)))
            if (file.compare(0, name.size(), name) != 0 && sameIgnoringCase(file, wanted))
                debug_.DebugLog("Macro names count case: there is " + f + file);
}

}  // namespace kelpa
