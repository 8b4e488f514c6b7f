#include "data_page.h"

#include <cstring>
#include <string>

#include "error.h"
#include "format.h"

namespace jet {

namespace d = format::data;

DataPage::DataPage(const Page& page, std::uint32_t number)
    : bytes_(page.data(), page.size()), number_(number), rowCount_(0) {
    if (page[0] != format::kPageData) {
        throw Error("page " + std::to_string(number) + " should be a data page but is of type " +
                    std::to_string(page[0]));
    }
    rowCount_ = bytes_.u16(d::kRowCountOffset);
    if (d::kRowTableOffset + 2 * static_cast<std::size_t>(rowCount_) > page.size()) {
        throw Error("data page " + std::to_string(number) + " claims " +
                    std::to_string(rowCount_) + " rows, more than a page can hold");
    }
}

std::uint32_t DataPage::owner() const { return bytes_.u32(d::kOwnerOffset); }

bool DataPage::isLongValuePage() const {
    return std::memcmp(bytes_.data() + d::kOwnerOffset, "LVAL", 4) == 0;
}

RowSlot DataPage::slot(std::uint16_t row) const {
    if (row >= rowCount_) {
        throw Error("row " + std::to_string(row) + " of data page " + std::to_string(number_) +
                    " does not exist (the page has " + std::to_string(rowCount_) + " rows)");
    }
    const std::uint16_t entry = bytes_.u16(d::kRowTableOffset + 2 * row);
    RowSlot slot;
    slot.start = entry & d::kRowOffsetMask;
    slot.end = row == 0 ? static_cast<std::uint16_t>(format::kPageSize)
                        : bytes_.u16(d::kRowTableOffset + 2 * (row - 1)) & d::kRowOffsetMask;
    slot.deleted = (entry & d::kRowDeleted) != 0;
    slot.overflow = (entry & d::kRowOverflow) != 0;
    const std::size_t tableEnd = d::kRowTableOffset + 2 * static_cast<std::size_t>(rowCount_);
    if (slot.start < tableEnd || slot.start > slot.end) {
        // Deleted rows may have been compacted away; only live rows must be sound.
        if (slot.deleted) {
            slot.start = slot.end;
            return slot;
        }
        throw Error("row " + std::to_string(row) + " of data page " + std::to_string(number_) +
                    " lies outside the page (bytes " + std::to_string(slot.start) + " to " +
                    std::to_string(slot.end) + ")");
    }
    return slot;
}

ByteView DataPage::rowBytes(const RowSlot& slot) const {
    return bytes_.sub(slot.start, slot.end - slot.start);
}

}  // namespace jet
