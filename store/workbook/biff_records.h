#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace workbook::biff {

// The BIFF8 record types the reader looks at.
enum RecordType : std::uint16_t {
    kFormula = 0x0006,
    kEof = 0x000A,
    kExternSheet = 0x0017,
    kName = 0x0018,
    kFilePass = 0x002F,
    kContinue = 0x003C,
    kBoundSheet = 0x0085,
    kMulRk = 0x00BD,
    kMulBlank = 0x00BE,
    kSst = 0x00FC,
    kLabelSst = 0x00FD,
    kDimensions = 0x0200,
    kBlank = 0x0201,
    kNumber = 0x0203,
    kLabel = 0x0204,
    kBoolErr = 0x0205,
    kString = 0x0207,
    kRk = 0x027E,
    kBof = 0x0809,
};

// One record with the CONTINUE records that follow it: the pieces of its
// data, the record's own first.
struct Record {
    std::uint16_t type = 0;
    std::vector<std::span<const std::uint8_t>> pieces;
};

// The records of a BIFF stream from a given offset. A record whose length
// runs past the stream throws WorkbookError (Damaged).
class RecordReader {
public:
    RecordReader(std::span<const std::uint8_t> stream, std::size_t offset);

    // The next record; false at the end of the stream.
    bool next(Record& record);

private:
    std::span<const std::uint8_t> stream_;
    std::size_t offset_;
};

// Reads the data of a record across its pieces. Numbers may straddle two
// pieces; the characters of a string that a CONTINUE cuts restart there with
// a fresh flags byte (8-bit or UTF-16), as SST and STRING records do. Reading
// past the data throws WorkbookError (Damaged).
class Cursor {
public:
    explicit Cursor(const Record& record) : pieces_(record.pieces) {}

    bool atEnd();
    std::uint8_t u8();
    std::uint16_t u16();
    std::uint32_t u32();
    double f64();
    void skip(std::size_t count);

    // `count` characters, 8-bit (Latin-1) or UTF-16LE as `wide` says.
    std::u16string characters(std::size_t count, bool wide);
    // ShortXLUnicodeString: an 8-bit count, a flags byte, the characters.
    std::u16string shortString();
    // XLUnicodeString: a 16-bit count, a flags byte, the characters.
    std::u16string unicodeString();
    // XLUnicodeRichExtendedString of the SST: as above, its formatting runs
    // and phonetic data passed over.
    std::u16string richString();

private:
    const std::vector<std::span<const std::uint8_t>>& pieces_;
    std::size_t piece_ = 0;
    std::size_t offset_ = 0;  // in the present piece
};

}  // namespace workbook::biff
