#pragma once

#include <cstdint>

namespace jet {

class WriteStatement;

// Marks a page in the usage map stored in the row `pointer`: a table's map
// of owned pages or of pages with free space. An inline map whose window
// cannot reach the page becomes a map by reference, whose usage map pages
// are made as needed.
void addToUsageMap(WriteStatement& statement, std::uint32_t pointer, std::uint32_t page);
void removeFromUsageMap(WriteStatement& statement, std::uint32_t pointer, std::uint32_t page);

// A new, zeroed page at the end of the file, taken out of the database's map
// of free pages (row 0 of page 1, where a set bit means free and pages past
// the map's window count as free).
std::uint32_t allocatePage(WriteStatement& statement);

// Marks a page no longer used as free in the database's map of free pages,
// where the map reaches it; a page it cannot reach stays marked used.
void releasePage(WriteStatement& statement, std::uint32_t page);

}  // namespace jet
