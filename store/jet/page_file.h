#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "format.h"

namespace jet {

using Page = std::array<std::uint8_t, format::kPageSize>;

// The database file seen as numbered pages. Pages are read from the file on
// each request: the gate program writes the same file, so nothing read here
// is trusted across operations.
class PageFile {
public:
    // Opens the file for reading. Throws Error when it cannot be opened.
    explicit PageFile(const std::string& path);
    ~PageFile();
    PageFile(const PageFile&) = delete;
    PageFile& operator=(const PageFile&) = delete;

    const std::string& path() const { return path_; }
    std::uint64_t sizeInBytes() const;
    std::uint32_t pageCount() const;

    // Reads page `number` whole. Throws Error when the page lies beyond the
    // end of the file. Pages other than the header are decoded when the
    // database is encoded (setEncodingKey).
    void read(std::uint32_t number, Page& page) const;

    // Reads the first `length` bytes of the file, however short it is.
    std::size_t readPrefix(std::uint8_t* buffer, std::size_t length) const;

    void setEncodingKey(std::uint32_t key) { encodingKey_ = key; }

private:
    std::string path_;
    int fd_ = -1;
    std::uint32_t encodingKey_ = 0;  // 0: pages are stored plain
};

}  // namespace jet
