// jetcheck FILE   checks an Access file's integrity: prints "OK" and exits 0
// when it finds no damage, else prints each problem on its own line and exits
// 1. A file that cannot be opened as a database at all gives its error and
// exit status 2. What could not be checked is noted on standard error.

#include <cstdio>
#include <string>

#include "store/jet/database.h"
#include "store/jet/error.h"
#include "store/jet/integrity_check.h"
#include "tools/utf8_args.h"

int main(int argc, char** argv) {
    const tools::Utf8Arguments arguments(argc, argv);
    argc = arguments.count();
    argv = arguments.values();
    if (argc != 2) {
        std::fputs("usage: jetcheck FILE\n", stderr);
        return 2;
    }
    jet::IntegrityReport report;
    try {
        const jet::Database database(argv[1]);
        const jet::LockFile::Hold lock = database.holdForReading();
        report = jet::checkIntegrityInDetail(database.file());
    } catch (const jet::Error& error) {
        std::fprintf(stderr, "jetcheck: %s\n", error.what());
        return 2;
    }
    for (const std::string& note : report.notes)
        std::fprintf(stderr, "note: %s\n", note.c_str());
    if (report.problems.empty()) {
        std::puts("OK");
    } else {
        for (const std::string& problem : report.problems)
            std::puts(problem.c_str());
    }
    if (std::fflush(stdout) != 0)
        return 2;
    return report.problems.empty() ? 0 : 1;
}
