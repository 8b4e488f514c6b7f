#include "test_files.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <utility>

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace jet::testing {

std::filesystem::path fixturesDir() {
    const std::filesystem::path dir(SOFRAVAN_FIXTURES_DIR);
    return std::filesystem::is_directory(dir / "access") ? dir : std::filesystem::path();
}

std::vector<std::filesystem::path> fixtureDatabases() {
    std::vector<std::filesystem::path> files;
    const std::filesystem::path dir = fixturesDir();
    if (dir.empty()) return files;
    for (const auto& entry : std::filesystem::directory_iterator(dir / "access")) {
        if (entry.path().extension() == ".mdb") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    files.push_back(dir / "kvl" / "kvl.mdb");
    files.push_back(dir / "kvl" / "yurtsayim" / "kvl.mdb");
    return files;
}

std::string shellQuote(const std::string& text) {
#ifdef _WIN32
    // cmd.exe, which _popen runs, knows double quotes only; no file name
    // holds one.
    return '"' + text + '"';
#endif
    std::string quoted = "'";
    for (const char c : text) {
        if (c == '\'') {
            quoted += "'\\''";
        } else {
            quoted.push_back(c);
        }
    }
    return quoted + "'";
}

std::string runCommand(const std::string& command, int* status) {
    std::string output;
#ifdef _WIN32
    // cmd.exe takes the line without its outer quotes when it starts with
    // one; text mode turns the programs' CRLF into LF.
    FILE* pipe = ::_popen(('"' + command + '"').c_str(), "r");
#else
    FILE* pipe = ::popen(command.c_str(), "r");
#endif
    if (pipe == nullptr) {
        if (status != nullptr) *status = -1;
        return output;
    }
    char buffer[1 << 16];
    std::size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) output.append(buffer, got);
#ifdef _WIN32
    const int raw = ::_pclose(pipe);
    if (status != nullptr) *status = raw;
#else
    const int raw = ::pclose(pipe);
    if (status != nullptr) *status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
#endif
    return output;
}

TempDir::TempDir() {
    std::random_device random;
    path_ = std::filesystem::temp_directory_path() /
            ("sofravan-test-" + std::to_string(random()) + std::to_string(random()));
    std::filesystem::create_directories(path_);
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::vector<unsigned char> readFileBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<unsigned char>(std::istreambuf_iterator<char>(in),
                                      std::istreambuf_iterator<char>());
}

void writeFileBytes(const std::filesystem::path& path, const std::vector<unsigned char>& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
}

std::vector<std::vector<Value>> readRows(const Database& database, std::u16string_view name) {
    const LockFile::Hold lock = database.holdForReading();
    const TableDefinition table = database.table(name);
    std::vector<std::vector<Value>> rows;
    TableCursor cursor = database.scan(table);
    std::vector<Value> values;
    while (cursor.next()) {
        cursor.values(values);
        rows.push_back(values);
    }
    return rows;
}

std::multiset<std::string> csvRecords(const std::string& csv) {
    std::multiset<std::string> records;
    std::size_t start = 0;
    while (start < csv.size()) {
        std::size_t end = start;
        bool quoted = false;
        while (end < csv.size() && (quoted || csv[end] != '\n')) {
            if (csv[end] == '"') quoted = !quoted;
            ++end;
        }
        records.insert(csv.substr(start, end - start));
        start = end + 1;
    }
    return records;
}

#ifndef NO_FORK
DatabaseInOtherProcess::DatabaseInOtherProcess(const std::string& path, PageFile::Mode mode,
                                               const std::function<bool()>& lastLook) {
    if (::pipe(ready_) != 0 || ::pipe(done_) != 0)
        return;
    pid_ = ::fork();
    if (pid_ == 0) {
        const Database database(path, mode);
        char signal = 'o';
        (void)::write(ready_[1], &signal, 1);
        (void)::read(done_[0], &signal, 1);
        ::_exit(!lastLook || lastLook() ? 0 : 1);
    }
    char signal = 0;
    open_ = pid_ > 0 && ::read(ready_[0], &signal, 1) == 1;
}

int DatabaseInOtherProcess::leave() {
    if (pid_ <= 0)
        return -1;
    char signal = 'l';
    (void)::write(done_[1], &signal, 1);
    int status = 0;
    const pid_t ended = ::waitpid(std::exchange(pid_, -1), &status, 0);
    return ended > 0 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

DatabaseInOtherProcess::~DatabaseInOtherProcess() {
    leave();
    for (const int fd : {ready_[0], ready_[1], done_[0], done_[1]}) {
        if (fd >= 0)
            ::close(fd);
    }
}
#endif

}  // namespace jet::testing
