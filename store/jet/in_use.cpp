#include "in_use.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "lock_file.h"

namespace jet {
namespace {

// Jet 4 claims user slot n of a database by locking the byte 0x10000001 + n
// of the ".ldb" file beside it for as long as it has the database open; it
// has 255 slots.
constexpr off_t kFirstUserSlotByte = 0x10000001;
constexpr off_t kUserSlots = 255;

#ifdef F_OFD_GETLK
constexpr int kLockTest = F_OFD_GETLK;
#else
constexpr int kLockTest = F_GETLK;
#endif

}  // namespace

bool jetUserSlotHeld(const std::string& path) {
    const std::string ldb = std::filesystem::path(path).replace_extension(".ldb").string();
    // The only raw system calls of the compaction: testing a lock takes none.
    const int fd = ::open(ldb.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0 && errno == ENOENT)
        return false;  // no .ldb: Jet has no user in the database
    if (fd < 0)
        throw Error("cannot read " + ldb + ": " + std::strerror(errno));
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = kFirstUserSlotByte;
    lock.l_len = kUserSlots;
    int result = 0;
    while ((result = ::fcntl(fd, kLockTest, &lock)) != 0 && errno == EINTR) {
    }
    const int failure = result != 0 ? errno : 0;
    ::close(fd);
    if (failure != 0)
        throw Error("cannot test the locks of " + ldb + ": " + std::strerror(failure));
    return lock.l_type != F_UNLCK;
}

// The one place that decides whether a database is in use: by a copy of this
// program (its session lock in "FILE-lock", taken here exclusively, so that
// none opens it meanwhile) or by Jet (a user slot locked in the ".ldb"). Jet
// checks come second so that no copy of ours can slip in after them.
std::shared_ptr<LockFile> ensureNotInUse(const std::string& path) {
    std::shared_ptr<LockFile> alone = LockFile::openAlone(path);
    if (!alone)
        throw InUseError("the database " + path + " is open in another copy of the program");
    if (jetUserSlotHeld(path))
        throw InUseError("the database " + path +
                         " is open in a Jet program (its .ldb has a user)");
    return alone;
}

}  // namespace jet
