#include "command/words.h"


namespace kelpa {

std::string getword(std::string& s) {
    const std::size_t blank = s.find(' ');
    const std::size_t pair = s.find("\r\n");
    const std::size_t end = blank < pair ? blank : pair;
    if (end == std::string::npos) {
        std::string word = upperCase(s);
        s.clear();
        return word;
    }
    std::string word = upperCase(std::string_view(s).substr(0, end));
    s.erase(0, end + 1);
    return word;
}

}  // namespace kelpa
