#include "page_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "error.h"
#include "rc4.h"

namespace jet {

namespace {
long crashCountdown = -1;
}  // namespace

void setCrashAfterWrites(long writes) {
    crashCountdown = writes;
}

void crashPoint() {
    if (crashCountdown < 0)
        return;
    if (crashCountdown == 0)
        ::kill(::getpid(), SIGKILL);
    --crashCountdown;
}

PageFile::PageFile(const std::string& path, Mode mode) : path_(path), mode_(mode) {
    fd_ = ::open(path.c_str(), (mode == Mode::ReadWrite ? O_RDWR : O_RDONLY) | O_CLOEXEC);
    if (fd_ < 0) {
        throw Error("cannot open " + path + ": " + std::strerror(errno));
    }
    struct stat status {};
    if (::fstat(fd_, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(fd_);
        throw Error("cannot open " + path + ": not a regular file");
    }
}

PageFile::~PageFile() {
    if (fd_ >= 0)
        ::close(fd_);
}

std::uint64_t PageFile::sizeInBytes() const {
    struct stat status {};
    if (::fstat(fd_, &status) != 0) {
        throw Error("cannot read the size of " + path_ + ": " + std::strerror(errno));
    }
    return static_cast<std::uint64_t>(status.st_size);
}

std::uint32_t PageFile::pageCount() const {
    const std::uint64_t pages = sizeInBytes() / format::kPageSize;
    return pages > UINT32_MAX ? UINT32_MAX : static_cast<std::uint32_t>(pages);
}

std::size_t PageFile::readPrefix(std::uint8_t* buffer, std::size_t length) const {
    std::size_t done = 0;
    while (done < length) {
        const ssize_t got = ::pread(fd_, buffer + done, length - done, static_cast<off_t>(done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            throw Error("cannot read " + path_ + ": " + std::strerror(errno));
        if (got == 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

void PageFile::read(std::uint32_t number, Page& page) const {
    readPages(number, 1, &page);
}

void PageFile::readPages(std::uint32_t first, std::size_t count, Page* pages) const {
    static_assert(sizeof(Page) == format::kPageSize, "pages lie next to each other in an array");
    auto* bytes = reinterpret_cast<std::uint8_t*>(pages);
    const std::size_t size = count * format::kPageSize;
    const off_t offset = static_cast<off_t>(first) * static_cast<off_t>(format::kPageSize);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got =
            ::pread(fd_, bytes + done, size - done, offset + static_cast<off_t>(done));
        if (got < 0 && errno == EINTR)
            continue;
        const std::uint32_t number = first + static_cast<std::uint32_t>(done / format::kPageSize);
        if (got < 0) {
            throw Error("cannot read page " + std::to_string(number) + " of " + path_ + ": " +
                        std::strerror(errno));
        }
        if (got == 0) {
            throw Error("page " + std::to_string(number) + " lies beyond the end of " + path_ +
                        " (" + std::to_string(pageCount()) + " pages): the file is damaged");
        }
        done += static_cast<std::size_t>(got);
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t number = first + static_cast<std::uint32_t>(i);
        if (encodingKey_ != 0 && number != 0)
            rc4Apply(encodingKey_ ^ number, pages[i].data(), pages[i].size());
    }
}

void PageFile::write(std::uint32_t number, const Page& page) {
    if (mode_ != Mode::ReadWrite)
        throw Error(path_ + " is open for reading only");
    Page stored = page;
    if (encodingKey_ != 0 && number != 0) {
        rc4Apply(encodingKey_ ^ number, stored.data(), stored.size());
    }
    crashPoint();
    const off_t offset = static_cast<off_t>(number) * static_cast<off_t>(format::kPageSize);
    std::size_t done = 0;
    while (done < stored.size()) {
        const ssize_t put = ::pwrite(fd_, stored.data() + done, stored.size() - done,
                                     offset + static_cast<off_t>(done));
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0) {
            throw Error("cannot write page " + std::to_string(number) + " of " + path_ + ": " +
                        std::strerror(errno));
        }
        done += static_cast<std::size_t>(put);
    }
}

void PageFile::truncate(std::uint32_t pageCount) {
    crashPoint();
    if (::ftruncate(fd_, static_cast<off_t>(pageCount) * static_cast<off_t>(format::kPageSize)) !=
        0) {
        throw Error("cannot cut " + path_ + " back to " + std::to_string(pageCount) +
                    " pages: " + std::strerror(errno));
    }
}

void PageFile::sync() {
    if (::fsync(fd_) != 0) {
        throw Error("cannot flush " + path_ + " to disk: " + std::strerror(errno));
    }
}

}  // namespace jet
