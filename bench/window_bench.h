#pragma once

// What the benchmarks of real windows share: a folder for the school's file,
// waiting for the event loop, and one main() that makes the application.

#include <filesystem>
#include <functional>
#include <string>

#include <benchmark/benchmark.h>

namespace bench {

// A new, empty folder under the system's temporary folder.
std::filesystem::path freshTempFolder(const std::string& stem);

// A copy of a school's file in a folder of its own, which is the program's
// folder and the working folder while the object lives.
class ProgramFolder {
public:
    explicit ProgramFolder(const std::filesystem::path& database);
    ~ProgramFolder();
    ProgramFolder(const ProgramFolder&) = delete;
    ProgramFolder& operator=(const ProgramFolder&) = delete;

    std::filesystem::path database() const { return folder_ / "kvl.mdb"; }

private:
    std::filesystem::path folder_;
    std::filesystem::path previous_;
};

// Skips the benchmark, saying why, when the file is absent.
bool skipWithout(benchmark::State& state, const std::filesystem::path& file);

// A made-up school that make-demo builds, with the options given (such as
// "--students 2000 --meal-days 5"), into a new temporary folder, which goes
// with the object.
class MadeUpSchool {
public:
    MadeUpSchool(const std::string& stem, const std::string& options);
    ~MadeUpSchool();
    MadeUpSchool(const MadeUpSchool&) = delete;
    MadeUpSchool& operator=(const MadeUpSchool&) = delete;

    const std::filesystem::path& folder() const { return folder_; }
    std::filesystem::path database() const { return folder_ / "kvl.mdb"; }
    // Skips the benchmark, saying why, when make-demo failed.
    bool skip(benchmark::State& state) const;

private:
    std::filesystem::path folder_;
    std::string why_;
};

// Turns the event loop until the condition holds: the report's slices and
// the window's painting run meanwhile.
void waitFor(const std::function<bool()>& ready);

}  // namespace bench
