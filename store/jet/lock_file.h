#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "jet_users.h"
#include "os_file.h"

namespace jet {

// How long a lock is waited for before the wait gives up with an Error: the
// session lock as long as a connection's time-out, a statement's lock as
// long as a command's.
struct LockTimeouts {
    std::chrono::milliseconds session{15000};
    std::chrono::milliseconds statement{30000};
};
LockTimeouts lockTimeouts();
void setLockTimeouts(const LockTimeouts& timeouts);

// The lock file that the copies of this program keep beside a database
// ("kvl.mdb-lock"), so that they never lock a byte of the database itself,
// which the gate program reads and locks at the same time.
//
// It holds, as locks of the operating system on bytes past its data:
// - the session lock, held shared by every open database for its life, and
//   exclusive by whoever needs the file to himself;
// - the statement lock, shared while a statement reads and exclusive while
//   one writes, so that a reader never sees half of a write;
// and, as data, the commit counter, which a writer raises once its pages are
// on disk: whoever finds it changed knows that what it kept from the file is
// old.
//
// Beside it, the process takes a user slot in Microsoft Jet's own locking
// information file ("kvl.ldb") for as long as it has the database open, as a
// Jet program does, so that Jet's list of users shows it (see jet_users.h).
//
// One process opens a lock file once (open() hands out the same object to
// every database of that file), and counts its readers and its writer
// itself: a read inside the process's own write goes ahead, reading the file
// as the last commit left it. A database is used by one thread at a time.
class LockFile {
public:
    static std::string lockPath(const std::string& databasePath);

    // The lock file of the database, made when missing, with this process's
    // session lock on it and its user slot in Jet's locking information file.
    // A database opened for reading in a folder where the lock file cannot be
    // made gets none (null): nobody can write there. Throws Error when the
    // file cannot be made for a writer, when the session lock is not had
    // within its time-out, or when Jet's user slots are all held.
    static std::shared_ptr<LockFile> open(const std::string& databasePath, bool forWriting);

    // The lock file of the database with this process's session lock held
    // exclusively: no other copy of the program opens the database while it
    // lives, and this process's own databases of that file share it (see
    // open()). It takes no Jet user slot: it is for work on the file alone.
    // Null when another copy has the database open, or this process has it
    // open already. Throws Error when the lock file cannot be made.
    static std::shared_ptr<LockFile> openAlone(const std::string& databasePath);

    ~LockFile();
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

    // Holds the statement lock until it goes.
    class Hold {
    public:
        Hold() = default;
        Hold(Hold&& other) noexcept;
        Hold& operator=(Hold&& other) noexcept;
        ~Hold();

    private:
        friend class LockFile;
        Hold(LockFile* file, bool writing) : file_(file), writing_(writing) {}
        void release() noexcept;

        LockFile* file_ = nullptr;  // none: nothing held
        bool writing_ = false;
    };

    // Both wait for another process's writer (and a writer for its readers)
    // no longer than the statement time-out, then throw Error. A writer
    // while this process already writes throws at once: it would wait for
    // itself.
    Hold holdForReading();
    Hold holdForWriting();

    // The number of commits to the database since the lock file was made.
    std::uint64_t commitCount() const;
    // REQUIRES: held for writing.
    void raiseCommitCount() noexcept;

private:
    explicit LockFile(os::File file, std::unique_ptr<JetUserSlot> jetUser = nullptr);
    void release(bool writing) noexcept;

    os::File file_;
    std::unique_ptr<JetUserSlot> jetUser_;  // none for work alone, or where it cannot be made
    std::mutex mutex_;                      // guards the counts below
    int readers_ = 0;                       // reads under way in this process
    bool writing_ = false;
};

}  // namespace jet
