#include "page_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "error.h"
#include "rc4.h"

namespace jet {

PageFile::PageFile(const std::string& path) : path_(path) {
    fd_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
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
    if (fd_ >= 0) ::close(fd_);
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
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throw Error("cannot read " + path_ + ": " + std::strerror(errno));
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

void PageFile::read(std::uint32_t number, Page& page) const {
    const off_t offset = static_cast<off_t>(number) * static_cast<off_t>(format::kPageSize);
    std::size_t done = 0;
    while (done < page.size()) {
        const ssize_t got =
            ::pread(fd_, page.data() + done, page.size() - done, offset + static_cast<off_t>(done));
        if (got < 0 && errno == EINTR) continue;
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
    if (encodingKey_ != 0 && number != 0) {
        rc4Apply(encodingKey_ ^ number, page.data(), page.size());
    }
}

}  // namespace jet
