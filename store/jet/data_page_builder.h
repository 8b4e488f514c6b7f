#pragma once

#include <cstdint>

#include "page_file.h"
#include "value.h"

namespace jet {

// Writes rows into a data page. Rows lie from the end of the page backwards
// in slot order, each ending where the one before it begins; the page's free
// space is the gap between the row offset table and the lowest row.
//
// A deleted row (both flags of its slot set) may lose its bytes when the page
// is laid out again: its slot stays, empty, so that the rows after it keep
// their numbers. The data of a moved row (the deleted flag alone) is live and
// keeps its bytes.

// An empty data page of the table whose definition is on `owner`, or a long
// value page when owner is kLongValueOwner.
inline constexpr std::uint32_t kLongValueOwner = 0x4c41564c;  // "LVAL" read as a number
void initDataPage(Page& page, std::uint32_t owner);

std::uint16_t dataPageFreeSpace(const Page& page);
// Whether a row of that size, with its offset entry, fits the page's free gap.
bool dataPageFits(const Page& page, std::size_t rowSize);

// Adds a row after the page's last one and returns its slot.
// REQUIRES: dataPageFits(page, row.size()).
std::uint16_t appendRow(Page& page, const Bytes& row, std::uint16_t flags = 0);

// Which slot a row added by addRow takes.
enum class NewSlot {
    // After the page's last slot: on a table's data page, where slot order is
    // the order of a scan and a new row must come after every other.
    AfterLast,
    // The first slot a deleted row left, else after the last: on a long value
    // page, whose rows are reached only by pointers.
    FirstFree,
};

// The size of the largest row the page takes under `where` once the bytes
// of its deleted rows are dropped. Throws Error when a row that is not
// deleted lies outside the page.
std::size_t dataPageRoom(const Page& page, NewSlot where);
// Adds the row, laying the page out again without the bytes of its deleted
// rows when its free gap is too small. Returns the row's slot.
// REQUIRES: row.size() <= dataPageRoom(page, where).
std::uint16_t addRow(Page& page, const Bytes& row, std::uint16_t flags, NewSlot where);

// Whether every row of the page is deleted: it holds no live row and no
// moved row's data.
bool dataPageEmpty(const Page& page);

// Sets the flags (format::data::kRowDeleted, kRowOverflow) of a slot.
void setRowFlags(Page& page, std::uint16_t slot, std::uint16_t flags);

// Replaces the bytes of a row, keeping its slot and moving the rows after it;
// false (page unchanged) when the page cannot hold the new size.
bool replaceRow(Page& page, std::uint16_t slot, const Bytes& row, std::uint16_t flags);

}  // namespace jet
