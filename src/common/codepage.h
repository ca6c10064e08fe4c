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

// Bytes as UTF-8, each byte one character.
std::string cp1252ToUtf8(std::string_view bytes);

// UTF-8 back to bytes; false, with `out` undefined, for text that is not
// UTF-8 or holds a character the code page lacks.
bool utf8ToCp1252(std::string_view utf8, std::string& out);

// Upper case in code page 1252: a-z, the accented small letters, and the
// four small letters of 0x9A to 0xFF whose capitals live elsewhere.
char upperCase1252(char c);
std::string upperCase(std::string_view s);
// Whether two texts are one in upper case.
bool sameIgnoringCase(std::string_view a, std::string_view b);
// The order players read names in: letters without case, and the bytes'
// order only between names that differ in case alone.
bool lessIgnoringCase(std::string_view a, std::string_view b);

}  // namespace kelpa
