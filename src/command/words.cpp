#include "command/words.h"


namespace kelpa {

char upperCase1252(char c) {
    const auto u = static_cast<unsigned char>(c);
    if (u >= 'a' && u <= 'z') return static_cast<char>(u - 32);
    switch (u) {
        case 0x9A: return static_cast<char>(0x8A);  // s caron
        case 0x9C: return static_cast<char>(0x8C);  // oe
        case 0x9E: return static_cast<char>(0x8E);  // z caron
        case 0xFF: return static_cast<char>(0x9F);  // y diaeresis
        default: break;
    }
    if (u >= 0xE0 && u <= 0xFE && u != 0xF7) return static_cast<char>(u - 32);
    return c;
}

std::string upperCase(std::string_view s) {
    std::string out(s);
    for (char& c : out) c = upperCase1252(c);
    return out;
}

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
