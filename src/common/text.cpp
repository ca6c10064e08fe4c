#include "common/text.h"

#include <algorithm>

#include "common/codepage.h"


namespace kelpa {

std::string trimBlanks(std::string_view s) {
    std::size_t b = 0;
    std::size_t e = s.size();
    while (b < e && s[b] == ' ') ++b;
    while (e > b && s[e - 1] == ' ') --e;
    return std::string(s.substr(b, e - b));
}

std::string replaceAll(std::string_view s, std::string_view from, std::string_view to) {
    std::string out;
    out.reserve(s.size());
    std::size_t pos = 0;
    while (true) {
        std::size_t hit = s.find(from, pos);
        if (hit == std::string_view::npos) break;
        out.append(s.substr(pos, hit - pos));
        out.append(to);
        pos = hit + from.size();
    }
    out.append(s.substr(pos));
    return out;
}

std::size_t countOf(std::string_view s, std::string_view what) {
    std::size_t n = 0;
    for (std::size_t p = s.find(what); p != std::string_view::npos; p = s.find(what, p + what.size())) ++n;
    return n;
}

std::string decimal(long long n) { return std::to_string(n); }

std::vector<std::string_view> pathParts(std::string_view path) {
    std::vector<std::string_view> parts;
    for (std::size_t start = 0; start <= path.size();) {
        std::size_t end = path.find('/', start);
        if (end == std::string_view::npos) end = path.size();
        parts.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

bool climbsOut(std::string_view path) {
    long long depth = 0;
    for (const std::string_view part : pathParts(path)) {
        if (part == "..") {
            if (--depth < 0) return true;
        } else if (!part.empty() && part != ".") {
            ++depth;
        }
    }
    return false;
}

bool endsWithIgnoringCase(std::string_view name, std::string_view suffix) {
    if (name.size() < suffix.size()) return false;
    auto fold = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    const std::string_view tail = name.substr(name.size() - suffix.size());
    for (std::size_t i = 0; i < suffix.size(); ++i)
        if (fold(tail[i]) != fold(suffix[i])) return false;
    return true;
}

bool portableFileName(std::string_view name) {
    if (trimBlanks(name).empty() || name.back() == ' ' || name.back() == '.') return false;
    return name.find_first_of(std::string_view("\\/:*?\"<>|\0", 10)) == std::string_view::npos;
}

std::string fileFailureMessage(std::string_view action, std::string_view path, std::string_view why) {
    std::string m = "Cannot " + std::string(action) + " " + std::string(path);
    if (!why.empty()) m += ": " + std::string(why);
    return m + ".";
}

namespace {

std::string refusal(std::string_view kind, std::string_view name, std::string_view why) {
    return "Cannot use the " + std::string(kind) + " name \"" + std::string(name) + "\": " + std::string(why);
}

}  // namespace

std::string refusedNameMessage(std::string_view kind, std::string_view name) {
    return refusal(kind, name, "a name is not blank, does not end in a blank or a dot, and holds none of \\ / : * ? \" < > |");
}

std::string nameRefusal(std::string_view kind, std::string_view name, const std::vector<std::string>& present) {
    if (!portableFileName(name)) return refusedNameMessage(kind, name);
    if (std::find(present.begin(), present.end(), name) != present.end()) return {};
    for (const std::string& other : present)
        if (sameIgnoringCase(other, name))
            return refusal(kind, name,
                           "there is " + other + ", and names that differ only in case are one file on case-blind systems");
    return {};
}

}  // namespace kelpa
