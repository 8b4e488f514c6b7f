#pragma once

#include <QString>

namespace kit {

// The original's "Open path For Output", one "Print" of the text, "Close":
// the file is replaced by the text in the Turkish code page followed by a
// carriage return and a line feed. It is written in place, with no
// temporary file. Throws std::runtime_error ("Path/File access error") when
// the file cannot be opened or written, a protected folder or a folder of
// that name for instance.
void printToOutputFile(const QString& path, const QString& text);

}  // namespace kit
