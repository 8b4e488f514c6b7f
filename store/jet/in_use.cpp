#include "in_use.h"

#include <filesystem>
#include <system_error>

#include "lock_file.h"
#include "os_file.h"

namespace jet {
namespace {

// Jet 4 claims user slot n of a database by locking the byte 0x10000001 + n
// of the ".ldb" file beside it for as long as it has the database open; it
// has 255 slots.
constexpr std::uint64_t kFirstUserSlotByte = 0x10000001;
constexpr std::uint64_t kUserSlots = 255;

}  // namespace

// A slot's lock is seen by trying a shared lock on its byte, let go at once:
// a slot held by a user refuses it. The .ldb is opened for reading only.
bool jetUserSlotHeld(const std::string& path) {
    const std::string ldb = std::filesystem::path(path).replace_extension(".ldb").string();
    std::error_code missing;
    if (!std::filesystem::exists(ldb, missing))
        return false;  // no .ldb: Jet has no user in the database
    os::File file = os::File::open(ldb, os::File::Mode::Read);
    if (!file.isOpen())
        throw Error("cannot read " + ldb + ": " + os::lastError());
    for (std::uint64_t slot = 0; slot < kUserSlots; ++slot) {
        switch (file.tryLock(kFirstUserSlotByte + slot, os::LockKind::Shared)) {
            case os::LockResult::Taken:
                file.unlock(kFirstUserSlotByte + slot);
                break;
            case os::LockResult::Busy:
                return true;
            case os::LockResult::Failed:
                throw Error("cannot test the locks of " + ldb + ": " + os::lastError());
        }
    }
    return false;
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
