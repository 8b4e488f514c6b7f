#pragma once

#include <cstdint>

#include "bytes.h"
#include "page_file.h"

namespace jet {

// Where one row lies on a data page, and its flags.
struct RowSlot {
    std::uint16_t start = 0;  // offset of the row's first byte
    std::uint16_t end = 0;    // offset one past its last byte
    bool deleted = false;
    bool overflow = false;    // the row holds only a pointer to its data elsewhere
};

// A data page (type 0x01): a table's rows, or a long value page ("LVAL").
// Rows are stored from the end of the page backwards; a table of row offsets
// follows the header.
class DataPage {
public:
    // REQUIRES: page holds page `number` of the file. Throws Error when it is
    // not a data page or its row table does not fit the page.
    DataPage(const Page& page, std::uint32_t number);

    std::uint32_t number() const { return number_; }
    std::uint32_t owner() const;  // the table definition page
    bool isLongValuePage() const;
    std::uint16_t rowCount() const { return rowCount_; }

    // Throws Error when the row's bounds are not within the page.
    RowSlot slot(std::uint16_t row) const;
    ByteView rowBytes(const RowSlot& slot) const;

private:
    ByteView bytes_;
    std::uint32_t number_;
    std::uint16_t rowCount_;
};

// A row pointer as Jet stores it: the page in the upper 24 bits, the row in
// the low 8.
inline std::uint32_t pointerPage(std::uint32_t pointer) { return pointer >> 8; }
inline std::uint16_t pointerRow(std::uint32_t pointer) { return pointer & 0xff; }

}  // namespace jet
