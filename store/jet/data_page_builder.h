#pragma once

#include <cstdint>

#include "page_file.h"
#include "value.h"

namespace jet {

// Writes rows into a data page. Rows lie from the end of the page backwards
// in slot order, each ending where the one before it begins; the page's free
// space is the gap between the row offset table and the lowest row.

// An empty data page of the table whose definition is on `owner`, or a long
// value page when owner is kLongValueOwner.
inline constexpr std::uint32_t kLongValueOwner = 0x4c41564c;  // "LVAL" read as a number
void initDataPage(Page& page, std::uint32_t owner);

std::uint16_t dataPageFreeSpace(const Page& page);
// Whether a row of that size, with its offset entry, fits the page.
bool dataPageFits(const Page& page, std::size_t rowSize);

// Adds a row after the page's last one and returns its slot.
// REQUIRES: dataPageFits(page, row.size()).
std::uint16_t appendRow(Page& page, const Bytes& row, std::uint16_t flags = 0);

// Sets the flags (format::data::kRowDeleted, kRowOverflow) of a slot.
void setRowFlags(Page& page, std::uint16_t slot, std::uint16_t flags);

// Replaces the bytes of a row, keeping its slot and moving the rows after it;
// false (page unchanged) when the page cannot hold the new size.
bool replaceRow(Page& page, std::uint16_t slot, const Bytes& row, std::uint16_t flags);

}  // namespace jet
