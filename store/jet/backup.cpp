#include "backup.h"

#include <filesystem>
#include <vector>

#include "error.h"
#include "journal.h"
#include "os_file.h"

namespace jet {
namespace {

[[noreturn]] void fail(const std::string& what, const std::string& path) {
    throw Error("cannot " + what + " " + path + ": " + os::lastError());
}

// Copies every byte of `from` to `to` (made or emptied), then flushes `to`.
void copyBytes(const std::string& from, const std::string& to) {
    const os::File source = os::File::open(from, os::File::Mode::Read);
    if (!source.isOpen())
        fail("read", from);
    os::File copy = os::File::open(to, os::File::Mode::Replace);
    if (!copy.isOpen())
        fail("create", to);
    std::vector<std::uint8_t> buffer(1 << 20);
    std::uint64_t done = 0;
    for (;;) {
        const std::int64_t got = source.readAt(buffer.data(), buffer.size(), done);
        if (got < 0)
            fail("read", from);
        if (got == 0)
            break;
        if (!copy.writeAll(buffer.data(), static_cast<std::size_t>(got), done))
            fail("write", to);
        done += static_cast<std::uint64_t>(got);
    }
    if (!copy.sync())
        fail("flush", to);
    if (!copy.close())
        fail("close", to);
}

}  // namespace

void copyDatabase(const Database& source, const std::string& target) {
    std::error_code ignored;
    if (std::filesystem::exists(std::filesystem::symlink_status(os::utf8Path(target), ignored)))
        throw Error(target + " exists already: a copy never replaces it");
    const LockFile::Hold reading = source.holdForReading();
    if (std::filesystem::exists(os::utf8Path(RollbackJournal::journalPath(source.path())))) {
        throw Error(source.path() +
                    " holds an unfinished write of a copy that stopped; it is undone when the "
                    "file is next opened for writing, and only then copied");
    }
    const std::string partial = target + ".partial";
    try {
        copyBytes(source.path(), partial);
        // The finished copy takes its name last, never replacing a file of
        // that name.
        if (!os::nameWithoutReplacing(partial, target))
            fail("name the copy", target);
    } catch (...) {
        os::removeFile(partial);
        throw;
    }
    os::removeFile(partial);
    os::syncFolder(os::utf8Text(std::filesystem::absolute(os::utf8Path(target)).parent_path()));
}

}  // namespace jet
