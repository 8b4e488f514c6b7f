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

// Turns the event loop until the condition holds: the report's slices and
// the window's painting run meanwhile.
void waitFor(const std::function<bool()>& ready);

}  // namespace bench
