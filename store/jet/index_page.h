#pragma once

#include <cstdint>
#include <vector>

#include "page_file.h"
#include "table_cursor.h"
#include "table_definition.h"
#include "value.h"

namespace jet {

// One entry of an index page, its shared prefix put back.
struct IndexPageEntry {
    Bytes key;                    // the encoded key, without the pointers after it
    RowId row;                    // the row the key was taken from
    std::uint32_t childPage = 0;  // intermediate pages: the page below, whose last key this is
};

// An index page (type 0x03 intermediate, 0x04 leaf). Each entry is a key
// followed by a row pointer and, on intermediate pages, the child page. The
// entries after the first omit the prefix that all entries of the page share.
class IndexPage {
public:
    // REQUIRES: page holds page `number` of the file. Throws Error when it is
    // not an index page, or when an entry's bounds or pointers do not fit.
    IndexPage(const Page& page, std::uint32_t number);

    std::uint32_t number() const { return number_; }
    bool isLeaf() const { return leaf_; }
    std::uint16_t freeSpace() const { return freeSpace_; }
    std::uint32_t owner() const { return owner_; }        // the table definition page
    std::uint32_t prevPage() const { return prevPage_; }  // same level; 0 for none
    std::uint32_t nextPage() const { return nextPage_; }
    std::uint32_t tailPage() const { return tailPage_; }  // intermediate: the last leaf
    std::uint16_t prefixLength() const { return prefixLength_; }
    const std::vector<IndexPageEntry>& entries() const { return entries_; }

private:
    std::uint32_t number_;
    bool leaf_ = false;
    std::uint16_t freeSpace_ = 0;
    std::uint32_t owner_ = 0;
    std::uint32_t prevPage_ = 0;
    std::uint32_t nextPage_ = 0;
    std::uint32_t tailPage_ = 0;
    std::uint16_t prefixLength_ = 0;
    std::vector<IndexPageEntry> entries_;
};

// The bytes Jet orders an index's entries by: the key, then the row pointer.
Bytes indexEntryOrder(const IndexPageEntry& entry);

// A key of an index and the row it belongs to.
struct IndexEntry {
    Bytes key;
    RowId row;
};

// Every entry of the index, in key order: down the B-tree from its first
// page to the leftmost leaf, then along the leaves. Throws Error for pages
// that are not index pages of the same table, pointers beyond the file,
// loops among the pages, and entries out of order.
std::vector<IndexEntry> readIndexEntries(const PageSource& file, const RealIndex& index);

// The entries whose key starts with `prefix` (such as the key of the index's
// first column alone), in key order: down the B-tree to the first child
// whose last key is not below `prefix`, then along the leaves while keys
// start with it. Reads only those pages. Throws Error as readIndexEntries.
std::vector<IndexEntry> findIndexEntries(const PageSource& file, const RealIndex& index,
                                         const Bytes& prefix);

}  // namespace jet
