// The language's smallest tools: the tokenizer. The upper-case fold of the
// code page is in common/codepage.h; numbers are read and printed by
// common/numbers.h.
#pragma once

#include <string>
#include <string_view>

#include "common/codepage.h"

namespace kelpa {

// Takes the first word off `s`, folded to upper case. The word ends at the
// first blank or the first CR LF, whichever comes first; `s` keeps what
// stands behind the first character of that separator (so a CR LF leaves
// its LF). Never fails: an empty `s` gives the empty word.
std::string getword(std::string& s);

}  // namespace kelpa
