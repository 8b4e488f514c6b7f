// The layer over the system's file calls, on both systems alike: files
// named in UTF-8 with Turkish letters, reads and writes at offsets, locks
// that two open files of one path see of each other, and names given with
// and without replacing.

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "store/jet/os_file.h"
#include "tests/store/jet/test_files.h"

namespace jet {
namespace {

using os::File;
using os::LockKind;
using os::LockResult;

std::string utf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

TEST(OsFile, TurkishNamesOffsetsAndLength) {
    testing::TempDir dir;
    const std::string path = utf8(dir.path() / "yedek-ğüşıöçİ.mdb");
    EXPECT_FALSE(File::open(path, File::Mode::ReadWrite).isOpen());
    File file = File::open(path, File::Mode::OpenOrCreate);
    ASSERT_TRUE(file.isOpen()) << os::lastError();
    EXPECT_TRUE(file.isRegularFile());
    ASSERT_TRUE(file.writeAll("sofra", 5, 4096));
    EXPECT_EQ(file.size(), 4096u + 5u);
    char read[8] = {};
    EXPECT_EQ(file.readAll(read, sizeof read, 4094), 7);
    EXPECT_EQ(std::string(read, 7), std::string("\0\0sofra", 7));
    EXPECT_EQ(file.readAt(read, sizeof read, 5000), 0);
    ASSERT_TRUE(file.truncate(4097));
    EXPECT_EQ(file.size(), 4097u);
    EXPECT_TRUE(file.sync());
    // The name reached the system as written: std::filesystem finds it.
    EXPECT_TRUE(std::filesystem::exists(os::utf8Path(path)));
    EXPECT_EQ(std::filesystem::file_size(os::utf8Path(path)), 4097u);

    // Two open files of one path are one file; another path is another.
    const File again = File::open(path, File::Mode::Read);
    ASSERT_TRUE(again.identity() && file.identity());
    EXPECT_EQ(*again.identity(), *file.identity());
    File other = File::open(utf8(dir.path() / "other"), File::Mode::Replace);
    ASSERT_TRUE(other.isOpen());
    EXPECT_NE(*other.identity(), *file.identity());
    EXPECT_TRUE(other.close());

    // A folder is no file.
    EXPECT_FALSE(File::open(utf8(dir.path()), File::Mode::Read).isRegularFile());
}

// Locks belong to the open file: a second one of the same path, even in
// this process, is somebody else. Bytes past the data stay readable.
TEST(OsFile, LocksOfTwoOpenFilesOfOnePath) {
    testing::TempDir dir;
    const std::string path = utf8(dir.path() / "kvl.mdb-lock");
    File first = File::open(path, File::Mode::OpenOrCreate);
    File second = File::open(path, File::Mode::OpenOrCreate);
    ASSERT_TRUE(first.isOpen() && second.isOpen());
    ASSERT_TRUE(first.writeAll("12345678", 8, 0));

    EXPECT_EQ(first.tryLock(65, LockKind::Shared), LockResult::Taken);
    EXPECT_EQ(second.tryLock(65, LockKind::Shared), LockResult::Taken);
    EXPECT_EQ(second.tryLock(66, LockKind::Exclusive), LockResult::Taken);
    EXPECT_TRUE(second.unlock(65));
    EXPECT_EQ(second.tryLock(65, LockKind::Exclusive), LockResult::Busy);
    EXPECT_TRUE(first.unlock(65));
    EXPECT_EQ(second.tryLock(65, LockKind::Exclusive), LockResult::Taken);
    EXPECT_EQ(first.tryLock(65, LockKind::Shared), LockResult::Busy);
    EXPECT_EQ(first.tryLock(66, LockKind::Shared), LockResult::Busy);
    EXPECT_EQ(first.tryLock(64, LockKind::Exclusive), LockResult::Taken);
    char counter[8] = {};
    EXPECT_EQ(second.readAll(counter, sizeof counter, 0), 8);
    EXPECT_EQ(first.readAll(counter, sizeof counter, 0), 8);

    // Loosened, the byte never comes free: others may share it, not take it.
    EXPECT_TRUE(second.loosenToShared(65));
    EXPECT_EQ(first.tryLock(65, LockKind::Exclusive), LockResult::Busy);
    EXPECT_EQ(first.tryLock(65, LockKind::Shared), LockResult::Taken);
    EXPECT_TRUE(first.unlock(65));
    EXPECT_TRUE(second.unlock(65));
    EXPECT_EQ(first.tryLock(65, LockKind::Exclusive), LockResult::Taken);

    // Closing lets go of every lock of the file.
    EXPECT_TRUE(first.close());
    EXPECT_EQ(second.tryLock(64, LockKind::Exclusive), LockResult::Taken);
    EXPECT_EQ(second.tryLock(65, LockKind::Exclusive), LockResult::Taken);
}

TEST(OsFile, NamesGivenWithAndWithoutReplacing) {
    testing::TempDir dir;
    const std::string partial = utf8(dir.path() / "yedek.mdb.partial");
    const std::string target = utf8(dir.path() / "yedek-şubat.mdb");
    const std::string kept = utf8(dir.path() / "kept.mdb");
    for (const auto& [path, text] : {std::pair{partial, "new"}, std::pair{kept, "old"}}) {
        File file = File::open(path, File::Mode::Replace);
        ASSERT_TRUE(file.writeAll(text, 3, 0) && file.close());
    }
    const auto contents = [](const std::string& path) {
        char text[3] = {};
        const File file = File::open(path, File::Mode::Read);
        return file.readAll(text, 3, 0) == 3 ? std::string(text, 3) : std::string();
    };

    EXPECT_FALSE(os::nameWithoutReplacing(partial, kept));
    EXPECT_EQ(contents(kept), "old");
    ASSERT_TRUE(os::nameWithoutReplacing(partial, target)) << os::lastError();
    EXPECT_EQ(contents(target), "new");
    EXPECT_TRUE(os::removeFile(partial));  // gone already on Windows, a second name on POSIX
    EXPECT_FALSE(std::filesystem::exists(os::utf8Path(partial)));

    ASSERT_TRUE(os::renameOver(target, kept)) << os::lastError();
    EXPECT_EQ(contents(kept), "new");
    EXPECT_FALSE(std::filesystem::exists(os::utf8Path(target)));
    EXPECT_TRUE(os::isWritable(kept));
    EXPECT_FALSE(os::isWritable(target));
    EXPECT_TRUE(os::removeFile(kept));
    EXPECT_TRUE(os::removeFile(kept));  // not there: removed all the same
    EXPECT_FALSE(std::filesystem::exists(os::utf8Path(kept)));
    EXPECT_NE(os::processId(), 0u);
}

}  // namespace
}  // namespace jet
