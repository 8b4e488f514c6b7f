#pragma once

#include <string>
#include <vector>

namespace tools {

// The program's arguments in UTF-8, as the engine takes file names and table
// names. A POSIX system hands main() its arguments as they were typed; Windows
// hands them over in the ANSI code page, where a letter outside that page
// (a Turkish ı or ş on a Western one) is lost, so there they are read again
// from the UTF-16 command line. Use in place of main()'s argc and argv:
//
//     const tools::Utf8Arguments arguments(argc, argv);
//     argc = arguments.count();
//     argv = arguments.values();
class Utf8Arguments {
public:
    Utf8Arguments(int argc, char** argv);
    Utf8Arguments(const Utf8Arguments&) = delete;
    Utf8Arguments& operator=(const Utf8Arguments&) = delete;

    int count() const { return static_cast<int>(values_.size()) - 1; }
    // As main()'s argv: count() arguments, then a null pointer. They live
    // as long as this object.
    char** values() const { return const_cast<char**>(values_.data()); }

private:
    std::vector<std::string> texts_;
    std::vector<char*> values_;
};

}  // namespace tools
