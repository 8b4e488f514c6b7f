#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

// The few calls of the operating system that the engine makes on files,
// with one form for POSIX systems (os_file_posix.cpp) and one for Windows
// (os_file_windows.cpp); the build compiles one of them. Paths are UTF-8
// everywhere; the Windows form hands them to the system as UTF-16.
//
// Nothing here throws: a call that fails returns false (or nothing), and
// lastError() then says why in words, for the caller's message.
namespace jet::os {

// Where a file lies: two open files with the same identity are one file.
struct FileIdentity {
    std::uint64_t device = 0;  // POSIX: the device; Windows: the volume's serial number
    std::uint64_t file = 0;    // POSIX: the inode; Windows: the file index
    bool operator==(const FileIdentity&) const = default;
    auto operator<=>(const FileIdentity&) const = default;
};

enum class LockKind { Shared, Exclusive };
enum class LockResult { Taken, Busy, Failed };

// Whether an exclusive lock can be turned shared, and a shared one
// exclusive, in one call that keeps the byte locked throughout. POSIX record
// locks can; Windows byte-range locks cannot be made exclusive while the
// same handle holds them shared, so there a shared lock is let go first.
#ifdef _WIN32
inline constexpr bool kLocksTightenInPlace = false;
#else
inline constexpr bool kLocksTightenInPlace = true;
#endif

// An open file, closed when the object goes. Reads and writes name their
// offset and never move a shared position, so that threads may share it.
// The descriptor or handle is never handed on to child processes.
class File {
public:
    enum class Mode {
        Read,          // an existing file, for reading
        ReadWrite,     // an existing file, for reading and writing
        OpenOrCreate,  // for reading and writing, made when missing, kept as it is otherwise
        Replace,       // for writing, made when missing, emptied otherwise
    };

    File() = default;
    ~File();
    File(File&& other) noexcept;
    File& operator=(File&& other) noexcept;
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    // Whether others may remove or rename the file while it is open here.
    // POSIX systems always let them; Windows refuses it when asked to.
    enum class Removal { Allowed, Refused };

    // Opens `path`; the result is not open() when that failed. The file is
    // open to others' reads and writes while we hold it, and by default to
    // their renames and removals, as a POSIX system's files always are.
    static File open(const std::string& path, Mode mode, Removal removal = Removal::Allowed);

    bool isOpen() const;

    // Reads up to `size` bytes at `offset`: the number read, 0 at the end of
    // the file, -1 on failure. Fewer than asked is no failure.
    std::int64_t readAt(void* buffer, std::size_t size, std::uint64_t offset) const;
    // Writes up to `size` bytes at `offset`: the number written (at least 1
    // when size is not 0) or -1 on failure.
    std::int64_t writeAt(const void* buffer, std::size_t size, std::uint64_t offset);
    // Repeat the calls above until every byte is read or written. readAll
    // returns the number read, fewer than `size` only at the end of the
    // file, or -1 on failure.
    std::int64_t readAll(void* buffer, std::size_t size, std::uint64_t offset) const;
    bool writeAll(const void* buffer, std::size_t size, std::uint64_t offset);

    std::optional<std::uint64_t> size() const;
    // Whether it is a plain file (not a folder, device or pipe).
    bool isRegularFile() const;
    std::optional<FileIdentity> identity() const;
    // Cuts the file at, or lengthens it with zeros to, `length` bytes.
    bool truncate(std::uint64_t length);
    // Puts what was written on the disk (fsync, FlushFileBuffers).
    bool sync();
    // Closes now, so that a failure of the close is seen.
    bool close();

    // Byte-range locks on one byte, held by this open file (not by the
    // process: another File of the same path in the same process is someone
    // else), and let go when it closes. None ever waits. On Windows they are
    // mandatory: nobody else reads or writes a locked byte, so lock only
    // bytes past the file's data.
    LockResult tryLock(std::uint64_t byte, LockKind kind);
    bool unlock(std::uint64_t byte);
    // Turns this file's exclusive lock on `byte` shared; the byte stays
    // locked throughout on both systems.
    bool loosenToShared(std::uint64_t byte);

private:
#ifdef _WIN32
    explicit File(void* handle) : handle_(handle) {}
    void* handle_ = nullptr;  // INVALID_HANDLE_VALUE or nullptr: none
#else
    explicit File(int fd) : fd_(fd) {}
    int fd_ = -1;
#endif
};

inline std::int64_t File::readAll(void* buffer, std::size_t size, std::uint64_t offset) const {
    std::size_t done = 0;
    while (done < size) {
        const std::int64_t got =
            readAt(static_cast<char*>(buffer) + done, size - done, offset + done);
        if (got < 0)
            return -1;
        if (got == 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    return static_cast<std::int64_t>(done);
}

inline bool File::writeAll(const void* buffer, std::size_t size, std::uint64_t offset) {
    std::size_t done = 0;
    while (done < size) {
        const std::int64_t put =
            writeAt(static_cast<const char*>(buffer) + done, size - done, offset + done);
        if (put < 0)
            return false;
        done += static_cast<std::size_t>(put);
    }
    return true;
}

// Why the last failed call of this thread failed, in words.
std::string lastError();

// Gives `from` the name `to`, replacing a file of that name, and makes the
// new name durable as far as the system allows (rename(), MoveFileExW with
// MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH).
bool renameOver(const std::string& from, const std::string& to);
// Gives the file `from` also or instead the name `to`, failing when `to`
// exists: never replaces. POSIX makes a link (`from` stays: remove it after)
// or, on file systems without links, renames after a last look; Windows
// moves without MOVEFILE_REPLACE_EXISTING.
bool nameWithoutReplacing(const std::string& from, const std::string& to);
// Removes a file; a file that is not there counts as removed.
bool removeFile(const std::string& path);
// Makes the names in `folder` durable (POSIX: fsync on the folder). Windows
// has no such call: its renames are written through (see renameOver).
void syncFolder(const std::string& folder);
// Whether this process may write the file (not a read-only file or mount).
bool isWritable(const std::string& path);

std::uint64_t processId();
// The program's arguments as the system keeps them, in UTF-8, program name
// first: Windows reads them again from its UTF-16 command line (main()'s
// come in the ANSI code page); elsewhere nothing (main()'s are the ones).
std::vector<std::string> commandLineArguments();
// The name of this computer as the system gives it (Windows: its NetBIOS
// name, in the ANSI code page; POSIX: the host name); empty when unknown.
std::string computerName();
// Ends the process at once, as a crash would: no destructor, no flush.
[[noreturn]] void killThisProcess();

// A path for std::filesystem from a UTF-8 string: a plain std::string would
// be read in the ANSI code page on Windows.
inline std::filesystem::path utf8Path(const std::string& path) {
    return std::filesystem::path(std::u8string(path.begin(), path.end()));
}
// And back: a std::filesystem path as UTF-8, as the engine and messages take it.
inline std::string utf8Text(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

}  // namespace jet::os
