#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "format.h"
#include "os_file.h"

namespace jet {

using Page = std::array<std::uint8_t, format::kPageSize>;

// Where the reading code gets its pages: the file itself, or a write
// statement that shows its own changes over the file.
class PageSource {
public:
    virtual ~PageSource() = default;
    virtual std::uint32_t pageCount() const = 0;
    // Throws Error when the page lies beyond the end.
    virtual void read(std::uint32_t number, Page& page) const = 0;
    // Reads `count` pages from page `first` on into `pages`, as read does
    // one by one.
    virtual void readPages(std::uint32_t first, std::size_t count, Page* pages) const {
        for (std::size_t i = 0; i < count; ++i)
            read(first + static_cast<std::uint32_t>(i), pages[i]);
    }
};

// The database file seen as numbered pages. Pages are read from the file on
// each request: the gate program writes the same file, so nothing read here
// is trusted across operations.
class PageFile : public PageSource {
public:
    enum class Mode { ReadOnly, ReadWrite };

    // Opens the file. Throws Error when it cannot be opened.
    explicit PageFile(const std::string& path, Mode mode = Mode::ReadOnly);
    ~PageFile();
    PageFile(const PageFile&) = delete;
    PageFile& operator=(const PageFile&) = delete;

    const std::string& path() const { return path_; }
    bool writable() const { return mode_ == Mode::ReadWrite; }
    std::uint64_t sizeInBytes() const;
    std::uint32_t pageCount() const override;

    // Reads page `number` whole. Throws Error when the page lies beyond the
    // end of the file. Pages other than the header are decoded when the
    // database is encoded (setEncodingKey).
    void read(std::uint32_t number, Page& page) const override;
    // In one request to the system.
    void readPages(std::uint32_t first, std::size_t count, Page* pages) const override;

    // Reads the first `length` bytes of the file, however short it is.
    std::size_t readPrefix(std::uint8_t* buffer, std::size_t length) const;

    void setEncodingKey(std::uint32_t key) { encodingKey_ = key; }

    // Writing. REQUIRES: opened ReadWrite. Each throws Error on failure.
    // A page is encoded like the pages around it before it is written.
    void write(std::uint32_t number, const Page& page);
    void truncate(std::uint32_t pageCount);
    void sync();

private:
    std::string path_;
    os::File file_;
    Mode mode_;
    std::uint32_t encodingKey_ = 0;  // 0: pages are stored plain
};

// For crash tests: after `writes` more writes to any file of the engine
// (pages, journal, truncation), the process kills itself before the next one.
// Negative: never.
void setCrashAfterWrites(long writes);
// Called before each write: kills the process when the countdown ends.
void crashPoint();

}  // namespace jet
