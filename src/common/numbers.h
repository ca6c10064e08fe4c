// The program's one reader and printer of numbers. Neither follows the
// system's language: a decimal point is always ".".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kelpa {

// The number at the head of a text, 0 if there is none. Blanks, tabs and
// line feeds are skipped anywhere in it; "&H" and "&O" read hexadecimal and
// octal digits. A number beyond the range of a double reads as the largest
// double of its sign.
double Val(std::string_view text);

// Val rounded to a whole number, a tie going to the even one; false when
// that does not fit in 32 bits.
bool valInt32(std::string_view text, std::int32_t& out);

// Val rounded as above and held to the 32-bit range.
std::int32_t valInt32Clamped(std::string_view text);

// A number as a message or a value shows it: at most 15 significant digits,
// no trailing zeros, an E form for very large or small numbers (3, 0.5,
// 1E+20, 1E-05).
std::string numberText(double x);

}  // namespace kelpa
