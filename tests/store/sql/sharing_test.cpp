// Copies of the program sharing one database: readers see whole statements
// only, nobody locks a byte of the database itself, and a lock held too
// long ends a wait with an error instead of a hang.

#ifndef _WIN32
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/database.h"
#include "store/jet/error.h"
#include "store/jet/integrity_check.h"
#include "store/jet/lock_file.h"
#include "store/jet/text.h"
#include "store/sql/executor.h"
#include "tests/store/jet/test_files.h"

namespace jet {
namespace {

#ifdef NO_FORK
TEST(Sharing, ScansSeeWholeStatementsWhileAnotherCopyWrites) { SKIP_WITHOUT_FORK(); }
TEST(Sharing, LocksLieOnTheLockFileAndWaitsEnd) { SKIP_WITHOUT_FORK(); }
#else
using Clock = std::chrono::steady_clock;

#ifdef SOFRAVAN_SANITIZED
constexpr std::chrono::seconds kSharingTime{15};  // everything runs several times slower
#else
constexpr std::chrono::seconds kSharingTime{60};
#endif

std::string copyKvl(const testing::TempDir& dir) {
    const std::filesystem::path target = dir.path() / "kvl.mdb";
    std::filesystem::copy_file(testing::fixturesDir() / "kvl" / "kvl.mdb", target);
    std::filesystem::permissions(target, std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add);
    return target.string();
}

// One day block of the menu table: four rows of day `day` in month 99, each
// text long enough that a block spans pages.
std::vector<std::vector<Value>> dayBlock(int day) {
    std::vector<std::vector<Value>> rows;
    for (int line = 0; line < 4; ++line) {
        const std::u16string text = fromUtf8("gün " + std::to_string(day) + " satır " +
                                             std::to_string(line) + " ") +
                                    std::u16string(200, u'ş');
        rows.push_back({Value::integer(99), Value::integer(day), Value::text(text),
                        Value::text(text), Value::text(text), Value::text(text)});
    }
    return rows;
}

// A child process that runs `work` and exits 0, or 1 when an error left it.
// It is killed when the test leaves before it ended.
class Child {
public:
    explicit Child(const std::function<void()>& work) : pid_(::fork()) {
        if (pid_ != 0) return;
        try {
            work();
        } catch (const std::exception& error) {
            std::fprintf(stderr, "child: %s\n", error.what());
            ::_exit(1);
        }
        ::_exit(0);
    }
    ~Child() {
        if (pid_ > 0) {
            ::kill(pid_, SIGKILL);
            wait();
        }
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    bool started() const { return pid_ > 0; }
    void kill() const { ::kill(pid_, SIGKILL); }
    // Its exit status, or 128 and the signal that ended it.
    int wait() {
        int status = 0;
        ::waitpid(std::exchange(pid_, 0), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

private:
    pid_t pid_;
};

// One process writes day blocks in a loop (single statements, statements of
// two blocks, scopes of three) and deletes the oldest ones; another scans the
// table the whole time. Every scan must see whole blocks only.
TEST(Sharing, ScansSeeWholeStatementsWhileAnotherCopyWrites) {
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    const std::string file = copyKvl(dir);
    const auto end = Clock::now() + kSharingTime;
    Child writer([&] {
        Database database(file, PageFile::Mode::ReadWrite);
        std::map<int, std::vector<RowId>> blocks;  // day -> its rows, oldest first
        int day = 0;
        while (Clock::now() < end) {
            switch (day % 3) {
                case 0:
                    blocks[day] = database.insertRows(u"MENULER", dayBlock(day));
                    ++day;
                    break;
                case 1: {
                    std::vector<std::vector<Value>> rows = dayBlock(day);
                    for (auto& row : dayBlock(day + 1)) rows.push_back(row);
                    const std::vector<RowId> placed = database.insertRows(u"MENULER", rows);
                    blocks[day].assign(placed.begin(), placed.begin() + 4);
                    blocks[day + 1].assign(placed.begin() + 4, placed.end());
                    day += 2;
                    break;
                }
                default: {
                    const Database::WriteScope scope(database);
                    for (int i = 0; i < 3; ++i, ++day)
                        blocks[day] = database.insertRows(u"MENULER", dayBlock(day));
                    database.deleteRows(u"MENULER", blocks.begin()->second);
                    blocks.erase(blocks.begin());
                }
            }
            if (blocks.size() > 12) {
                database.deleteRows(u"MENULER", blocks.begin()->second);
                blocks.erase(blocks.begin());
            }
        }
    });
    ASSERT_TRUE(writer.started());

    Database database(file);
    long scans = 0;
    std::map<int, int> lastSeen;
    while (Clock::now() < end) {
        const sql::ExecuteResult result = sql::execute(database, u"select* from MENULER where ay=99");
        std::map<int, int> rowsOfDay;
        for (const std::vector<Value>& row : result.query.rows) {
            const int day = row[1].asInteger();
            ++rowsOfDay[day];
            ASSERT_EQ(row[2], dayBlock(day)[static_cast<std::size_t>(rowsOfDay[day] - 1)][2]);
        }
        for (const auto& [day, rows] : rowsOfDay) ASSERT_EQ(rows, 4) << "day " << day << " is half there";
        lastSeen = rowsOfDay;
        ++scans;
    }
    EXPECT_EQ(writer.wait(), 0);
    EXPECT_GT(scans, 100);
    EXPECT_FALSE(lastSeen.empty()) << "the writer wrote nothing the scanner saw";
    EXPECT_EQ(checkIntegrity(Database(file).file()), std::vector<std::string>{});
}

// The locks the system lists: their kind (READ or WRITE) and the inode of
// their file.
std::vector<std::pair<std::string, unsigned long>> systemLocks() {
    std::ifstream list("/proc/locks");
    std::vector<std::pair<std::string, unsigned long>> locks;
    std::string line;
    while (std::getline(list, line)) {
        std::istringstream fields(line);
        std::string number, type, mode, access, owner, device;
        fields >> number >> type;
        if (type == "->") continue;  // a waiter, listed under the lock it waits for
        fields >> mode >> access >> owner >> device;
        locks.emplace_back(access, std::stoul(device.substr(device.rfind(':') + 1)));
    }
    return locks;
}

bool listed(const std::string& access, unsigned long inode) {
    for (const auto& [kind, locked] : systemLocks()) {
        if (locked == inode && (access.empty() || kind == access)) return true;
    }
    return false;
}

unsigned long inodeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_ino;
}

// While one copy writes in a scope, the system lists its lock on the lock
// file and none on the database; another copy's read and write give up after
// the time-out with an error; once the writer dies, its locks and its
// unfinished scope are gone.
TEST(Sharing, LocksLieOnTheLockFileAndWaitsEnd) {
    SKIP_WITHOUT_FIXTURES();
    if (!std::filesystem::exists("/proc/locks")) GTEST_SKIP() << "no /proc/locks on this system";
    testing::TempDir dir;
    const std::string file = copyKvl(dir);
    const unsigned long database = inodeOf(file);
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    Child holder([&] {
        Database writer(file, PageFile::Mode::ReadWrite);
        const Database::WriteScope scope(writer);
        writer.insertRows(u"MENULER", dayBlock(1));
        const char byte = 1;
        if (::write(ready[1], &byte, 1) != 1) ::_exit(1);
        ::pause();  // until killed
    });
    ASSERT_TRUE(holder.started());
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    const unsigned long lockFile = inodeOf(LockFile::lockPath(file));
    EXPECT_TRUE(listed("WRITE", lockFile));
    EXPECT_FALSE(listed("", database));

    const LockTimeouts saved = lockTimeouts();
    setLockTimeouts({std::chrono::seconds{15}, std::chrono::milliseconds{300}});
    {
        Database other(file, PageFile::Mode::ReadWrite);
        try {
            sql::execute(other, u"select* from MENULER");
            ADD_FAILURE() << "the read did not wait for the writer";
        } catch (const Error& error) {
            EXPECT_NE(std::string(error.what()).find("300 ms"), std::string::npos) << error.what();
        }
        EXPECT_THROW(other.insertRows(u"MENULER", dayBlock(2)), Error);
        holder.kill();
        holder.wait();
        EXPECT_TRUE(sql::execute(other, u"select* from MENULER where ay=99").query.rows.empty());
        const LockFile::Hold reading = other.holdForReading();
        EXPECT_TRUE(listed("READ", lockFile));
        EXPECT_FALSE(listed("", database));
    }
    setLockTimeouts(saved);
    ::close(ready[0]);
    ::close(ready[1]);
}

#endif

}  // namespace
}  // namespace jet
