// What the user sees of a byte: Windows-1252, or a line graphic for the
// box-drawing bytes of text written with graphics on.
#pragma once

#include <string>
#include <string_view>

namespace kelpa {

char32_t cp1252ToUnicode(unsigned char byte);

// The byte of a character typed by the user; '?' for one the code page
// lacks.
char unicodeToCp1252(char32_t c);

// A typed text (UTF-32) as bytes.
std::string toBytes(std::u32string_view text);

}  // namespace kelpa
