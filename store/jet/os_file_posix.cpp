#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "os_file.h"

namespace jet::os {
namespace {

// Locks of the open file description, where the system has them: a plain
// record lock belongs to the process and goes when any of its descriptors of
// the file is closed.
#ifdef F_OFD_SETLK
constexpr int kLockSet = F_OFD_SETLK;
#else
constexpr int kLockSet = F_SETLK;
#endif

// Sets one byte's lock without waiting: 0, or the system's error number.
int setLock(int fd, short type, std::uint64_t byte) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(byte);
    lock.l_len = 1;
    while (::fcntl(fd, kLockSet, &lock) != 0) {
        if (errno != EINTR)
            return errno;
    }
    return 0;
}

int closeDescriptor(int fd) {
    // A close interrupted by a signal has closed the descriptor all the same
    // on this system: it is never repeated.
    return ::close(fd);
}

}  // namespace

File::~File() {
    if (fd_ >= 0)
        closeDescriptor(fd_);
}

File::File(File&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

File& File::operator=(File&& other) noexcept {
    if (this != &other) {
        if (fd_ >= 0)
            closeDescriptor(fd_);
        fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
}

File File::open(const std::string& path, Mode mode, Removal /*removal: always allowed*/) {
    int flags = O_CLOEXEC;
    switch (mode) {
        case Mode::Read:
            flags |= O_RDONLY;
            break;
        case Mode::ReadWrite:
            flags |= O_RDWR;
            break;
        case Mode::OpenOrCreate:
            flags |= O_RDWR | O_CREAT;
            break;
        case Mode::Replace:
            flags |= O_WRONLY | O_CREAT | O_TRUNC;
            break;
    }
    int fd = -1;
    do {
        fd = ::open(path.c_str(), flags, 0666);
    } while (fd < 0 && errno == EINTR);
    return File(fd);
}

bool File::isOpen() const {
    return fd_ >= 0;
}

std::int64_t File::readAt(void* buffer, std::size_t size, std::uint64_t offset) const {
    for (;;) {
        const ssize_t got = ::pread(fd_, buffer, size, static_cast<off_t>(offset));
        if (got >= 0 || errno != EINTR)
            return got;
    }
}

std::int64_t File::writeAt(const void* buffer, std::size_t size, std::uint64_t offset) {
    for (;;) {
        const ssize_t put = ::pwrite(fd_, buffer, size, static_cast<off_t>(offset));
        if (put == 0 && size != 0) {
            errno = EIO;  // nothing written and no reason given: never loop on it
            return -1;
        }
        if (put >= 0 || errno != EINTR)
            return put;
    }
}

std::optional<std::uint64_t> File::size() const {
    struct stat status {};
    if (::fstat(fd_, &status) != 0)
        return std::nullopt;
    return static_cast<std::uint64_t>(status.st_size);
}

bool File::isRegularFile() const {
    struct stat status {};
    return ::fstat(fd_, &status) == 0 && S_ISREG(status.st_mode);
}

std::optional<FileIdentity> File::identity() const {
    struct stat status {};
    if (::fstat(fd_, &status) != 0)
        return std::nullopt;
    return FileIdentity{static_cast<std::uint64_t>(status.st_dev),
                        static_cast<std::uint64_t>(status.st_ino)};
}

bool File::truncate(std::uint64_t length) {
    return ::ftruncate(fd_, static_cast<off_t>(length)) == 0;
}

bool File::sync() {
    return ::fsync(fd_) == 0;
}

bool File::close() {
    return closeDescriptor(std::exchange(fd_, -1)) == 0;
}

LockResult File::tryLock(std::uint64_t byte, LockKind kind) {
    const int failure = setLock(fd_, kind == LockKind::Shared ? F_RDLCK : F_WRLCK, byte);
    if (failure == 0)
        return LockResult::Taken;
    errno = failure;
    return failure == EAGAIN || failure == EACCES ? LockResult::Busy : LockResult::Failed;
}

bool File::unlock(std::uint64_t byte) {
    return setLock(fd_, F_UNLCK, byte) == 0;
}

// A record lock set over one's own is replaced by it in one step.
bool File::loosenToShared(std::uint64_t byte) {
    return setLock(fd_, F_RDLCK, byte) == 0;
}

std::string lastError() {
    return std::strerror(errno);
}

bool renameOver(const std::string& from, const std::string& to) {
    return ::rename(from.c_str(), to.c_str()) == 0;
}

bool nameWithoutReplacing(const std::string& from, const std::string& to) {
    // link() refuses an existing name, where rename() would replace it.
    if (::link(from.c_str(), to.c_str()) == 0)
        return true;
    if (errno != EPERM && errno != EOPNOTSUPP)
        return false;
    struct stat status {};
    if (::lstat(to.c_str(), &status) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::rename(from.c_str(), to.c_str()) == 0;
}

bool removeFile(const std::string& path) {
    return ::unlink(path.c_str()) == 0 || errno == ENOENT;
}

void syncFolder(const std::string& folder) {
    const int fd =
        ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;  // some systems cannot open folders; the data itself is flushed
    ::fsync(fd);
    closeDescriptor(fd);
}

bool isWritable(const std::string& path) {
    return ::access(path.c_str(), W_OK) == 0;
}

std::vector<std::string> commandLineArguments() {
    return {};
}

std::uint64_t processId() {
    return static_cast<std::uint64_t>(::getpid());
}

std::string computerName() {
    char name[256] = {};
    if (::gethostname(name, sizeof name - 1) != 0)
        return {};
    return name;
}

void killThisProcess() {
    ::kill(::getpid(), SIGKILL);
    ::_exit(137);  // not reached: SIGKILL cannot be caught
}

}  // namespace jet::os
