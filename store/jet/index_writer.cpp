#include "index_writer.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "error.h"
#include "format.h"
#include "text.h"
#include "usage_map_writer.h"
#include "write_statement.h"

namespace jet {
namespace {

// More levels than any index of a Jet file can have: deeper is a loop.
constexpr std::size_t kMaxDepth = 32;
// Empty leaves passed over when looking for a neighbouring entry.
constexpr int kMaxEmptyLeaves = 64;

int compareEntry(const IndexPageEntry& entry, const Bytes& key, RowId row) {
    const std::size_t common = std::min(entry.key.size(), key.size());
    if (common > 0) {
        const int byBytes = std::memcmp(entry.key.data(), key.data(), common);
        if (byBytes != 0)
            return byBytes;
    }
    if (entry.key.size() != key.size())
        return entry.key.size() < key.size() ? -1 : 1;
    if (entry.row.page != row.page)
        return entry.row.page < row.page ? -1 : 1;
    if (entry.row.row != row.row)
        return entry.row.row < row.row ? -1 : 1;
    return 0;
}

// The first entry not before (key, row).
std::size_t lowerBound(const std::vector<IndexPageEntry>& entries, const Bytes& key, RowId row) {
    const auto found = std::lower_bound(
        entries.begin(), entries.end(), 0,
        [&](const IndexPageEntry& entry, int) { return compareEntry(entry, key, row) < 0; });
    return static_cast<std::size_t>(found - entries.begin());
}

bool isEmpty(const IndexPageContents& node) {
    return node.entries.empty() && (node.leaf || node.tailPage == 0);
}

}  // namespace

IndexWriter::IndexWriter(WriteStatement& statement, const TableDefinition& table,
                         std::size_t realIndex)
    : statement_(statement),
      table_(table),
      realIndex_(realIndex),
      index_(table.realIndexes.at(realIndex)) {}

std::string IndexWriter::where() const {
    return "index " + std::to_string(realIndex_) + " of table " + toUtf8(table_.name);
}

IndexWriter::Node& IndexWriter::load(std::uint32_t number) {
    Page bytes;
    statement_.read(number, bytes);
    auto found = nodes_.find(number);
    if (found != nodes_.end() && found->second.stored == bytes)
        return found->second;

    const IndexPage page(bytes, number);
    if (page.owner() != table_.page) {
        throw Error("index page " + std::to_string(number) + " of " + where() +
                    " belongs to the table on page " + std::to_string(page.owner()));
    }
    Node& node = nodes_[number];
    node.number = number;
    node.leaf = page.isLeaf();
    node.owner = page.owner();
    node.prevPage = page.prevPage();
    node.nextPage = page.nextPage();
    node.tailPage = page.isLeaf() ? 0 : page.tailPage();
    node.entries = page.entries();
    node.stored = bytes;
    return node;
}

void IndexWriter::store(Node& node) {
    Page& page = statement_.change(node.number);
    buildIndexPage(page, node);
    node.stored = page;
}

std::uint32_t IndexWriter::newPage(bool leaf) {
    const std::uint32_t number = allocatePage(statement_);
    addToUsageMap(statement_, index_.usageMap, number);
    Node& node = nodes_[number];
    node = Node{};
    node.number = number;
    node.leaf = leaf;
    node.owner = table_.page;
    return number;
}

void IndexWriter::freePage(std::uint32_t number) {
    removeFromUsageMap(statement_, index_.usageMap, number);
    releasePage(statement_, number);
    nodes_.erase(number);
}

std::uint32_t IndexWriter::descend(const Bytes& key, RowId row, std::vector<Step>& path) {
    path.clear();
    std::uint32_t number = index_.firstPage;
    for (;;) {
        if (path.size() > kMaxDepth) {
            throw Error("the pages of " + where() + " are more than " + std::to_string(kMaxDepth) +
                        " levels deep: they form a loop");
        }
        const Node& node = load(number);
        if (node.leaf)
            return number;
        std::size_t child = lowerBound(node.entries, key, row);
        std::uint32_t next = 0;
        if (child < node.entries.size()) {
            next = node.entries[child].childPage;
        } else if (node.tailPage != 0) {
            next = node.tailPage;
        } else if (!node.entries.empty()) {
            child = node.entries.size() - 1;
            next = node.entries[child].childPage;
        } else {
            throw Error("intermediate page " + std::to_string(number) + " of " + where() +
                        " has no children");
        }
        path.push_back(Step{number, child});
        number = next;
    }
}

const IndexPageEntry* IndexWriter::neighbourBefore(const Node& leaf, std::size_t position) {
    if (position > 0)
        return &leaf.entries[position - 1];
    std::uint32_t page = leaf.prevPage;
    for (int hop = 0; page != 0 && hop < kMaxEmptyLeaves; ++hop) {
        const Node& node = load(page);
        if (!node.entries.empty())
            return &node.entries.back();
        page = node.prevPage;
    }
    return nullptr;
}

const IndexPageEntry* IndexWriter::neighbourAfter(const Node& leaf, std::size_t position) {
    if (position < leaf.entries.size())
        return &leaf.entries[position];
    std::uint32_t page = leaf.nextPage;
    for (int hop = 0; page != 0 && hop < kMaxEmptyLeaves; ++hop) {
        const Node& node = load(page);
        if (!node.entries.empty())
            return &node.entries.front();
        page = node.nextPage;
    }
    return nullptr;
}

IndexPageEntry IndexWriter::lastEntryUnder(std::uint32_t page) {
    for (std::size_t depth = 0; depth <= kMaxDepth; ++depth) {
        const Node& node = load(page);
        if (node.leaf) {
            if (node.entries.empty())
                break;
            IndexPageEntry last = node.entries.back();
            last.childPage = 0;
            return last;
        }
        if (node.tailPage != 0) {
            page = node.tailPage;
        } else if (!node.entries.empty()) {
            page = node.entries.back().childPage;
        } else {
            break;
        }
    }
    throw Error("the subtree under page " + std::to_string(page) + " of " + where() +
                " has no last entry");
}

bool IndexWriter::holdsKey(const Bytes& key, RowId except) {
    std::vector<Step> path;
    const std::uint32_t leafPage = descend(key, RowId{}, path);
    const Node& leaf = load(leafPage);
    std::size_t position = lowerBound(leaf.entries, key, RowId{});
    // Entries of that key follow one another; look past the excepted row.
    const Node* node = &leaf;
    for (int hop = 0; hop < kMaxEmptyLeaves + 2;) {
        if (position < node->entries.size()) {
            const IndexPageEntry& entry = node->entries[position];
            if (entry.key != key)
                return false;
            if (!(entry.row == except))
                return true;
            ++position;
            continue;
        }
        if (node->nextPage == 0)
            return false;
        node = &load(node->nextPage);
        position = 0;
        ++hop;
    }
    return false;
}

void IndexWriter::addDistinctKey() {
    Page& page = statement_.change(table_.page);
    const std::size_t at = format::tdef::kRealIndexCountsOffset +
                           realIndex_ * format::tdef::kRealIndexCountEntrySize +
                           format::tdef::kRealIndexRowCountOffset;
    std::uint32_t count;
    std::memcpy(&count, page.data() + at, 4);
    ++count;
    std::memcpy(page.data() + at, &count, 4);
}

void IndexWriter::insert(const Bytes& key, RowId row) {
    std::vector<Step> path;
    const std::uint32_t leafPage = descend(key, row, path);
    Node& leaf = load(leafPage);
    const std::size_t position = lowerBound(leaf.entries, key, row);
    if (position < leaf.entries.size() && compareEntry(leaf.entries[position], key, row) == 0) {
        throw Error(where() + " already holds an entry for row " + std::to_string(row.row) +
                    " of page " + std::to_string(row.page));
    }
    const IndexPageEntry* before = neighbourBefore(leaf, position);
    const IndexPageEntry* after = neighbourAfter(leaf, position);
    const bool newKey =
        (before == nullptr || before->key != key) && (after == nullptr || after->key != key);

    Node& target = load(leafPage);
    target.entries.insert(target.entries.begin() + static_cast<std::ptrdiff_t>(position),
                          IndexPageEntry{key, row, 0});
    std::optional<IndexPageEntry> last;
    const bool atEnd = position + 1 == target.entries.size();
    if (atEnd)
        last = target.entries.back();
    settle(path, leafPage, std::move(last), atEnd);
    if (newKey)
        addDistinctKey();
}

void IndexWriter::remove(const Bytes& key, RowId row) {
    std::vector<Step> path;
    const std::uint32_t leafPage = descend(key, row, path);
    Node& leaf = load(leafPage);
    const std::size_t position = lowerBound(leaf.entries, key, row);
    if (position == leaf.entries.size() || compareEntry(leaf.entries[position], key, row) != 0) {
        throw Error(where() + " has no entry for row " + std::to_string(row.row) + " of page " +
                    std::to_string(row.page) + ": the index does not hold the table's rows");
    }
    leaf.entries.erase(leaf.entries.begin() + static_cast<std::ptrdiff_t>(position));
    std::optional<IndexPageEntry> last;
    if (position == leaf.entries.size() && !leaf.entries.empty())
        last = leaf.entries.back();
    settle(path, leafPage, std::move(last), false);
}

// An intermediate page with two children or more has its last one as tail;
// one with a single child keeps it as an entry.
void IndexWriter::keepTailRule(Node& node) {
    if (node.leaf)
        return;
    if (node.tailPage == 0 && node.entries.size() >= 2) {
        node.tailPage = node.entries.back().childPage;
        node.entries.pop_back();
    } else if (node.tailPage != 0 && node.entries.empty()) {
        IndexPageEntry entry = lastEntryUnder(node.tailPage);
        entry.childPage = node.tailPage;
        node.entries.push_back(std::move(entry));
        node.tailPage = 0;
    }
}

// Takes an empty page out of the tree: out of its parent and its siblings'
// links. `last` becomes the parent's new last entry when that changed.
void IndexWriter::detach(std::vector<Step>& path, std::size_t level, std::uint32_t page,
                         std::optional<IndexPageEntry>& last) {
    const Node& node = load(page);
    const std::uint32_t prev = node.prevPage;
    const std::uint32_t next = node.nextPage;
    if (prev != 0) {
        Node& before = load(prev);
        before.nextPage = next;
        store(before);
    }
    if (next != 0) {
        Node& after = load(next);
        after.prevPage = prev;
        store(after);
    }
    freePage(page);

    const Step& step = path[level - 1];
    Node& parent = load(step.page);
    last.reset();
    if (step.child < parent.entries.size()) {
        const bool wasLast = step.child + 1 == parent.entries.size();
        parent.entries.erase(parent.entries.begin() + static_cast<std::ptrdiff_t>(step.child));
        if (wasLast && parent.tailPage == 0 && !parent.entries.empty()) {
            last = parent.entries.back();
        }
    } else {
        parent.tailPage = 0;
        if (!parent.entries.empty())
            last = parent.entries.back();
    }
    if (last)
        last->childPage = 0;
    keepTailRule(parent);
}

// Splits the overfull page `page` at `level` of the path: its first entries
// move to a new page put before it, whose entry the parent receives. The
// root first moves its whole contents to a new page below it; then `level`
// and `page` name that page.
void IndexWriter::split(std::vector<Step>& path, std::size_t& level, std::uint32_t& page,
                        bool insertedLast) {
    if (level == 0) {
        const std::uint32_t below = newPage(false);
        Node& root = load(page);
        Node& moved = nodes_.at(below);
        moved.leaf = root.leaf;
        moved.tailPage = root.tailPage;
        moved.entries = std::move(root.entries);
        root.entries.clear();
        root.leaf = false;
        root.tailPage = below;
        path.insert(path.begin(), Step{page, 0});
        level = 1;
        page = below;
    }
    Node& rest = load(page);
    const std::size_t count = rest.entries.size();
    if (count < 2) {
        throw Error("an entry of " + where() + " is too large for an index page");
    }
    // Entries added at the end of the index fill pages; others split them in two.
    std::size_t moving = insertedLast && rest.nextPage == 0 ? count - 1 : count / 2;
    const std::uint32_t number = newPage(rest.leaf);
    Node& head = nodes_.at(number);
    for (;;) {
        head.entries.assign(rest.entries.begin(),
                            rest.entries.begin() + static_cast<std::ptrdiff_t>(moving));
        IndexPageContents remaining = rest;
        remaining.entries.erase(remaining.entries.begin(),
                                remaining.entries.begin() + static_cast<std::ptrdiff_t>(moving));
        if (fitsIndexPage(head) && fitsIndexPage(remaining)) {
            rest.entries = std::move(remaining.entries);
            break;
        }
        if (moving == count / 2) {
            throw Error("the entries of " + where() + " cannot be split into two pages");
        }
        moving = count / 2;
    }
    IndexPageEntry headLast = head.entries.back();
    headLast.childPage = number;
    keepTailRule(head);

    head.prevPage = rest.prevPage;
    head.nextPage = rest.number;
    if (rest.prevPage != 0) {
        Node& before = load(rest.prevPage);
        before.nextPage = number;
        store(before);
    }
    rest.prevPage = number;
    if (!head.leaf) {
        // Intermediate pages link only to pages of the same parent.
        Node& leftChild = load(head.tailPage != 0 ? head.tailPage : head.entries.back().childPage);
        if (!leftChild.leaf) {
            const std::uint32_t rightPage = leftChild.nextPage;
            leftChild.nextPage = 0;
            store(leftChild);
            if (rightPage != 0) {
                Node& rightChild = load(rightPage);
                rightChild.prevPage = 0;
                store(rightChild);
            }
        }
    }
    store(head);
    store(rest);

    Step& step = path[level - 1];
    Node& parent = load(step.page);
    const bool wasTail = step.child >= parent.entries.size();
    parent.entries.insert(parent.entries.begin() + static_cast<std::ptrdiff_t>(step.child),
                          std::move(headLast));
    step.child = wasTail ? parent.entries.size() : step.child + 1;
    keepTailRule(parent);
    step.child = std::min(step.child, parent.entries.size());
}

// Writes the pages changed from `page` up: splits what is too full, takes
// out what became empty, and carries a changed last entry (`last`) up to the
// parents whose entries hold it.
void IndexWriter::settle(std::vector<Step>& path, std::uint32_t page,
                         std::optional<IndexPageEntry> last, bool insertedLast) {
    std::size_t level = path.size();
    bool dirty = true;
    for (;;) {
        Node& node = load(page);
        if (level > 0 && isEmpty(node)) {
            detach(path, level, page, last);
            --level;
            page = path[level].page;
            dirty = true;
            continue;
        }
        bool parentDirty = false;
        if (dirty) {
            if (level == 0 && isEmpty(node)) {
                node.leaf = true;  // the whole tree emptied: the root is an empty leaf again
                node.tailPage = 0;
            }
            if (fitsIndexPage(node)) {
                store(node);
            } else {
                split(path, level, page, insertedLast);
                parentDirty = true;
            }
        }
        if (level == 0)
            return;
        Step& step = path[level - 1];
        Node& parent = load(step.page);
        if (last && step.child < parent.entries.size()) {
            parent.entries[step.child].key = last->key;
            parent.entries[step.child].row = last->row;
            parentDirty = true;
            if (step.child + 1 != parent.entries.size() || parent.tailPage != 0)
                last.reset();
        }
        if (!parentDirty && !last)
            return;
        --level;
        page = step.page;
        dirty = parentDirty;
    }
}

}  // namespace jet
