#include "common/box_chars.h"

namespace kelpa {

namespace {

struct Tables {
    char32_t glyph[256] = {};
    char ascii[256] = {};
    Tables() {
        for (auto b : BoxChars) glyph[b.byte] = b.codePoint;
        for (int i = 0; i < 256; ++i) ascii[i] = static_cast<char>(i);
        for (unsigned char b : {0xC4, 0xCD}) ascii[b] = '-';
        for (unsigned char b : {0xB3, 0xBA}) ascii[b] = '|';
        for (unsigned char b : {0xC2, 0xDA, 0xBF, 0xC3, 0xC0, 0xC5, 0xB4, 0xC1, 0xD9, 0xC9, 0xBB,
                                0xB9, 0xC8, 0xCC, 0xBC})
            ascii[b] = '*';
    }
};

const Tables& tables() {
    static const Tables t;
    return t;
}

}  // namespace

char32_t boxGlyph(unsigned char byte) { return tables().glyph[byte]; }

char asciiForBox(char byte) { return tables().ascii[static_cast<unsigned char>(byte)]; }

}  // namespace kelpa
