#include "jet_users.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <thread>

#include "error.h"

namespace jet {
namespace {

// User slot n is claimed by a lock on the byte 0x10000001 + n of the file,
// far past its data, and its record lies at n * 64: the computer's name in
// the first 32 bytes, the security name in the other 32.
constexpr std::uint64_t kFirstSlotByte = 0x10000001;
constexpr int kSlots = 255;
constexpr std::size_t kNameSize = 32;
constexpr std::size_t kRecordSize = 2 * kNameSize;
constexpr const char* kSecurityName = "Admin";

// A user who leaves holds every slot for a moment to see whether he is the
// last; and on Windows a file being removed cannot be opened until it is
// gone. A newcomer who meets either tries again for this long.
constexpr std::chrono::milliseconds kPatience{1000};
constexpr std::chrono::milliseconds kPause{5};

using Clock = std::chrono::steady_clock;

std::uint64_t slotByte(int slot) {
    return kFirstSlotByte + static_cast<std::uint64_t>(slot);
}

std::uint64_t recordOffset(int slot) {
    return static_cast<std::uint64_t>(slot) * kRecordSize;
}

bool exists(const std::string& path) {
    std::error_code error;
    return std::filesystem::exists(os::utf8Path(path), error) || error;
}

// Whether `path` still names the open file. POSIX lets the last user remove
// the file while a newcomer has it open; the newcomer then makes it anew.
bool stillNamed(const os::File& file, const std::string& path) {
    const os::File named = os::File::open(path, os::File::Mode::Read);
    return named.isOpen() && named.identity() == file.identity();
}

// The first slot whose lock could be had, held now; -1 when all are held.
int takeFreeSlot(os::File& file, const std::string& path) {
    for (int slot = 0; slot < kSlots; ++slot) {
        switch (file.tryLock(slotByte(slot), os::LockKind::Exclusive)) {
            case os::LockResult::Taken:
                return slot;
            case os::LockResult::Busy:
                break;
            case os::LockResult::Failed:
                throw Error("cannot lock a user slot of " + path + ": " + os::lastError());
        }
    }
    return -1;
}

std::array<char, kRecordSize> record(const std::string& computer, const std::string& security) {
    std::array<char, kRecordSize> bytes{};  // names shorter than their field end in NULs
    std::memcpy(bytes.data(), computer.data(), std::min(computer.size(), kNameSize));
    std::memcpy(bytes.data() + kNameSize, security.data(), std::min(security.size(), kNameSize));
    return bytes;
}

std::string fieldText(const char* field) {
    return {field, strnlen(field, kNameSize)};
}

}  // namespace

std::string ldbPath(const std::string& databasePath) {
    return os::utf8Text(os::utf8Path(databasePath).replace_extension(".ldb"));
}

// A slot is seen held by trying a shared lock on its byte, let go at once: so
// the file may be opened for reading only, in a folder we may not write.
std::vector<JetUser> connectedJetUsers(const std::string& databasePath) {
    const std::string path = ldbPath(databasePath);
    os::File file = os::File::open(path, os::File::Mode::Read);
    if (!file.isOpen()) {
        if (!exists(path))
            return {};  // no locking information file: nobody has the database open
        throw Error("cannot read " + path + ": " + os::lastError());
    }
    std::vector<JetUser> users;
    for (int slot = 0; slot < kSlots; ++slot) {
        switch (file.tryLock(slotByte(slot), os::LockKind::Shared)) {
            case os::LockResult::Taken:
                file.unlock(slotByte(slot));
                continue;
            case os::LockResult::Busy:
                break;
            case os::LockResult::Failed:
                throw Error("cannot test the locks of " + path + ": " + os::lastError());
        }
        // A newcomer may not have written his names yet: they read empty.
        std::array<char, kRecordSize> bytes{};
        if (file.readAll(bytes.data(), bytes.size(), recordOffset(slot)) < 0)
            throw Error("cannot read " + path + ": " + os::lastError());
        users.push_back({slot, fieldText(bytes.data()), fieldText(bytes.data() + kNameSize)});
    }
    return users;
}

// The file is opened so that nobody removes it while we are in it (on
// Windows; elsewhere the check after taking a slot stands for that).
std::unique_ptr<JetUserSlot> JetUserSlot::take(const std::string& databasePath) {
    const std::string path = ldbPath(databasePath);
    const auto deadline = Clock::now() + kPatience;
    for (;; std::this_thread::sleep_for(kPause)) {
        const bool patient = Clock::now() < deadline;
        os::File file =
            os::File::open(path, os::File::Mode::OpenOrCreate, os::File::Removal::Refused);
        if (!file.isOpen()) {
            if (patient && exists(path))
                continue;  // being removed by the last user out (Windows)
            return nullptr;
        }
        const int slot = takeFreeSlot(file, path);
        if (!stillNamed(file, path)) {
            if (!patient)
                break;
            continue;  // removed by the last user out meanwhile: make it anew
        }
        if (slot < 0) {
            if (patient)
                continue;  // a user on his way out holds them all for a moment
            throw Error("cannot open the database " + databasePath + ": all " +
                        std::to_string(kSlots) + " user slots of " + path + " are held");
        }
        const auto bytes = record(os::computerName(), kSecurityName);
        if (!file.writeAll(bytes.data(), bytes.size(), recordOffset(slot)))
            throw Error("cannot write " + path + ": " + os::lastError());
        return std::unique_ptr<JetUserSlot>(new JetUserSlot(path, std::move(file), slot));
    }
    throw Error("cannot open the database " + databasePath + ": its locking information file " +
                path + " is being made and removed over and over");
}

// Whoever can lock every other slot is the last user: while he holds them
// all, nobody can come in. He removes the file then; where his own open
// file keeps it from being removed (Windows), he closes it first, and the
// removal fails, as it should, for a newcomer who has it open meanwhile.
// Our record stays in the file, as Jet leaves its own: a slot without its
// lock is free whatever it holds.
JetUserSlot::~JetUserSlot() {
    for (int slot = 0; slot < kSlots; ++slot) {
        if (slot != slot_ &&
            file_.tryLock(slotByte(slot), os::LockKind::Exclusive) != os::LockResult::Taken)
            return;  // someone else is in (closing the file lets go of our locks)
    }
    if (!stillNamed(file_, path_))
        return;
    if (!os::removeFile(path_)) {
        file_.close();
        static_cast<void>(os::removeFile(path_));
    }
}

}  // namespace jet
