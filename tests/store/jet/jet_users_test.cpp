// Our place among a database's Jet users: the user slots of the ".ldb"
// beside it, taken and left as a Jet program takes and leaves them.

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/database.h"
#include "store/jet/database_builder.h"
#include "store/jet/error.h"
#include "store/jet/jet_users.h"
#include "store/jet/os_file.h"
#include "tests/store/jet/test_files.h"

namespace jet {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kFirstSlotByte = 0x10000001;

// A Jet program's place, made by hand: its slot's lock, its names written at
// the slot's record.
class ForeignUser {
public:
    ForeignUser(const fs::path& ldb, int slot, const std::string& computer) : slot_(slot) {
        file_ = os::File::open(ldb.string(), os::File::Mode::OpenOrCreate);
        EXPECT_EQ(file_.tryLock(kFirstSlotByte + slot, os::LockKind::Exclusive),
                  os::LockResult::Taken);
        std::string record = computer + std::string(32 - computer.size(), '\0') + "Admin";
        record.resize(64, '\0');
        EXPECT_TRUE(file_.writeAll(record.data(), record.size(), std::uint64_t(slot) * 64));
    }
    void leave() { file_.unlock(kFirstSlotByte + slot_); }

private:
    os::File file_;
    int slot_;
};

std::string ourComputer() {
    return os::computerName().substr(0, 32);
}

struct Place {
    int slot;
    std::string computer;
    bool operator==(const Place&) const = default;
};

std::vector<Place> places(const std::string& database) {
    std::vector<Place> found;
    for (const JetUser& user : connectedJetUsers(database)) {
        EXPECT_EQ(user.securityName, "Admin");
        found.push_back({user.slot, user.computerName});
    }
    return found;
}

std::string newDatabase(const testing::TempDir& dir) {
    std::string path = (dir.path() / "kvl.mdb").string();
    createDatabase(path, {});
    return path;
}

TEST(JetUsers, SlotsAreTakenInTurnAndTheLastUserOutRemovesTheLdb) {
    const testing::TempDir dir;
    const std::string database = newDatabase(dir);
    const fs::path ldb = dir.path() / "kvl.ldb";
    EXPECT_EQ(ldbPath(database), ldb.string());
    EXPECT_FALSE(fs::exists(ldb));
    ASSERT_FALSE(ourComputer().empty());
    {
        ForeignUser gate(ldb, 0, "KAPI-PC");
        {
            const Database reading(database);
            EXPECT_EQ(places(database), (std::vector<Place>{{0, "KAPI-PC"}, {1, ourComputer()}}));
            {
                // One slot a process, however many times it opens the file.
                const Database writing(database, PageFile::Mode::ReadWrite);
                EXPECT_EQ(places(database).size(), 2u);
            }
            gate.leave();
            EXPECT_EQ(places(database), (std::vector<Place>{{1, ourComputer()}}));
        }
        // We were the last user: only the gate program's open file, holding
        // no slot, keeps the removed file from going on Windows.
    }
    EXPECT_FALSE(fs::exists(ldb));

    // The gate program stays after us: the file stays, with both records.
    {
        std::optional<ForeignUser> gate;
        {
            const Database reading(database);
            EXPECT_EQ(places(database), (std::vector<Place>{{0, ourComputer()}}));
            gate.emplace(ldb, 1, "KAPI-PC");
        }
        EXPECT_TRUE(fs::exists(ldb));
        EXPECT_EQ(places(database), (std::vector<Place>{{1, "KAPI-PC"}}));
        const std::vector<unsigned char> bytes = testing::readFileBytes(ldb);
        ASSERT_EQ(bytes.size(), 128u);
        EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 32).c_str(), ourComputer());
        EXPECT_EQ(std::string(bytes.begin() + 32, bytes.begin() + 64).c_str(),
                  std::string("Admin"));
        gate->leave();
    }
    // What a crash leaves (records, no locks) is nobody: the next user takes
    // slot 0 over its record and removes the file when he leaves.
    ASSERT_TRUE(fs::exists(ldb));
    EXPECT_TRUE(places(database).empty());
    {
        const Database reading(database);
        EXPECT_EQ(places(database), (std::vector<Place>{{0, ourComputer()}}));
    }
    EXPECT_FALSE(fs::exists(ldb));

    // With all 255 slots held nobody more comes in, and what was there stays.
    {
        os::File full = os::File::open(ldb.string(), os::File::Mode::OpenOrCreate);
        for (int slot = 0; slot < 255; ++slot)
            ASSERT_EQ(full.tryLock(kFirstSlotByte + slot, os::LockKind::Exclusive),
                      os::LockResult::Taken);
        EXPECT_THROW(Database(database, PageFile::Mode::ReadWrite), Error);
        EXPECT_TRUE(fs::exists(ldb));
        full.unlock(kFirstSlotByte + 200);
        const Database reading(database);
        const std::vector<JetUser> users = connectedJetUsers(database);
        ASSERT_EQ(users.size(), 255u);
        EXPECT_EQ(users[200].computerName, ourComputer());
        EXPECT_EQ(users[199].computerName, "");  // the holder wrote no names
    }
    EXPECT_TRUE(fs::exists(ldb));  // the holder of the other slots was still in when we left
}

