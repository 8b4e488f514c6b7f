#include "data_page_builder.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "bytes.h"
#include "data_page.h"
#include "error.h"
#include "format.h"

namespace jet {
namespace {

namespace d = format::data;

void putU16(Page& page, std::size_t at, std::uint16_t value) {
    page[at] = static_cast<std::uint8_t>(value);
    page[at + 1] = static_cast<std::uint8_t>(value >> 8);
}

std::uint16_t u16(const Page& page, std::size_t at) {
    return static_cast<std::uint16_t>(page[at] | (page[at + 1] << 8));
}

std::uint16_t rowCount(const Page& page) { return u16(page, d::kRowCountOffset); }

std::size_t lowestRowStart(const Page& page) {
    const std::uint16_t count = rowCount(page);
    return count == 0 ? format::kPageSize
                      : u16(page, d::kRowTableOffset + 2 * (count - 1u)) & d::kRowOffsetMask;
}

void updateFreeSpace(Page& page) {
    const std::size_t tableEnd = d::kRowTableOffset + 2u * rowCount(page);
    putU16(page, d::kFreeSpaceOffset, static_cast<std::uint16_t>(lowestRowStart(page) - tableEnd));
}

}  // namespace

void initDataPage(Page& page, std::uint32_t owner) {
    page.fill(0);
    page[0] = format::kPageData;
    page[1] = 0x01;
    std::memcpy(page.data() + d::kOwnerOffset, &owner, 4);
    updateFreeSpace(page);
}

std::uint16_t dataPageFreeSpace(const Page& page) { return u16(page, d::kFreeSpaceOffset); }

bool dataPageFits(const Page& page, std::size_t rowSize) {
    const std::size_t tableEnd = d::kRowTableOffset + 2u * rowCount(page);
    return rowCount(page) < 0xff && tableEnd + 2 + rowSize <= lowestRowStart(page);
}

std::uint16_t appendRow(Page& page, const Bytes& row, std::uint16_t flags) {
    if (!dataPageFits(page, row.size())) throw Error("a row does not fit its page");
    const std::uint16_t slot = rowCount(page);
    const std::size_t start = lowestRowStart(page) - row.size();
    std::copy(row.begin(), row.end(), page.begin() + static_cast<std::ptrdiff_t>(start));
    putU16(page, d::kRowTableOffset + 2u * slot, static_cast<std::uint16_t>(start | flags));
    putU16(page, d::kRowCountOffset, static_cast<std::uint16_t>(slot + 1));
    updateFreeSpace(page);
    return slot;
}

void setRowFlags(Page& page, std::uint16_t slot, std::uint16_t flags) {
    const std::size_t at = d::kRowTableOffset + 2u * slot;
    putU16(page, at, static_cast<std::uint16_t>((u16(page, at) & d::kRowOffsetMask) | flags));
}

bool replaceRow(Page& page, std::uint16_t slot, const Bytes& row, std::uint16_t flags) {
    const std::uint16_t count = rowCount(page);
    std::vector<Bytes> rows(count);
    std::vector<std::uint16_t> rowFlags(count);
    std::size_t total = 0;
    for (std::uint16_t i = 0; i < count; ++i) {
        const std::uint16_t entry = u16(page, d::kRowTableOffset + 2u * i);
        rowFlags[i] = entry & static_cast<std::uint16_t>(~d::kRowOffsetMask);
        if (i == slot) {
            rows[i] = row;
            rowFlags[i] = flags;
        } else {
            const std::size_t start = entry & d::kRowOffsetMask;
            const std::size_t end =
                i == 0 ? format::kPageSize
                       : u16(page, d::kRowTableOffset + 2u * (i - 1u)) & d::kRowOffsetMask;
            if (start <= end) rows[i].assign(page.begin() + static_cast<std::ptrdiff_t>(start),
                                             page.begin() + static_cast<std::ptrdiff_t>(end));
        }
        total += rows[i].size();
    }
    if (d::kRowTableOffset + 2u * count + total > format::kPageSize) return false;
    std::size_t end = format::kPageSize;
    for (std::uint16_t i = 0; i < count; ++i) {
        const std::size_t start = end - rows[i].size();
        std::copy(rows[i].begin(), rows[i].end(), page.begin() + static_cast<std::ptrdiff_t>(start));
        putU16(page, d::kRowTableOffset + 2u * i, static_cast<std::uint16_t>(start | rowFlags[i]));
        end = start;
    }
    std::fill(page.begin() + static_cast<std::ptrdiff_t>(d::kRowTableOffset + 2u * count),
              page.begin() + static_cast<std::ptrdiff_t>(end), 0);
    updateFreeSpace(page);
    return true;
}

}  // namespace jet
