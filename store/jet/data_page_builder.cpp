#include "data_page_builder.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

#include "bytes.h"
#include "data_page.h"
#include "error.h"
#include "format.h"

namespace jet {
namespace {

namespace d = format::data;

// Jet marks a deleted row with both flags; the deleted flag alone marks the
// data of a moved row, which is live.
constexpr std::uint16_t kRowGone = d::kRowDeleted | d::kRowOverflow;
// A row pointer holds the row's slot in one byte.
constexpr std::uint16_t kMaxRows = 0xff;

void putU16(Page& page, std::size_t at, std::uint16_t value) {
    page[at] = static_cast<std::uint8_t>(value);
    page[at + 1] = static_cast<std::uint8_t>(value >> 8);
}

std::uint16_t u16(const Page& page, std::size_t at) {
    return static_cast<std::uint16_t>(page[at] | (page[at + 1] << 8));
}

std::uint16_t rowCount(const Page& page) { return u16(page, d::kRowCountOffset); }

std::uint16_t slotEntry(const Page& page, std::size_t slot) {
    return u16(page, d::kRowTableOffset + 2 * slot);
}

bool isGone(std::uint16_t entry) { return (entry & kRowGone) == kRowGone; }

std::size_t lowestRowStart(const Page& page) {
    const std::uint16_t count = rowCount(page);
    return count == 0 ? format::kPageSize : slotEntry(page, count - 1u) & d::kRowOffsetMask;
}

void updateFreeSpace(Page& page) {
    const std::size_t tableEnd = d::kRowTableOffset + 2u * rowCount(page);
    putU16(page, d::kFreeSpaceOffset, static_cast<std::uint16_t>(lowestRowStart(page) - tableEnd));
}

// The rows of a page, in slot order, as a layout writes them back: deleted
// rows without their bytes.
struct Rows {
    std::vector<Bytes> bytes;
    std::vector<std::uint16_t> flags;
    std::size_t total = 0;                   // bytes of all rows
    std::optional<std::uint16_t> firstGone;  // the first deleted slot
};

// Throws Error when a row that is not deleted lies outside the page.
Rows readRows(const Page& page) {
    const DataPage data(page, 0);
    Rows rows;
    rows.bytes.resize(data.rowCount());
    rows.flags.resize(data.rowCount());
    for (std::uint16_t i = 0; i < data.rowCount(); ++i) {
        const std::uint16_t entry = slotEntry(page, i);
        rows.flags[i] = entry & static_cast<std::uint16_t>(~d::kRowOffsetMask);
        if (isGone(entry)) {
            if (!rows.firstGone) rows.firstGone = i;
            continue;
        }
        const ByteView bytes = data.rowBytes(data.slot(i));
        rows.bytes[i].assign(bytes.data(), bytes.data() + bytes.size());
        rows.total += bytes.size();
    }
    return rows;
}

// Writes the rows from the end of the page backwards in slot order; false
// (page unchanged) when they do not fit.
bool layOut(Page& page, const Rows& rows) {
    const std::size_t count = rows.bytes.size();
    if (count > kMaxRows || d::kRowTableOffset + 2 * count + rows.total > format::kPageSize)
        return false;
    std::size_t end = format::kPageSize;
    for (std::size_t i = 0; i < count; ++i) {
        const Bytes& row = rows.bytes[i];
        const std::size_t start = end - row.size();
        std::copy(row.begin(), row.end(), page.begin() + static_cast<std::ptrdiff_t>(start));
        putU16(page, d::kRowTableOffset + 2 * i, static_cast<std::uint16_t>(start | rows.flags[i]));
        end = start;
    }
    std::fill(page.begin() + static_cast<std::ptrdiff_t>(d::kRowTableOffset + 2 * count),
              page.begin() + static_cast<std::ptrdiff_t>(end), 0);
    putU16(page, d::kRowCountOffset, static_cast<std::uint16_t>(count));
    updateFreeSpace(page);
    return true;
}

// The slot a new row takes under `where`.
std::size_t newSlot(const Rows& rows, NewSlot where) {
    return where == NewSlot::FirstFree && rows.firstGone ? *rows.firstGone : rows.bytes.size();
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
    return rowCount(page) < kMaxRows && tableEnd + 2 + rowSize <= lowestRowStart(page);
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

std::size_t dataPageRoom(const Page& page, NewSlot where) {
    const DataPage data(page, 0);
    std::size_t slots = data.rowCount();
    std::size_t used = 0;
    bool reuse = false;
    for (std::uint16_t i = 0; i < data.rowCount(); ++i) {
        if (isGone(slotEntry(page, i))) {
            reuse = reuse || where == NewSlot::FirstFree;
        } else {
            const RowSlot slot = data.slot(i);
            used += slot.end - slot.start;
        }
    }
    if (!reuse) ++slots;
    const std::size_t needed = d::kRowTableOffset + 2 * slots + used;
    return slots > kMaxRows || needed > format::kPageSize ? 0 : format::kPageSize - needed;
}

std::uint16_t addRow(Page& page, const Bytes& row, std::uint16_t flags, NewSlot where) {
    if (where == NewSlot::AfterLast && dataPageFits(page, row.size()))
        return appendRow(page, row, flags);
    Rows rows = readRows(page);
    const std::size_t slot = newSlot(rows, where);
    if (slot == rows.bytes.size()) {
        rows.bytes.emplace_back();
        rows.flags.emplace_back();
    }
    rows.bytes[slot] = row;
    rows.flags[slot] = flags;
    rows.total += row.size();
    if (!layOut(page, rows)) throw Error("a row does not fit its page");
    return static_cast<std::uint16_t>(slot);
}

bool dataPageEmpty(const Page& page) {
    const std::uint16_t count = rowCount(page);
    if (d::kRowTableOffset + 2u * count > format::kPageSize) return false;
    for (std::uint16_t i = 0; i < count; ++i) {
        if (!isGone(slotEntry(page, i))) return false;
    }
    return true;
}

void setRowFlags(Page& page, std::uint16_t slot, std::uint16_t flags) {
    const std::size_t at = d::kRowTableOffset + 2u * slot;
    putU16(page, at, static_cast<std::uint16_t>((u16(page, at) & d::kRowOffsetMask) | flags));
}

bool replaceRow(Page& page, std::uint16_t slot, const Bytes& row, std::uint16_t flags) {
    Rows rows = readRows(page);
    if (slot >= rows.bytes.size())
        throw Error("row " + std::to_string(slot) + " is not on its page");
    rows.total += row.size();
    rows.total -= rows.bytes[slot].size();
    rows.bytes[slot] = row;
    rows.flags[slot] = flags;
    return layOut(page, rows);
}

}  // namespace jet
