#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
// shellapi.h needs windows.h first.
#include <shellapi.h>

#include <algorithm>
#include <cwchar>
#include <string>
#include <utility>

#include "os_file.h"

namespace jet::os {
namespace {

// One request moves at most this much: ReadFile and WriteFile count in 32 bits.
constexpr std::size_t kLargestRequest = std::size_t{1} << 30;

std::wstring wide(const std::string& utf8) {
    if (utf8.empty())
        return {};
    const int length =
        ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    std::wstring text(static_cast<std::size_t>(length), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), text.data(),
                          length);
    return text;
}

std::string narrow(const wchar_t* text, std::size_t length) {
    const int size = ::WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(length), nullptr, 0,
                                           nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(size), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(length), utf8.data(), size, nullptr,
                          nullptr);
    return utf8;
}

HANDLE handleOf(void* handle) {
    return static_cast<HANDLE>(handle);
}

bool valid(void* handle) {
    return handle != nullptr && handle != INVALID_HANDLE_VALUE;
}

OVERLAPPED at(std::uint64_t offset) {
    OVERLAPPED where{};
    where.Offset = static_cast<DWORD>(offset);
    where.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return where;
}

}  // namespace

File::~File() {
    if (valid(handle_))
        ::CloseHandle(handleOf(handle_));
}

File::File(File&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}

File& File::operator=(File&& other) noexcept {
    if (this != &other) {
        if (valid(handle_))
            ::CloseHandle(handleOf(handle_));
        handle_ = std::exchange(other.handle_, nullptr);
    }
    return *this;
}

