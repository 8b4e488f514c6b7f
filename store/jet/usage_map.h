#pragma once

#include <cstdint>
#include <vector>

namespace jet {

class PageSource;

// The pages a usage map marks, in ascending order. `pointer` is the row
// pointer of the map as a table definition holds it. A map is stored inline
// (a first page number and a bitmap) or by reference (pointers to usage map
// pages, each a bitmap of 32,736 pages). Pages beyond the end of the file are
// damage and throw Error.
std::vector<std::uint32_t> readUsageMap(const PageSource& file, std::uint32_t pointer);

// The pages that the database's map of free pages marks free, in ascending
// order; a set bit means free, and the pages of its window past the end of
// the file are left out.
std::vector<std::uint32_t> readFreePages(const PageSource& file);

// Whether the database's map of free pages marks the page free. A page it
// does not cover is not free.
bool isPageFree(const PageSource& file, std::uint32_t page);

}  // namespace jet
