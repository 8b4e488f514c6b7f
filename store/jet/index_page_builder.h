#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "index_page.h"
#include "page_file.h"

namespace jet {

// What an index page holds, before it is laid out.
struct IndexPageContents {
    bool leaf = true;
    std::uint32_t owner = 0;     // the table definition page
    std::uint32_t prevPage = 0;  // same level; 0 for none
    std::uint32_t nextPage = 0;
    std::uint32_t tailPage = 0;           // intermediate: the last child, which has no entry
    std::vector<IndexPageEntry> entries;  // in key order
};

// The bytes one entry takes on a page before its prefix is left out: the
// key, the row pointer and, on intermediate pages, the child page.
std::size_t indexEntrySize(const IndexPageEntry& entry, bool leaf);

// The prefix this engine lets the entries of a page share: what the keys of
// the first and last entry (and so, the entries being sorted, of all) have
// in common.
std::size_t sharedKeyPrefix(const std::vector<IndexPageEntry>& entries);

// The bytes the entries take in the entry area with that shared prefix.
std::size_t indexEntriesSize(const IndexPageContents& contents, std::size_t prefixLength);

// Whether the entries fit one page with the prefix sharedKeyPrefix() gives.
bool fitsIndexPage(const IndexPageContents& contents);

// Lays out an index page as Jet does: type, owner, sibling and tail
// pointers, the shared prefix length, the mask whose bits mark where each
// entry ends, then the entries, the first whole and the others without the
// prefix, and the free space after them. Bytes after the entries are zero.
// REQUIRES: prefixLength is shared by every entry's key. Throws Error when
// the entries do not fit the page.
void buildIndexPage(Page& page, const IndexPageContents& contents, std::size_t prefixLength);

// The same with the prefix of sharedKeyPrefix().
void buildIndexPage(Page& page, const IndexPageContents& contents);

}  // namespace jet
