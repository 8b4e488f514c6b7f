#pragma once

#include <cstdint>

namespace jet {

class WriteStatement;

// Marks a page in the usage map stored in the row `pointer`: a table's map
// of owned pages or of pages with free space, or an index's map. An inline
// map whose window cannot reach the page moves its window when all its pages
// still fit, and otherwise becomes a map by reference, whose usage map pages
// are made as needed.
void addToUsageMap(WriteStatement& statement, std::uint32_t pointer, std::uint32_t page);
void removeFromUsageMap(WriteStatement& statement, std::uint32_t pointer, std::uint32_t page);

// A zeroed page for a new use: the lowest page above `after` that the
// database's map of free pages (row 0 of page 1, a set bit for a free page)
// marks free, else a new page at the end of the file. The map covers the
// whole file: inline while its window reaches the last page, by reference
// after that.
std::uint32_t allocatePage(WriteStatement& statement, std::uint32_t after = 0);

// Gives back a page that nothing refers to any more: it is zeroed and marked
// free in the map of free pages, for allocatePage to hand out again.
void releasePage(WriteStatement& statement, std::uint32_t page);

}  // namespace jet
