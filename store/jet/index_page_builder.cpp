#include "index_page_builder.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "error.h"
#include "format.h"

namespace jet {
namespace {

namespace x = format::index;

// The most the entry area holds: the page after the mask.
constexpr std::size_t kEntryAreaSize = format::kPageSize - x::kEntriesOffset;

void putU16(Page& page, std::size_t at, std::uint16_t value) {
    std::memcpy(&page[at], &value, 2);
}
void putU32(Page& page, std::size_t at, std::uint32_t value) {
    std::memcpy(&page[at], &value, 4);
}

// Pointers after a key are big-endian, so that entries sort as plain bytes.
std::uint8_t* putBigEndian(std::uint8_t* out, std::uint32_t value, int bytes) {
    for (int i = bytes - 1; i >= 0; --i)
        *out++ = static_cast<std::uint8_t>(value >> (8 * i));
    return out;
}

}  // namespace

std::size_t indexEntrySize(const IndexPageEntry& entry, bool leaf) {
    return entry.key.size() + x::kRowPointerSize + (leaf ? 0 : x::kChildPointerSize);
}

std::size_t sharedKeyPrefix(const std::vector<IndexPageEntry>& entries) {
    if (entries.size() < 2)
        return 0;
    const Bytes& first = entries.front().key;
    const Bytes& last = entries.back().key;
    const std::size_t limit = std::min(first.size(), last.size());
    std::size_t length = 0;
    while (length < limit && first[length] == last[length])
        ++length;
    return length;
}

std::size_t indexEntriesSize(const IndexPageContents& contents, std::size_t prefixLength) {
    std::size_t total = 0;
    for (const IndexPageEntry& entry : contents.entries)
        total += indexEntrySize(entry, contents.leaf);
    if (!contents.entries.empty())
        total -= prefixLength * (contents.entries.size() - 1);
    return total;
}

bool fitsIndexPage(const IndexPageContents& contents) {
    return indexEntriesSize(contents, sharedKeyPrefix(contents.entries)) <= kEntryAreaSize;
}

void buildIndexPage(Page& page, const IndexPageContents& contents, std::size_t prefixLength) {
    const std::size_t size = indexEntriesSize(contents, prefixLength);
    if (size > kEntryAreaSize) {
        throw Error("index entries of " + std::to_string(size) + " bytes do not fit a page of " +
                    std::to_string(kEntryAreaSize));
    }
    page.fill(0);
    page[0] = contents.leaf ? format::kPageIndexLeaf : format::kPageIndexIntermediate;
    page[1] = 0x01;
    putU16(page, x::kFreeSpaceOffset, static_cast<std::uint16_t>(kEntryAreaSize - size));
    putU32(page, x::kOwnerOffset, contents.owner);
    putU32(page, x::kPrevPageOffset, contents.prevPage);
    putU32(page, x::kNextPageOffset, contents.nextPage);
    putU32(page, x::kTailPageOffset, contents.leaf ? 0 : contents.tailPage);
    putU16(page, x::kPrefixLengthOffset, static_cast<std::uint16_t>(prefixLength));

    std::uint8_t* const area = page.data() + x::kEntriesOffset;
    std::uint8_t* out = area;
    bool first = true;
    for (const IndexPageEntry& entry : contents.entries) {
        const std::size_t skip = first ? 0 : prefixLength;
        first = false;
        out =
            std::copy(entry.key.begin() + static_cast<std::ptrdiff_t>(skip), entry.key.end(), out);
        out = putBigEndian(out, entry.row.page, 3);
        *out++ = static_cast<std::uint8_t>(entry.row.row);
        if (!contents.leaf)
            out = putBigEndian(out, entry.childPage, 4);
        const std::size_t end = static_cast<std::size_t>(out - area);
        page[x::kEntryMaskOffset + end / 8] |= static_cast<std::uint8_t>(1u << (end % 8));
    }
}

void buildIndexPage(Page& page, const IndexPageContents& contents) {
    buildIndexPage(page, contents, sharedKeyPrefix(contents.entries));
}

}  // namespace jet
