#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "index_page_builder.h"
#include "page_file.h"
#include "table_cursor.h"
#include "table_definition.h"
#include "value.h"

namespace jet {

class WriteStatement;

// Adds and removes the entries of one real index of a table inside a write
// statement, keeping the B-tree as Jet keeps it:
//
// - Entries are ordered by key, then by row pointer; a leaf entry is a key
//   and the row it was taken from.
// - An intermediate page has an entry for each child but its last, which is
//   its tail page: the entry is the child's last entry and the child's page.
//   A page with a single child keeps it as an entry and has no tail.
// - Leaves are linked from first to last; intermediate pages only to the
//   pages of the same parent.
// - The root stays on the index's first page: when it must split, its
//   contents move to a new page below it. A leaf that becomes empty leaves
//   the tree and its page is freed; an empty root becomes an empty leaf.
// - Every page of the tree is in the index's own usage map.
// - The table definition counts the distinct keys ever added: Access raises
//   the count when a key new to the index is added and never lowers it.
class IndexWriter {
public:
    // REQUIRES: `table` was read through `statement`, both outlive the
    // writer, and realIndex < table.realIndexes.size().
    IndexWriter(WriteStatement& statement, const TableDefinition& table, std::size_t realIndex);

    // Whether the index holds an entry of that key for another row than `except`.
    bool holdsKey(const Bytes& key, RowId except);

    // Adds the entry of a row. Throws Error when it is there already.
    void insert(const Bytes& key, RowId row);

    // Removes the entry of a row. Throws Error when the index has none: then
    // the index does not hold the table's rows.
    void remove(const Bytes& key, RowId row);

private:
    struct Node : IndexPageContents {
        std::uint32_t number = 0;
        Page stored{};  // the page as last read or written, to notice changes by others
    };
    // An intermediate page on the way down and the child taken: an entry's
    // position, or entries.size() for the tail page.
    struct Step {
        std::uint32_t page;
        std::size_t child;
    };

    Node& load(std::uint32_t number);
    void store(Node& node);
    std::uint32_t newPage(bool leaf);
    void freePage(std::uint32_t number);
    std::uint32_t descend(const Bytes& key, RowId row, std::vector<Step>& path);
    const IndexPageEntry* neighbourBefore(const Node& leaf, std::size_t position);
    const IndexPageEntry* neighbourAfter(const Node& leaf, std::size_t position);
    IndexPageEntry lastEntryUnder(std::uint32_t page);
    void settle(std::vector<Step>& path, std::uint32_t page, std::optional<IndexPageEntry> last,
                bool insertedLast);
    void split(std::vector<Step>& path, std::size_t& level, std::uint32_t& page, bool insertedLast);
    void detach(std::vector<Step>& path, std::size_t level, std::uint32_t page,
                std::optional<IndexPageEntry>& last);
    void keepTailRule(Node& node);
    void addDistinctKey();
    std::string where() const;

    WriteStatement& statement_;
    const TableDefinition& table_;
    std::size_t realIndex_;
    const RealIndex& index_;
    std::map<std::uint32_t, Node> nodes_;  // pages read or written by this writer
};

}  // namespace jet
