#include "lock_file.h"

#include <map>
#include <optional>
#include <thread>
#include <tuple>
#include <utility>

#include "error.h"

namespace jet {
namespace {

// The counter lies at the start; the locks lie on bytes past it, so that a
// system whose byte locks keep out readers (Windows) still lets everybody
// read it.
constexpr std::uint64_t kCounterOffset = 0;
constexpr std::uint64_t kSessionByte = 64;
constexpr std::uint64_t kStatementByte = 65;
constexpr std::uint64_t kTurnByte = 66;

using os::LockKind;

using Clock = std::chrono::steady_clock;

LockTimeouts& timeouts() {
    static LockTimeouts value;
    return value;
}

bool tryLock(os::File& file, LockKind kind, std::uint64_t byte) {
    const os::LockResult result = file.tryLock(byte, kind);
    if (result == os::LockResult::Failed)
        throw Error("cannot lock the database's lock file: " + os::lastError());
    return result == os::LockResult::Taken;
}

// Tries again and again, at growing intervals, until the deadline: a lock
// call that waits could not be given up.
void waitForLock(os::File& file, LockKind kind, std::uint64_t byte, Clock::time_point deadline,
                 std::chrono::milliseconds timeout, const std::string& what) {
    std::chrono::milliseconds pause{1};
    while (!tryLock(file, kind, byte)) {
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
// Unlocking never waits, and a failure leaves a lock that goes with the
// file anyway.
void lockStatement(os::File& file, LockKind kind, const std::string& what) {
    const std::chrono::milliseconds timeout = timeouts().statement;
    const auto deadline = Clock::now() + timeout;
    waitForLock(file, LockKind::Exclusive, kTurnByte, deadline, timeout, what);
    try {
        waitForLock(file, kind, kStatementByte, deadline, timeout, what);
    } catch (const Error&) {
        file.unlock(kTurnByte);
        throw;
    }
    file.unlock(kTurnByte);
}

// The lock files this process has open, by the file's identity, so that the
// databases of one file share one. A child made by fork() shares its
// parent's open descriptions, and with them their locks: it opens its own.
struct LockFileKey {
    std::uint64_t process;
    os::FileIdentity file;
    bool operator<(const LockFileKey& other) const {
        return std::tie(process, file) < std::tie(other.process, other.file);
    }
};
std::mutex registryMutex;
std::map<LockFileKey, std::weak_ptr<LockFile>>& registry() {
    static std::map<LockFileKey, std::weak_ptr<LockFile>> files;
    return files;
}

struct OpenedFile {
    os::File file;
    os::FileIdentity identity;
};

// The lock file at `path`, made when missing. Where it cannot be made, a
// reader makes do with reading it, and gets nothing when even that fails;
// for anyone else that throws Error.
std::optional<OpenedFile> openLockFile(const std::string& path, bool readingWillDo) {
    os::File file = os::File::open(path, os::File::Mode::OpenOrCreate);
    if (!file.isOpen() && readingWillDo)
        file = os::File::open(path, os::File::Mode::Read);
    if (!file.isOpen()) {
        if (readingWillDo)
            return std::nullopt;
        throw Error("cannot make the lock file " + path + ": " + os::lastError());
    }
    const std::optional<os::FileIdentity> identity = file.identity();
    if (!identity)
        throw Error("cannot read the lock file " + path + ": " + os::lastError());
    return OpenedFile{std::move(file), *identity};
}

}  // namespace

LockTimeouts lockTimeouts() {
    return timeouts();
}

void setLockTimeouts(const LockTimeouts& value) {
    timeouts() = value;
}

std::string LockFile::lockPath(const std::string& databasePath) {
    return databasePath + "-lock";
}

std::shared_ptr<LockFile> LockFile::open(const std::string& databasePath, bool forWriting) {
    std::optional<OpenedFile> opened = openLockFile(lockPath(databasePath), !forWriting);
    if (!opened)
        return nullptr;
    const std::lock_guard<std::mutex> guard(registryMutex);
    auto& known = registry()[{os::processId(), opened->identity}];
    if (std::shared_ptr<LockFile> shared = known.lock()) {
        return shared;
    }
    waitForLock(opened->file, LockKind::Shared, kSessionByte, Clock::now() + timeouts().session,
                timeouts().session, "cannot open the database " + databasePath);
    std::unique_ptr<JetUserSlot> jetUser = JetUserSlot::take(databasePath);
    std::shared_ptr<LockFile> shared(new LockFile(std::move(opened->file), std::move(jetUser)));
    known = shared;
    return shared;
}

std::shared_ptr<LockFile> LockFile::openAlone(const std::string& databasePath) {
    std::optional<OpenedFile> opened = openLockFile(lockPath(databasePath), false);
    const std::lock_guard<std::mutex> guard(registryMutex);
    auto& known = registry()[{os::processId(), opened->identity}];
    if (!known.expired() || !tryLock(opened->file, LockKind::Exclusive, kSessionByte))
        return nullptr;
    std::shared_ptr<LockFile> alone(new LockFile(std::move(opened->file)));
    known = alone;
    return alone;
}

LockFile::LockFile(os::File file, std::unique_ptr<JetUserSlot> jetUser)
    : file_(std::move(file)), jetUser_(std::move(jetUser)) {}

LockFile::~LockFile() {
    jetUser_.reset();
    // Closing the file lets go of its locks.
    file_.close();
    const std::lock_guard<std::mutex> guard(registryMutex);
    std::erase_if(registry(), [](const auto& entry) { return entry.second.expired(); });
}

LockFile::Hold LockFile::holdForReading() {
    const std::lock_guard<std::mutex> guard(mutex_);
    if (readers_ == 0 && !writing_) {
        lockStatement(file_, LockKind::Shared, "cannot read the database");
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
    // exclusive one, and back when the write ends. Where a lock cannot be
    // tightened in place (Windows), the shared one is let go first: another
    // copy's writer may then come in before this one, while the read waits.
    // Should this writer give up, the read takes its shared lock again if it
    // can have it at once; if not, the reads under way end without it.
    const bool letGoOfReads = readers_ > 0 && !os::kLocksTightenInPlace;
    if (letGoOfReads)
        file_.unlock(kStatementByte);
    try {
        lockStatement(file_, LockKind::Exclusive, "cannot write the database");
    } catch (const Error&) {
        if (letGoOfReads)
            static_cast<void>(file_.tryLock(kStatementByte, LockKind::Shared));
        throw;
    }
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
    // Neither ever waits; a failure leaves a lock that goes with the file.
    if (readers_ > 0) {
        file_.loosenToShared(kStatementByte);
    } else {
        file_.unlock(kStatementByte);
    }
}

std::uint64_t LockFile::commitCount() const {
    std::uint8_t bytes[8] = {};
    const std::int64_t got = file_.readAll(bytes, sizeof bytes, kCounterOffset);
    std::uint64_t count = 0;
    for (std::int64_t i = got > 0 ? got : 0; i-- > 0;)
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
    static_cast<void>(file_.writeAll(bytes, sizeof bytes, kCounterOffset));
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

LockFile::Hold::~Hold() {
    release();
}

void LockFile::Hold::release() noexcept {
    if (file_ != nullptr)
        std::exchange(file_, nullptr)->release(writing_);
}

}  // namespace jet