File File::open(const std::string& path, Mode mode, Removal removal) {
    DWORD access = GENERIC_READ | GENERIC_WRITE;
    DWORD disposition = OPEN_EXISTING;
    switch (mode) {
        case Mode::Read:
            access = GENERIC_READ;
            break;
        case Mode::ReadWrite:
            break;
        case Mode::OpenOrCreate:
            disposition = OPEN_ALWAYS;
            break;
        case Mode::Replace:
            access = GENERIC_WRITE;
            disposition = CREATE_ALWAYS;
            break;
    }
    // Shared every way (unless removal is refused), as POSIX files are: the
    // gate program and our other copies keep the database open, and a
    // journal is removed while a reader may hold it. Handles are not
    // inherited (no security attributes).
    DWORD sharing = FILE_SHARE_READ | FILE_SHARE_WRITE;
    if (removal == Removal::Allowed)
        sharing |= FILE_SHARE_DELETE;
    HANDLE handle = ::CreateFileW(wide(path).c_str(), access, sharing, nullptr, disposition,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
    return File(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

bool File::isOpen() const {
    return valid(handle_);
}

std::int64_t File::readAt(void* buffer, std::size_t size, std::uint64_t offset) const {
    OVERLAPPED where = at(offset);
    DWORD got = 0;
    if (!::ReadFile(handleOf(handle_), buffer, static_cast<DWORD>(std::min(size, kLargestRequest)),
                    &got, &where)) {
        // Reading at or past the end is the end, not a failure.
        return ::GetLastError() == ERROR_HANDLE_EOF ? 0 : -1;
    }
    return got;
}

std::int64_t File::writeAt(const void* buffer, std::size_t size, std::uint64_t offset) {
    OVERLAPPED where = at(offset);
    DWORD put = 0;
    if (!::WriteFile(handleOf(handle_), buffer, static_cast<DWORD>(std::min(size, kLargestRequest)),
                     &put, &where))
        return -1;
    if (put == 0 && size != 0) {
        ::SetLastError(ERROR_WRITE_FAULT);
        return -1;
    }
    return put;
}

std::optional<std::uint64_t> File::size() const {
    LARGE_INTEGER size{};
    if (!::GetFileSizeEx(handleOf(handle_), &size))
        return std::nullopt;
    return static_cast<std::uint64_t>(size.QuadPart);
}

bool File::isRegularFile() const {
    BY_HANDLE_FILE_INFORMATION information{};
    return ::GetFileType(handleOf(handle_)) == FILE_TYPE_DISK &&
           ::GetFileInformationByHandle(handleOf(handle_), &information) &&
           (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::optional<FileIdentity> File::identity() const {
    BY_HANDLE_FILE_INFORMATION information{};
    if (!::GetFileInformationByHandle(handleOf(handle_), &information))
        return std::nullopt;
    return FileIdentity{
        information.dwVolumeSerialNumber,
        (static_cast<std::uint64_t>(information.nFileIndexHigh) << 32) | information.nFileIndexLow};
}

bool File::truncate(std::uint64_t length) {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(length);
    return ::SetFileInformationByHandle(handleOf(handle_), FileEndOfFileInfo, &end, sizeof end);
}

bool File::sync() {
    return ::FlushFileBuffers(handleOf(handle_));
}

bool File::close() {
    return ::CloseHandle(handleOf(std::exchange(handle_, nullptr)));
}

LockResult File::tryLock(std::uint64_t byte, LockKind kind) {
    OVERLAPPED where = at(byte);
    DWORD flags = LOCKFILE_FAIL_IMMEDIATELY;
    if (kind == LockKind::Exclusive)
        flags |= LOCKFILE_EXCLUSIVE_LOCK;
    if (::LockFileEx(handleOf(handle_), flags, 0, 1, 0, &where))
        return LockResult::Taken;
    const DWORD failure = ::GetLastError();
    return failure == ERROR_LOCK_VIOLATION || failure == ERROR_IO_PENDING ? LockResult::Busy
                                                                          : LockResult::Failed;
}

bool File::unlock(std::uint64_t byte) {
    OVERLAPPED where = at(byte);
    return ::UnlockFileEx(handleOf(handle_), 0, 1, 0, &where);
}

// A handle may lay a shared lock over its own exclusive one; the first
// unlock then takes the exclusive one away and leaves the shared one.
bool File::loosenToShared(std::uint64_t byte) {
    OVERLAPPED where = at(byte);
    if (!::LockFileEx(handleOf(handle_), LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &where))
        return false;
    return unlock(byte);
}

std::string lastError() {
    const DWORD failure = ::GetLastError();
    wchar_t* text = nullptr;
    const DWORD length = ::FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, failure, MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US),
        reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    std::string message = length > 0 ? narrow(text, length) : std::string();
    ::LocalFree(text);
    while (!message.empty() && (message.back() == '\n' || message.back() == '\r' ||
                                message.back() == ' ' || message.back() == '.'))
        message.pop_back();
    return (message.empty() ? "system error" : message) + " (" + std::to_string(failure) + ")";
}

bool renameOver(const std::string& from, const std::string& to) {
    return ::MoveFileExW(wide(from).c_str(), wide(to).c_str(),
                         MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

bool nameWithoutReplacing(const std::string& from, const std::string& to) {
    return ::MoveFileExW(wide(from).c_str(), wide(to).c_str(), MOVEFILE_WRITE_THROUGH);
}

bool removeFile(const std::string& path) {
    if (::DeleteFileW(wide(path).c_str()))
        return true;
    const DWORD failure = ::GetLastError();
    return failure == ERROR_FILE_NOT_FOUND || failure == ERROR_PATH_NOT_FOUND;
}

void syncFolder(const std::string&) {}

bool isWritable(const std::string& path) {
    const DWORD attributes = ::GetFileAttributesW(wide(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) == 0;
}

std::vector<std::string> commandLineArguments() {
    std::vector<std::string> arguments;
    int count = 0;
    wchar_t** wide = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    if (wide == nullptr)
        return arguments;
    for (int i = 0; i < count; ++i)
        arguments.push_back(narrow(wide[i], std::wcslen(wide[i])));
    ::LocalFree(static_cast<HLOCAL>(wide));
    return arguments;
}

std::uint64_t processId() {
    return ::GetCurrentProcessId();
}

std::string computerName() {
    char name[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD length = sizeof name;
    if (!::GetComputerNameA(name, &length))
        return {};
    return std::string(name, length);
}

void killThisProcess() {
    ::TerminateProcess(::GetCurrentProcess(), 137);
    ::ExitProcess(137);  // not reached
}

}  // namespace jet::os
