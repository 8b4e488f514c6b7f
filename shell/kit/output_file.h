#pragma once

#include <stdexcept>

#include <QString>

namespace kit {

// The runtime's error 75, "Path/File access error": a file that could not
// be opened or written.
class FileAccessError : public std::runtime_error {
public:
    FileAccessError() : std::runtime_error("Path/File access error") {}
};

// The original's "Open path For Output", one "Print" of the text, "Close":
// the file is replaced by the text in the Turkish code page followed by a
// carriage return and a line feed. It is written in place, with no
// temporary file. Throws FileAccessError when
// the file cannot be opened or written, a protected folder or a folder of
// that name for instance.
void printToOutputFile(const QString& path, const QString& text);

}  // namespace kit
