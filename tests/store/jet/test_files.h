#pragma once

#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/database.h"

namespace jet::testing {

// The shared fixtures folder, or an empty path when it is absent.
std::filesystem::path fixturesDir();

// Skips the calling test, with a message, when the fixtures are absent.
#define SKIP_WITHOUT_FIXTURES()                                           \
    do {                                                                  \
        if (::jet::testing::fixturesDir().empty()) {                      \
            GTEST_SKIP() << "../shared/fixtures is absent: test skipped"; \
        }                                                                 \
    } while (false)

// Skips the calling test where mdbtools, the other reader that checks what
// we write, is not at hand: always so in the Windows build.
#define SKIP_WITHOUT_MDBTOOLS()                                                                  \
    do {                                                                                         \
        if (std::string_view(MDB_EXPORT_EXECUTABLE).empty()) {                                   \
            GTEST_SKIP() << "mdbtools (mdb-export) is not at hand, as on Windows: test skipped"; \
        }                                                                                        \
    } while (false)

// Tests whose second process is made by fork() start their body with
// `#ifdef NO_FORK SKIP_WITHOUT_FORK(); #else`: Windows has no fork().
#ifdef _WIN32
#define NO_FORK 1
#define SKIP_WITHOUT_FORK() \
    GTEST_SKIP() << "its second process is made by fork(), which Windows has not: test skipped"
#else
// Another process (made by fork()) that has the database open from its
// making until leave(), which waits for its end. Its exit status is 0, or
// 1 when `lastLook`, run just before it leaves, returned false.
class DatabaseInOtherProcess {
public:
    DatabaseInOtherProcess(const std::string& path, PageFile::Mode mode,
                           const std::function<bool()>& lastLook = {});
    ~DatabaseInOtherProcess();
    DatabaseInOtherProcess(const DatabaseInOtherProcess&) = delete;
    DatabaseInOtherProcess& operator=(const DatabaseInOtherProcess&) = delete;

    // Whether it has the database open (false when it could not start).
    bool isOpen() const { return open_; }
    // Tells it to leave, and gives its exit status (-1 when it had none).
    int leave();

private:
    int pid_ = -1;
    int ready_[2] = {-1, -1};
    int done_[2] = {-1, -1};
    bool open_ = false;
};
#endif

// Every Access file among the fixtures that the dump must reproduce:
// access/*.mdb and both kvl databases (not the large perf file).
std::vector<std::filesystem::path> fixtureDatabases();

// Runs a shell command and returns what it wrote on standard output.
// `status` receives its exit status.
std::string runCommand(const std::string& command, int* status = nullptr);
std::string shellQuote(const std::string& text);

// A fresh directory under the system's temporary folder, removed with the object.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

// Every row of the table, in stored order.
std::vector<std::vector<Value>> readRows(const Database& database, std::u16string_view table);

// The records of a CSV text as a multiset: for comparing dumps whose row
// order may differ. Line breaks inside quoted values stay in their record.
std::multiset<std::string> csvRecords(const std::string& csv);

std::vector<unsigned char> readFileBytes(const std::filesystem::path& path);
void writeFileBytes(const std::filesystem::path& path, const std::vector<unsigned char>& bytes);

}  // namespace jet::testing
