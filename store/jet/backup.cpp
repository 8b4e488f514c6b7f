#include "backup.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>
#include <vector>

#include "error.h"
#include "journal.h"

namespace jet {
namespace {

// A file descriptor closed when it goes.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0)
            ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }
    // Closes now, so that a failure of the close is seen.
    bool close() { return ::close(std::exchange(fd_, -1)) == 0; }

private:
    int fd_;
};

[[noreturn]] void fail(const std::string& what, const std::string& path) {
    throw Error("cannot " + what + " " + path + ": " + std::strerror(errno));
}

void writeAll(int fd, const std::uint8_t* bytes, std::size_t size, const std::string& path) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t put = ::write(fd, bytes + done, size - done);
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0)
            fail("write", path);
        done += static_cast<std::size_t>(put);
    }
}

// Copies every byte of `from` to `to` (made or emptied), then flushes `to`.
void copyBytes(const std::string& from, const std::string& to) {
    Descriptor source(::open(from.c_str(), O_RDONLY | O_CLOEXEC));
    if (source.get() < 0)
        fail("read", from);
    Descriptor copy(::open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    if (copy.get() < 0)
        fail("create", to);
    std::vector<std::uint8_t> buffer(1 << 20);
    for (;;) {
        const ssize_t got = ::read(source.get(), buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            fail("read", from);
        if (got == 0)
            break;
        writeAll(copy.get(), buffer.data(), static_cast<std::size_t>(got), to);
    }
    if (::fsync(copy.get()) != 0)
        fail("flush", to);
    if (!copy.close())
        fail("close", to);
}

// Gives the finished copy its name, never replacing a file of that name:
// link() refuses an existing one, where rename() would replace it. A file
// system without links (a memory stick's) renames after a last look.
void giveName(const std::string& partial, const std::string& target) {
    if (::link(partial.c_str(), target.c_str()) == 0)
        return;
    if (errno != EPERM && errno != EOPNOTSUPP)
        fail("name the copy", target);
    std::error_code ignored;
    if (std::filesystem::exists(std::filesystem::symlink_status(target, ignored))) {
        errno = EEXIST;
        fail("name the copy", target);
    }
    if (::rename(partial.c_str(), target.c_str()) != 0)
        fail("name the copy", target);
}

// Makes the new name in the folder durable.
void syncFolder(const std::filesystem::path& folder) {
    Descriptor directory(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.get() >= 0)
        ::fsync(directory.get());
}

}  // namespace

void copyDatabase(const Database& source, const std::string& target) {
    std::error_code ignored;
    if (std::filesystem::exists(std::filesystem::symlink_status(target, ignored)))
        throw Error(target + " exists already: a copy never replaces it");
    const LockFile::Hold reading = source.holdForReading();
    if (std::filesystem::exists(RollbackJournal::journalPath(source.path()))) {
        throw Error(source.path() +
                    " holds an unfinished write of a copy that stopped; it is undone when the "
                    "file is next opened for writing, and only then copied");
    }
    const std::string partial = target + ".partial";
    try {
        copyBytes(source.path(), partial);
        giveName(partial, target);
    } catch (...) {
        std::filesystem::remove(partial, ignored);
        throw;
    }
    std::filesystem::remove(partial, ignored);
    syncFolder(std::filesystem::absolute(target).parent_path());
}

}  // namespace jet
