#include "lock_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <thread>
#include <tuple>
#include <utility>

#include "error.h"

namespace jet {
namespace {

// The counter lies at the start; the locks lie on bytes past it, so that a
// system whose byte locks keep out readers still lets everybody read it.
constexpr off_t kCounterOffset = 0;
constexpr off_t kSessionByte = 64;
constexpr off_t kStatementByte = 65;
constexpr off_t kTurnByte = 66;

// Locks of the open file description, where the system has them: a plain
// record lock belongs to the process and goes when any of its descriptors of
// the file is closed.
#ifdef F_OFD_SETLK
constexpr int kLockSet = F_OFD_SETLK;
#else
constexpr int kLockSet = F_SETLK;
#endif

using Clock = std::chrono::steady_clock;

LockTimeouts& timeouts() {
    static LockTimeouts value;
    return value;
}

// Sets one byte's lock without waiting: 0, or the system's error number.
int setLock(int fd, short type, off_t byte) noexcept {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    while (::fcntl(fd, kLockSet, &lock) != 0) {
        if (errno != EINTR)
            return errno;
    }
    return 0;
}

bool tryLock(int fd, short type, off_t byte) {
    const int failure = setLock(fd, type, byte);
    if (failure == EAGAIN || failure == EACCES)
        return false;
    if (failure != 0)
        throw Error(std::string("cannot lock the database's lock file: ") + std::strerror(failure));
    return true;
}

// Unlocks, or turns an exclusive lock shared: neither ever waits, and a
// failure leaves a lock that goes with the descriptor anyway.
void loosenLock(int fd, short type, off_t byte) noexcept { setLock(fd, type, byte); }

// Tries again and again, at growing intervals, until the deadline: a lock
// call that waits could not be given up.
void waitForLock(int fd, short type, off_t byte, Clock::time_point deadline,
                 std::chrono::milliseconds timeout, const std::string& what) {
    std::chrono::milliseconds pause{1};
    while (!tryLock(fd, type, byte)) {
        const auto now = Clock::now();
        if (now >= deadline) {
            throw Error(what + ": another user of the database has held it for " +
                        std::to_string(timeout.count()) + " ms; try again later");
        }
        std::this_thread::sleep_for(std::min<Clock::duration>(pause, deadline - now));
        pause = std::min(pause * 2, std::chrono::milliseconds{10});
    }
}

// Takes the statement lock. Whoever waits for it holds the turn byte
// meanwhile, and whoever comes next must take that byte first: so a copy
// that writes statement after statement lets a waiting reader in between,
// and the other way round.
void lockStatement(int fd, short type, const std::string& what) {
    const std::chrono::milliseconds timeout = timeouts().statement;
    const auto deadline = Clock::now() + timeout;
    waitForLock(fd, F_WRLCK, kTurnByte, deadline, timeout, what);
    try {
        waitForLock(fd, type, kStatementByte, deadline, timeout, what);
    } catch (const Error&) {
        loosenLock(fd, F_UNLCK, kTurnByte);
        throw;
    }
    loosenLock(fd, F_UNLCK, kTurnByte);
}

// The lock files this process has open, by the file's identity, so that the
// databases of one file share one. A child made by fork() shares its
// parent's open descriptions, and with them their locks: it opens its own.
struct LockFileKey {
    pid_t process;
    dev_t device;
    ino_t inode;
    bool operator<(const LockFileKey& other) const {
        return std::tie(process, device, inode) < std::tie(other.process, other.device, other.inode);
    }
};
std::mutex registryMutex;
std::map<LockFileKey, std::weak_ptr<LockFile>>& registry() {
    static std::map<LockFileKey, std::weak_ptr<LockFile>> files;
    return files;
}

}  // namespace

LockTimeouts lockTimeouts() { return timeouts(); }

void setLockTimeouts(const LockTimeouts& value) { timeouts() = value; }

std::string LockFile::lockPath(const std::string& databasePath) { return databasePath + "-lock"; }

std::shared_ptr<LockFile> LockFile::open(const std::string& databasePath, bool forWriting) {
    const std::string path = lockPath(databasePath);
    int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0 && !forWriting)
        fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        if (!forWriting)
            return nullptr;
        throw Error("cannot make the lock file " + path + ": " + std::strerror(errno));
    }
    struct stat status {};
    if (::fstat(fd, &status) != 0) {
        ::close(fd);
        throw Error("cannot read the lock file " + path + ": " + std::strerror(errno));
    }
    const std::lock_guard<std::mutex> guard(registryMutex);
    auto& known = registry()[{::getpid(), status.st_dev, status.st_ino}];
    if (std::shared_ptr<LockFile> file = known.lock()) {
        ::close(fd);
        return file;
    }
    try {
        waitForLock(fd, F_RDLCK, kSessionByte, Clock::now() + timeouts().session,
                    timeouts().session, "cannot open the database " + databasePath);
    } catch (const Error&) {
        ::close(fd);
        throw;
    }
    std::shared_ptr<LockFile> file(new LockFile(fd));
    known = file;
    return file;
}

