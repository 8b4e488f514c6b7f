#pragma once

#include <string>
#include <string_view>

#include "bytes.h"

namespace jet {

// Decodes a stored Jet 4 text: UTF-16LE, or, when it begins with FF FE, the
// compressed form in which runs of one-byte characters (high byte zero) and
// runs of two-byte characters alternate, each switch marked by a zero byte.
std::u16string decodeText(ByteView stored);

// UTF-16 to UTF-8; an unpaired surrogate becomes U+FFFD.
std::string toUtf8(std::u16string_view text);
void appendUtf8(std::string& out, std::u16string_view text);

// UTF-8 to UTF-16; an invalid sequence becomes U+FFFD.
std::u16string fromUtf8(std::string_view text);

}  // namespace jet
