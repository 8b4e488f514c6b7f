// The copy of a database file taken under the lock file: byte for byte,
// never over an existing name, never while another copy of the program
// writes, never of half a statement.

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/backup.h"
#include "store/jet/database.h"
#include "store/jet/error.h"
#include "store/jet/integrity_check.h"
#include "store/jet/journal.h"
#include "store/jet/lock_file.h"
#include "tests/store/jet/test_files.h"

namespace jet {
namespace {

namespace fs = std::filesystem;

std::string copyKvl(const testing::TempDir& dir) {
    const fs::path target = dir.path() / "kvl.mdb";
    fs::copy_file(testing::fixturesDir() / "kvl" / "kvl.mdb", target);
    fs::permissions(target, fs::perms::owner_write, fs::perm_options::add);
    return target.string();
}

#ifndef NO_FORK
// Runs `work` in a child process, which ends when it returns; the child's
// id, or -1 when there is none.
pid_t runInChild(const std::function<void()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    return child;
}

// The child's status (as waitpid gives it) once it has ended.
int waitForChild(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}
#endif

std::vector<Value> oneMenuRow(int day) {
    return {Value::integer(99),
            Value::integer(day),
            Value::text(u"Mercimek çorbası"),
            Value(),
            Value(),
            Value()};
}

TEST(CopyDatabase, ByteForByteAndNeverOverAName) {
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    const std::string file = copyKvl(dir);
    Database database(file, PageFile::Mode::ReadWrite);
    database.insertRows(u"MENULER", {oneMenuRow(1)});

    const fs::path copy = dir.path() / "yedek.mdb";
    copyDatabase(database, copy.string());
    EXPECT_EQ(testing::readFileBytes(copy), testing::readFileBytes(file));
    EXPECT_FALSE(fs::exists(copy.string() + ".partial"));
    {
        const Database copied(copy.string());
        EXPECT_EQ(checkIntegrity(copied.file()), std::vector<std::string>{});
        EXPECT_EQ(testing::readRows(copied, u"MENULER"), testing::readRows(database, u"MENULER"));
    }

    // The copy stays as it was when the file moves on, and a second copy
    // under its name is refused; so is one over a folder of that name.
    database.insertRows(u"MENULER", {oneMenuRow(2)});
    const std::vector<unsigned char> first = testing::readFileBytes(copy);
    EXPECT_THROW(copyDatabase(database, copy.string()), Error);
    EXPECT_EQ(testing::readFileBytes(copy), first);
    const fs::path folder = dir.path() / "klasor.mdb";
    fs::create_directory(folder);
    EXPECT_THROW(copyDatabase(database, folder.string()), Error);
    EXPECT_TRUE(fs::is_directory(folder));
    // A folder in the way of the half-made copy: nothing is left behind.
    const fs::path blocked = dir.path() / "engel.mdb";
    fs::create_directory(blocked.string() + ".partial");
    EXPECT_THROW(copyDatabase(database, blocked.string()), Error);
    EXPECT_FALSE(fs::exists(blocked));
    EXPECT_THROW(copyDatabase(database, (dir.path() / "yok" / "yedek.mdb").string()), Error);
}

// Another process holds the statement lock for writing: the copy waits for
// it, gives up after the statement time-out and writes nothing; once the
// writer is done it goes ahead.
TEST(CopyDatabase, WaitsForAWriterOfAnotherProcess) {
#ifdef NO_FORK
    SKIP_WITHOUT_FORK();
#else
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    const std::string file = copyKvl(dir);
    const Database database(file);
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t writer = runInChild([&] {
        const std::shared_ptr<LockFile> locks = LockFile::open(file, true);
        const LockFile::Hold writing = locks->holdForWriting();
        (void)::write(ready[1], "w", 1);
        ::usleep(1500 * 1000);
    });
    ASSERT_GE(writer, 0);
    char signal = 0;
    ASSERT_EQ(::read(ready[0], &signal, 1), 1);
    const LockTimeouts before = lockTimeouts();
    setLockTimeouts({before.session, std::chrono::milliseconds(200)});
    const fs::path copy = dir.path() / "yedek.mdb";
    EXPECT_THROW(copyDatabase(database, copy.string()), Error);
    EXPECT_FALSE(fs::exists(copy));
    setLockTimeouts(before);
    copyDatabase(database, copy.string());  // waits for the writer's end
    const int status = waitForChild(writer);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(testing::readFileBytes(copy), testing::readFileBytes(file));
    ::close(ready[0]);
    ::close(ready[1]);
#endif
}

// A writer dies in the middle of its commit: the copy holds the file as it
// was before that statement, never half of it.
TEST(CopyDatabase, NeverHalfAStatement) {
#ifdef NO_FORK
    SKIP_WITHOUT_FORK();
#else
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    const std::string file = copyKvl(dir);
    const std::vector<unsigned char> before = testing::readFileBytes(file);
    const Database reader(file);
    Database database(file, PageFile::Mode::ReadWrite);
    const pid_t child = runInChild([&] {
        Database dying(file, PageFile::Mode::ReadWrite);
        setCrashAfterWrites(3);  // the journal, then two pages of the statement
        std::vector<std::vector<Value>> rows;
        for (int day = 1; day <= 200; ++day)
            rows.push_back(oneMenuRow(day));
        dying.insertRows(u"MENULER", rows);
    });
    ASSERT_GE(child, 0);
    const int status = waitForChild(child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the writer was meant to die half-way";
    ASSERT_TRUE(fs::exists(RollbackJournal::journalPath(file)));

    // Opened for reading alone, the file cannot be put right: no copy.
    EXPECT_THROW(copyDatabase(reader, (dir.path() / "yarim.mdb").string()), Error);
    EXPECT_FALSE(fs::exists(dir.path() / "yarim.mdb"));
    // Opened for writing, the dead writer's statement is undone first.
    const fs::path copy = dir.path() / "yedek.mdb";
    copyDatabase(database, copy.string());
    EXPECT_EQ(testing::readFileBytes(copy), before);
#endif
}

}  // namespace
}  // namespace jet
