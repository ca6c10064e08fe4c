// The language's smallest tools: the tokenizer, the number reader, the
// number printer and the upper-case fold of the code page.
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

// The number at the head of a text, 0 if there is none. Blanks, tabs and
// line feeds are skipped anywhere in it; "&H" and "&O" read hexadecimal and
// octal digits. A number beyond the range of a double reads as the largest
// double of its sign.
double Val(std::string_view text);

// Rounds to the nearest whole number, a tie going to the even one.
double roundHalfEven(double x);

// A number as a message or a value shows it: at most 15 significant digits,
// no trailing zeros, an E form for very large or small numbers (3, 0.5,
// 1E+20, 1E-05).
std::string numberText(double x);

}  // namespace kelpa