// Other processes of ours: each has its own slot, sees the others', and the
// file goes with the last of them, however they come and go.
TEST(JetUsers, ProcessesSeeEachOtherAndTheLastOneOutRemovesTheLdb) {
#ifdef NO_FORK
    SKIP_WITHOUT_FORK();
#else
    const testing::TempDir dir;
    const std::string database = newDatabase(dir);
    const fs::path ldb = dir.path() / "kvl.ldb";
    {
        testing::DatabaseInOtherProcess other(database, PageFile::Mode::ReadWrite,
                                              [&] { return places(database).size() == 2; });
        ASSERT_TRUE(other.isOpen());
        EXPECT_EQ(places(database), (std::vector<Place>{{0, ourComputer()}}));
        const Database mine(database);
        EXPECT_EQ(places(database), (std::vector<Place>{{0, ourComputer()}, {1, ourComputer()}}));
        EXPECT_EQ(other.leave(), 0);
        EXPECT_EQ(places(database), (std::vector<Place>{{1, ourComputer()}}));
        EXPECT_TRUE(fs::exists(ldb));
    }
    EXPECT_FALSE(fs::exists(ldb));

    // Four processes come and go two hundred times each. Whoever comes in
    // must find his slot in the file that the name leads to, never in one
    // that the last user out removed meanwhile.
    std::vector<pid_t> children;
    for (int i = 0; i < 4; ++i) {
        const pid_t comer = ::fork();
        ASSERT_GE(comer, 0);
        if (comer == 0) {
            for (int round = 0; round < 200; ++round) {
                const std::unique_ptr<JetUserSlot> place = JetUserSlot::take(database);
                bool seen = false;
                for (const JetUser& user : connectedJetUsers(database))
                    seen = seen || user.slot == place->slot();
                if (!seen)
                    ::_exit(1);
            }
            ::_exit(0);
        }
        children.push_back(comer);
    }
    for (const pid_t comer : children) {
        int status = 0;
        ::waitpid(comer, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    EXPECT_FALSE(fs::exists(ldb));

    // A user who dies leaves his record and no lock: nobody is in.
    const pid_t dying = ::fork();
    ASSERT_GE(dying, 0);
    if (dying == 0) {
        const Database other(database);
        os::killThisProcess();
    }
    int status = 0;
    ::waitpid(dying, &status, 0);
    EXPECT_TRUE(fs::exists(ldb));
    EXPECT_TRUE(places(database).empty());
#endif
}

}  // namespace
}  // namespace jet
