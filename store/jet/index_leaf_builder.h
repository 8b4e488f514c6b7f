#pragma once

#include <cstdint>
#include <vector>

#include "index_page.h"
#include "page_file.h"

namespace jet {

// A lone leaf page (type 0x04) of an index of the table whose definition is
// on `owner`, holding `entries` in the order given, with no shared prefix
// (as Access writes the small indexes of a new database). No entries: the
// empty root page of a new index. Throws Error when the entries do not fit.
// REQUIRES: entries are in key order.
Page buildIndexLeaf(std::uint32_t owner, const std::vector<IndexEntry>& entries);

}  // namespace jet
