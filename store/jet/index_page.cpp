#include "index_page.h"

#include <algorithm>
#include <string>

#include "bytes.h"
#include "error.h"
#include "format.h"

namespace jet {

namespace x = format::index;

namespace {

// Pointers after a key are big-endian, unlike the rest of the file, so that
// the entries sort as plain bytes.
std::uint32_t bigEndian(ByteView bytes, std::size_t offset, std::size_t length) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < length; ++i)
        value = (value << 8) | bytes.u8(offset + i);
    return value;
}

std::string where(std::uint32_t page) {
    return "index page " + std::to_string(page);
}

}  // namespace

IndexPage::IndexPage(const Page& page, std::uint32_t number) : number_(number) {
    if (page[0] != format::kPageIndexLeaf && page[0] != format::kPageIndexIntermediate) {
        throw Error("page " + std::to_string(number) + " should be an index page but is of type " +
                    std::to_string(page[0]));
    }
    const ByteView bytes(page.data(), page.size());
    leaf_ = page[0] == format::kPageIndexLeaf;
    freeSpace_ = bytes.u16(x::kFreeSpaceOffset);
    owner_ = bytes.u32(x::kOwnerOffset);
    prevPage_ = bytes.u32(x::kPrevPageOffset);
    nextPage_ = bytes.u32(x::kNextPageOffset);
    tailPage_ = bytes.u32(x::kTailPageOffset);
    prefixLength_ = bytes.u16(x::kPrefixLengthOffset);

    const std::size_t pointersSize = x::kRowPointerSize + (leaf_ ? 0 : x::kChildPointerSize);
    const ByteView mask = bytes.sub(x::kEntryMaskOffset, x::kEntryMaskLength);
    const ByteView area = bytes.from(x::kEntriesOffset);
    ByteView prefix;
    std::size_t start = 0;  // of the next entry, in the entry area
    for (std::size_t bit = 0; bit < 8 * mask.size(); ++bit) {
        if ((mask.u8(bit / 8) & (1u << (bit % 8))) == 0)
            continue;
        if (bit > area.size()) {
            throw Error(where(number) + ": an entry ends at offset " +
                        std::to_string(x::kEntriesOffset + bit) + ", beyond the page");
        }
        const ByteView stored = area.sub(start, bit - start);
        if (entries_.empty()) {
            if (prefixLength_ > stored.size()) {
                throw Error(where(number) + ": the shared prefix of " +
                            std::to_string(prefixLength_) +
                            " bytes is longer than the first entry");
            }
            prefix = stored.sub(0, prefixLength_);
        }
        // The first entry holds the prefix itself; the others leave it out.
        Bytes full;
        if (!entries_.empty())
            full.assign(prefix.data(), prefix.data() + prefix.size());
        full.insert(full.end(), stored.data(), stored.data() + stored.size());
        if (full.size() <= pointersSize) {
            throw Error(where(number) + ": the entry at offset " +
                        std::to_string(x::kEntriesOffset + start) + " is " +
                        std::to_string(full.size()) +
                        " bytes, too short for a key and its pointers");
        }
        const ByteView entryBytes(full.data(), full.size());
        const std::size_t keyLength = full.size() - pointersSize;
        IndexPageEntry entry;
        entry.row.page = bigEndian(entryBytes, keyLength, 3);
        entry.row.row = entryBytes.u8(keyLength + 3);
        if (!leaf_)
            entry.childPage = bigEndian(entryBytes, keyLength + x::kRowPointerSize, 4);
        full.resize(keyLength);
        entry.key = std::move(full);
        entries_.push_back(std::move(entry));
        start = bit;
    }
}

Bytes indexEntryOrder(const IndexPageEntry& entry) {
    Bytes bytes = entry.key;
    bytes.push_back(static_cast<std::uint8_t>(entry.row.page >> 16));
    bytes.push_back(static_cast<std::uint8_t>(entry.row.page >> 8));
    bytes.push_back(static_cast<std::uint8_t>(entry.row.page));
    bytes.push_back(static_cast<std::uint8_t>(entry.row.row));
    return bytes;
}

namespace {

// Reads the pages of one index, each at most once, all of the same table.
class IndexPageReader {
public:
    explicit IndexPageReader(const PageSource& file)
        : file_(file), seen_(file.pageCount(), false) {}