std::shared_ptr<LockFile> LockFile::openAlone(const std::string& databasePath) {
    const std::string path = lockPath(databasePath);
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0)
        throw Error("cannot make the lock file " + path + ": " + std::strerror(errno));
    struct stat status {};
    if (::fstat(fd, &status) != 0) {
        ::close(fd);
        throw Error("cannot read the lock file " + path + ": " + std::strerror(errno));
    }
    const std::lock_guard<std::mutex> guard(registryMutex);
    auto& known = registry()[{::getpid(), status.st_dev, status.st_ino}];
    bool alone = false;
    try {
        alone = known.expired() && tryLock(fd, F_WRLCK, kSessionByte);
    } catch (const Error&) {
        ::close(fd);
        throw;
    }
    if (!alone) {
        ::close(fd);
        return nullptr;
    }
    std::shared_ptr<LockFile> file(new LockFile(fd));
    known = file;
    return file;
}

LockFile::LockFile(int fd) : fd_(fd) {}

LockFile::~LockFile() {
    // Closing the description lets go of its locks.
    ::close(fd_);
    const std::lock_guard<std::mutex> guard(registryMutex);
    std::erase_if(registry(), [](const auto& entry) { return entry.second.expired(); });
}

LockFile::Hold LockFile::holdForReading() {
    const std::lock_guard<std::mutex> guard(mutex_);
    if (readers_ == 0 && !writing_) {
        lockStatement(fd_, F_RDLCK, "cannot read the database");
    }
    ++readers_;
    return Hold(this, false);
}

LockFile::Hold LockFile::holdForWriting() {
    const std::lock_guard<std::mutex> guard(mutex_);
    if (writing_) {
        throw Error("cannot write the database: another write of this program to it is under way");
    }
    // A read of this process under way turns its shared lock into the
    // exclusive one, and back when the write ends.
    lockStatement(fd_, F_WRLCK, "cannot write the database");
    writing_ = true;
    return Hold(this, true);
}

void LockFile::release(bool writing) noexcept {
    const std::lock_guard<std::mutex> guard(mutex_);
    if (writing) {
        writing_ = false;
    } else {
        --readers_;
    }
    if (writing_)
        return;
    loosenLock(fd_, readers_ > 0 ? F_RDLCK : F_UNLCK, kStatementByte);
}

std::uint64_t LockFile::commitCount() const {
    std::uint8_t bytes[8] = {};
    const ssize_t got = ::pread(fd_, bytes, sizeof bytes, kCounterOffset);
    std::uint64_t count = 0;
    for (ssize_t i = got > 0 ? got : 0; i-- > 0;)
        count = (count << 8) | bytes[i];
    return count;
}

void LockFile::raiseCommitCount() noexcept {
    std::uint64_t count = commitCount() + 1;
    std::uint8_t bytes[8];
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(count);
        count >>= 8;
    }
    // Nobody keeps what he read across a restart of the machine, so the
    // counter needs no flush of its own. A counter that could not be raised
    // fails no commit: what others kept is also checked against the file.
    const ssize_t put = ::pwrite(fd_, bytes, sizeof bytes, kCounterOffset);
    static_cast<void>(put);
}

LockFile::Hold::Hold(Hold&& other) noexcept
    : file_(std::exchange(other.file_, nullptr)), writing_(other.writing_) {}

LockFile::Hold& LockFile::Hold::operator=(Hold&& other) noexcept {
    if (this != &other) {
        release();
        file_ = std::exchange(other.file_, nullptr);
        writing_ = other.writing_;
    }
    return *this;
}

LockFile::Hold::~Hold() { release(); }

void LockFile::Hold::release() noexcept {
    if (file_ != nullptr)
        std::exchange(file_, nullptr)->release(writing_);
}

}  // namespace jet
