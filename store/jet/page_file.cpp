#include "page_file.h"

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
        os::killThisProcess();
    --crashCountdown;
}

PageFile::PageFile(const std::string& path, Mode mode)
    : path_(path),
      file_(os::File::open(
          path, mode == Mode::ReadWrite ? os::File::Mode::ReadWrite : os::File::Mode::Read)),
      mode_(mode) {
    if (!file_.isOpen()) {
        throw Error("cannot open " + path + ": " + os::lastError());
    }
    if (!file_.isRegularFile()) {
        throw Error("cannot open " + path + ": not a regular file");
    }
}

PageFile::~PageFile() = default;

std::uint64_t PageFile::sizeInBytes() const {
    const std::optional<std::uint64_t> size = file_.size();
    if (!size) {
        throw Error("cannot read the size of " + path_ + ": " + os::lastError());
    }
    return *size;
}

std::uint32_t PageFile::pageCount() const {
    const std::uint64_t pages = sizeInBytes() / format::kPageSize;
    return pages > UINT32_MAX ? UINT32_MAX : static_cast<std::uint32_t>(pages);
}

std::size_t PageFile::readPrefix(std::uint8_t* buffer, std::size_t length) const {
    const std::int64_t got = file_.readAll(buffer, length, 0);
    if (got < 0) {
        throw Error("cannot read " + path_ + ": " + os::lastError());
    }
    return static_cast<std::size_t>(got);
}

void PageFile::read(std::uint32_t number, Page& page) const {
    readPages(number, 1, &page);
}

void PageFile::readPages(std::uint32_t first, std::size_t count, Page* pages) const {
    static_assert(sizeof(Page) == format::kPageSize, "pages lie next to each other in an array");
    auto* bytes = reinterpret_cast<std::uint8_t*>(pages);
    const std::size_t size = count * format::kPageSize;
    const std::uint64_t offset = std::uint64_t{first} * format::kPageSize;
    std::size_t done = 0;
    while (done < size) {
        const std::int64_t got = file_.readAt(bytes + done, size - done, offset + done);
        const std::uint32_t number = first + static_cast<std::uint32_t>(done / format::kPageSize);
        if (got < 0) {
            throw Error("cannot read page " + std::to_string(number) + " of " + path_ + ": " +
                        os::lastError());
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
    if (!file_.writeAll(stored.data(), stored.size(), std::uint64_t{number} * format::kPageSize)) {
        throw Error("cannot write page " + std::to_string(number) + " of " + path_ + ": " +
                    os::lastError());
    }
}

void PageFile::truncate(std::uint32_t pageCount) {
    crashPoint();
    if (!file_.truncate(std::uint64_t{pageCount} * format::kPageSize)) {
        throw Error("cannot cut " + path_ + " back to " + std::to_string(pageCount) +
                    " pages: " + os::lastError());
    }
}

void PageFile::sync() {
    if (!file_.sync()) {
        throw Error("cannot flush " + path_ + " to disk: " + os::lastError());
    }
}

}  // namespace jet
