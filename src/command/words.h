// The language's smallest tools: the tokenizer and the upper-case fold of
// the code page. Numbers are read and printed by common/numbers.h.
#pragma once

#include <string>
#include <string_view>

namespace kelpa {

// Upper case in code page 1252: a-z, the accented small letters, and the
// four small letters of 0x9A to 0xFF whose capitals live elsewhere.
char upperCase1252(char c);
std::string upperCase(std::string_view s);

// Takes the first word off `s`, folded to upper case. The word ends at the
// first blank or the first CR LF, whichever comes first; `s` keeps what
// stands behind the first character of that separator (so a CR LF leaves
// its LF). Never fails: an empty `s` gives the empty word.
std::string getword(std::string& s);

}  // namespace kelpa
