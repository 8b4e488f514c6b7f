// jetcompact [--password PASSWORD] IN OUT   compacts an Access file as
// Access's "Compact and Repair" does: writes OUT, a fresh copy of IN with its
// tables, rows, indexes, properties and password, without deleted rows or
// free pages. OUT must not exist; it appears whole or not at all. Exit status
// 0 when OUT was written, 1 when IN is in use (a copy of the program or a Jet
// user has it open), 2 for bad arguments, an IN that is no database or
// another password's, and an OUT that exists or cannot be written.

#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "store/jet/compact.h"
#include "store/jet/error.h"
#include "store/jet/in_use.h"
#include "store/jet/text.h"
#include "tools/utf8_args.h"

int main(int argc, char** argv) {
    const tools::Utf8Arguments arguments(argc, argv);
    argc = arguments.count();
    argv = arguments.values();
    std::u16string password;
    int first = 1;
    if (argc == 5 && std::strcmp(argv[1], "--password") == 0) {
        password = jet::fromUtf8(argv[2]);
        first = 3;
    }
    if (argc - first != 2) {
        std::fputs("usage: jetcompact [--password PASSWORD] IN OUT\n", stderr);
        return 2;
    }
    try {
        jet::compactDatabase(argv[first], argv[first + 1], password);
    } catch (const jet::InUseError& error) {
        std::fprintf(stderr, "jetcompact: %s\n", error.what());
        return 1;
    } catch (const jet::Error& error) {
        std::fprintf(stderr, "jetcompact: %s\n", error.what());
        return 2;
    }
    return 0;
}
