#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace workbook {

// The OLE2 compound file that holds an Excel 97 workbook: a small file
// system of sectors (512 or 4096 bytes) chained through a FAT, with a
// directory of named streams and a mini stream of 64-byte sectors for the
// streams under 4096 bytes. Only reading, only the root storage's streams.
//
// Every pointer is checked against the file: a chain that loops, a sector
// past the end, a size larger than the file throw WorkbookError (Damaged);
// memory stays within a small multiple of the file's size.
class CompoundFile {
public:
    // Throws WorkbookError: NewerFormat for a ZIP (an .xlsx), NotAWorkbook
    // for anything else without the compound file signature, Damaged for a
    // header that does not hold together.
    explicit CompoundFile(std::vector<std::uint8_t> bytes);

    // Whether the root storage holds a stream of that name (names compare
    // without regard to ASCII case, as the format's directory does).
    bool hasStream(std::u16string_view name) const;

    // The bytes of the root storage's stream of that name. Throws
    // WorkbookError (Damaged) when it is missing or its chain is broken.
    std::vector<std::uint8_t> stream(std::u16string_view name) const;

private:
    struct Entry {
        std::u16string name;
        std::uint8_t type = 0;  // 1 storage, 2 stream, 5 root
        std::uint32_t left = 0, right = 0, child = 0;
        std::uint32_t start = 0;
        std::uint64_t size = 0;
    };

    std::uint32_t sectorCount() const;
    // The sectors of the chain through `table` from `first`: exactly
    // `needed` of them when `exact` (a stream of known size), else up to its
    // end, which must come before `needed` (a bound that a loop runs into).
    std::vector<std::uint32_t> chain(const std::vector<std::uint32_t>& table, std::uint32_t first,
                                     std::size_t needed, bool exact, const char* what) const;
    std::vector<std::uint8_t> readChain(const std::vector<std::uint32_t>& sectors,
                                        std::uint64_t size) const;
    void readFat();
    void readDirectory();
    void readMiniStream();
    const Entry* find(std::u16string_view name) const;

    std::vector<std::uint8_t> bytes_;
    std::uint32_t sectorShift_ = 9;
    std::uint32_t miniSectorShift_ = 6;
    std::uint32_t miniCutoff_ = 4096;
    std::vector<std::uint32_t> fat_;
    std::vector<std::uint32_t> miniFat_;
    std::vector<Entry> entries_;
    std::vector<std::uint8_t> miniStream_;
};

}  // namespace workbook
