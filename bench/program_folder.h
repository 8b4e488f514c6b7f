#pragma once

#include <filesystem>
#include <string>

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

}  // namespace bench