    IndexPage read(std::uint32_t number, std::uint32_t from) {
        if (number == 0 || number >= seen_.size()) {
            throw Error(where(from) + " points to page " + std::to_string(number) +
                        ", outside the file of " + std::to_string(seen_.size()) + " pages");
        }
        if (seen_[number]) {
            throw Error("the pages of an index form a loop: " + where(from) +
                        " leads back to page " + std::to_string(number));
        }
        seen_[number] = true;
        Page bytes;
        file_.read(number, bytes);
        IndexPage page(bytes, number);
        if (owner_ == 0)
            owner_ = page.owner();
        if (page.owner() != owner_) {
            throw Error(where(number) + " belongs to the table on page " +
                        std::to_string(page.owner()) + ", not to the table on page " +
                        std::to_string(owner_));
        }
        return page;
    }

private:
    const PageSource& file_;
    std::vector<bool> seen_;   // pages read so far
    std::uint32_t owner_ = 0;  // the table definition page of the first page read
};

// The leaf after `page`, which must link back to it.
IndexPage nextLeaf(IndexPageReader& reader, const IndexPage& page) {
    IndexPage next = reader.read(page.nextPage(), page.number());
    if (!next.isLeaf() || next.prevPage() != page.number()) {
        throw Error(where(next.number()) + " follows leaf page " + std::to_string(page.number()) +
                    " but is not a leaf linked back to it");
    }
    return next;
}

}  // namespace

std::vector<IndexEntry> readIndexEntries(const PageSource& file, const RealIndex& index) {
    IndexPageReader reader(file);
    IndexPage page = reader.read(index.firstPage, index.firstPage);
    while (!page.isLeaf()) {
        if (page.entries().empty()) {
            throw Error(where(page.number()) + " is an intermediate page without entries");
        }
        const std::uint32_t child = page.entries().front().childPage;
        page = reader.read(child, page.number());
    }
    if (page.prevPage() != 0) {
        throw Error("the first leaf of an index, " + where(page.number()) +
                    ", has a previous page " + std::to_string(page.prevPage()));
    }

    std::vector<IndexEntry> entries;
    Bytes previous;
    for (;;) {
        for (const IndexPageEntry& entry : page.entries()) {
            Bytes order = indexEntryOrder(entry);
            if (!entries.empty() && !std::lexicographical_compare(previous.begin(), previous.end(),
                                                                  order.begin(), order.end())) {
                throw Error(where(page.number()) + ": the entry for row " +
                            std::to_string(entry.row.row) + " of page " +
                            std::to_string(entry.row.page) + " is out of key order");
            }
            previous = std::move(order);
            entries.push_back(IndexEntry{entry.key, entry.row});
        }
        if (page.nextPage() == 0)
            break;
        page = nextLeaf(reader, page);
    }
    return entries;
}

std::vector<IndexEntry> findIndexEntries(const PageSource& file, const RealIndex& index,
                                         const Bytes& prefix) {
    auto below = [&](const Bytes& key) {
        return std::lexicographical_compare(key.begin(), key.end(), prefix.begin(), prefix.end());
    };
    auto startsWithPrefix = [&](const Bytes& key) {
        return key.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), key.begin());
    };
    IndexPageReader reader(file);
    IndexPage page = reader.read(index.firstPage, index.firstPage);
    while (!page.isLeaf()) {
        const std::vector<IndexPageEntry>& entries = page.entries();
        if (entries.empty()) {
            throw Error(where(page.number()) + " is an intermediate page without entries");
        }
        auto child = std::find_if(entries.begin(), entries.end(),
                                  [&](const IndexPageEntry& entry) { return !below(entry.key); });
        // Past every last key: the last child is read all the same, so that
        // a parent key left behind by a writer hides nothing.
        if (child == entries.end())
            --child;
        page = reader.read(child->childPage, page.number());
    }

    std::vector<IndexEntry> found;
    for (;;) {
        for (const IndexPageEntry& entry : page.entries()) {
            if (startsWithPrefix(entry.key)) {
                found.push_back(IndexEntry{entry.key, entry.row});
            } else if (!below(entry.key)) {
                return found;
            }
        }
        if (page.nextPage() == 0)
            break;
        page = nextLeaf(reader, page);
    }
    return found;
}

}  // namespace jet
