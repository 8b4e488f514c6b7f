#include "bench/window_bench.h"

#include <cstdlib>
#include <random>

#include <QCoreApplication>
#include <QString>

#include "shell/kit/app_path.h"

namespace bench {

namespace fs = std::filesystem;

fs::path freshTempFolder(const std::string& stem) {
    std::random_device seed;
    for (;;) {
        fs::path folder = fs::temp_directory_path() / (stem + "-" + std::to_string(seed()));
        if (fs::create_directory(folder))
            return folder;
    }
}

ProgramFolder::ProgramFolder(const fs::path& database)
    : folder_(freshTempFolder("sofravan-bench")), previous_(fs::current_path()) {
    fs::copy_file(database, folder_ / "kvl.mdb");
    fs::current_path(folder_);
    kit::setAppPathForTests(QString::fromStdString(folder_.string()));
}

ProgramFolder::~ProgramFolder() {
    kit::setAppPathForTests(QString());
    fs::current_path(previous_);
    fs::remove_all(folder_);
}

bool skipWithout(benchmark::State& state, const fs::path& file) {
    if (fs::exists(file))
        return false;
    state.SkipWithError(("missing " + file.string()).c_str());
    return true;
}

MadeUpSchool::MadeUpSchool(const std::string& stem, const std::string& options)
    : folder_(freshTempFolder(stem)) {
    const std::string command = std::string("'") + MAKE_DEMO_EXECUTABLE + "' '" + folder_.string() +
                                "' " + options + " > /dev/null";
    if (std::system(command.c_str()) != 0)
        why_ = "make-demo failed: " + command;
}

MadeUpSchool::~MadeUpSchool() {
    fs::remove_all(folder_);
}

bool MadeUpSchool::skip(benchmark::State& state) const {
    if (why_.empty())
        return false;
    state.SkipWithError(why_.c_str());
    return true;
}

void waitFor(const std::function<bool()>& ready) {
    while (!ready())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
}

}  // namespace bench
