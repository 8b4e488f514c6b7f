// jetcheck FILE: checks a Jet 4 database's integrity. Prints "OK" and exits 0
// when it is sound; otherwise prints each problem and exits 1. A file that
// cannot be read as a database at all gives its error and exit status 2.

#include <cstdio>
#include <string>

#include "store/jet/database.h"
#include "store/jet/error.h"
#include "store/jet/integrity_check.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: jetcheck FILE\n", stderr);
        return 2;
    }
    try {
        const jet::Database database(argv[1]);
        const std::vector<std::string> problems = jet::checkIntegrity(database.file());
        if (problems.empty()) {
            std::puts("OK");
            return 0;
        }
        for (const std::string& problem : problems) std::puts(problem.c_str());
        return 1;
    } catch (const jet::Error& error) {
        std::fprintf(stderr, "jetcheck: %s\n", error.what());
        return 2;
    }
}
