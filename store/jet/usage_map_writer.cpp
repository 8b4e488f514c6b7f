#include "usage_map_writer.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "data_page.h"
#include "error.h"
#include "format.h"
#include "write_statement.h"

namespace jet {
namespace {

namespace u = format::usage;

constexpr std::uint32_t kGlobalMapPointer = format::usage::kFreePagesMap;
// The header, the map of free pages and the catalog's definition are never
// free; a map that says otherwise is not believed.
constexpr std::uint32_t kFirstFreeablePage = 3;

// The bytes of the map row, inside the statement's copy of its page.
struct MapRow {
    std::uint8_t* bytes;
    std::size_t size;
};

MapRow mapRow(WriteStatement& statement, std::uint32_t pointer) {
    Page& page = statement.change(pointerPage(pointer));
    const DataPage dataPage(page, pointerPage(pointer));
    const RowSlot slot = dataPage.slot(pointerRow(pointer));
    if (slot.end - slot.start < 5) {
        throw Error("the usage map in row " + std::to_string(pointerRow(pointer)) + " of page " +
                    std::to_string(pointerPage(pointer)) + " is too short");
    }
    return MapRow{page.data() + slot.start, static_cast<std::size_t>(slot.end - slot.start)};
}

std::string mapName(std::uint32_t pointer) {
    return "the usage map in row " + std::to_string(pointerRow(pointer)) + " of page " +
           std::to_string(pointerPage(pointer));
}

std::uint32_t u32At(const std::uint8_t* bytes) {
    std::uint32_t value;
    std::memcpy(&value, bytes, 4);
    return value;
}

void putU32(std::uint8_t* bytes, std::uint32_t value) { std::memcpy(bytes, &value, 4); }

void setBit(std::uint8_t* bitmap, std::uint64_t bit, bool on) {
    const auto mask = static_cast<std::uint8_t>(1u << (bit % 8));
    if (on) {
        bitmap[bit / 8] |= mask;
    } else {
        bitmap[bit / 8] &= static_cast<std::uint8_t>(~mask);
    }
}

bool getBit(const std::uint8_t* bitmap, std::uint64_t bit) {
    return (bitmap[bit / 8] & (1u << (bit % 8))) != 0;
}

// The first set bit in [from, end), or `end`.
std::uint64_t firstSetBit(const std::uint8_t* bitmap, std::uint64_t from, std::uint64_t end) {
    for (std::uint64_t bit = from; bit < end;) {
        if (bit % 8 == 0 && bitmap[bit / 8] == 0) {
            bit += 8;
        } else if (getBit(bitmap, bit)) {
            return bit;
        } else {
            ++bit;
        }
    }
    return end;
}

// Slots of a map by reference: one usage map page pointer for each range of
// kPagesPerMapPage pages.
std::size_t referenceSlots(const MapRow& row) { return (row.size - 1) / 4; }

Page& usageMapPage(WriteStatement& statement, std::uint32_t number) {
    Page& page = statement.change(number);
    if (page[0] != format::kPageUsageMap) {
        throw Error("page " + std::to_string(number) +
                    " should be a usage map page but is of type " + std::to_string(page[0]));
    }
    return page;
}

// --- The map of free pages -------------------------------------------------
//
// A set bit marks a free page. Pages past the end of the file count as free:
// they are there to be added. Once the file outgrows the inline window (which
// Access starts at page 0), the map goes by reference; a page of a range that
// has no usage map page then counts as used.

void setFree(WriteStatement& statement, std::uint32_t page, bool free);

// A new page at the end of the file, marked used.
std::uint32_t appendPage(WriteStatement& statement) {
    const std::uint32_t page = statement.append();
    setFree(statement, page, false);
    return page;
}

// The usage map page of a range of the map by reference, or 0 when it has none.
std::uint32_t freeMapPage(WriteStatement& statement, std::size_t slot) {
    const MapRow row = mapRow(statement, kGlobalMapPointer);
    if (slot >= referenceSlots(row)) return 0;
    const std::uint32_t number = u32At(row.bytes + 1 + 4 * slot);
    // Access leaves a word that is no page (FF FF FF 80) in slots whose range
    // lies past the end of the file.
    if (number >= statement.pageCount()) return 0;
    return number;
}

std::uint32_t makeFreeMapPage(WriteStatement& statement, std::size_t slot) {
    const std::uint32_t number = appendPage(statement);
    Page& page = statement.change(number);
    page[0] = format::kPageUsageMap;
    page[1] = 0x01;
    const std::uint64_t first = std::uint64_t{slot} * u::kPagesPerMapPage;
    for (std::uint64_t bit = std::max<std::uint64_t>(statement.pageCount(), first) - first;
         bit < u::kPagesPerMapPage; ++bit) {
        setBit(page.data() + u::kMapPageBitmapOffset, bit, true);
    }
    putU32(mapRow(statement, kGlobalMapPointer).bytes + 1 + 4 * slot, number);
    return number;
}

void setFreeByReference(WriteStatement& statement, std::uint32_t page, bool free) {
    const std::size_t slot = page / u::kPagesPerMapPage;
    // Past the reach of the map (a file of more than 2 GB): used.
    if (slot >= referenceSlots(mapRow(statement, kGlobalMapPointer))) return;
    std::uint32_t number = freeMapPage(statement, slot);
    if (number == 0) {
        if (!free) return;
        number = makeFreeMapPage(statement, slot);
    }
    setBit(usageMapPage(statement, number).data() + u::kMapPageBitmapOffset,
           page % u::kPagesPerMapPage, free);
}

// The inline map becomes a map by reference holding the same free pages.
void convertFreeMapToReference(WriteStatement& statement) {
    std::vector<std::uint32_t> freePages;
    {
        const MapRow row = mapRow(statement, kGlobalMapPointer);
        const std::uint32_t start = u32At(row.bytes + 1);
        for (std::uint64_t bit = 0; bit < (row.size - 5) * 8; ++bit) {
            const std::uint64_t page = start + bit;
            if (page >= statement.pageCount()) break;
            if (getBit(row.bytes + 5, bit)) freePages.push_back(static_cast<std::uint32_t>(page));
        }
        std::memset(row.bytes, 0, row.size);
        row.bytes[0] = u::kReferenceMap;
    }
    for (const std::uint32_t page : freePages) setFreeByReference(statement, page, true);
}

void setFree(WriteStatement& statement, std::uint32_t page, bool free) {
    const MapRow row = mapRow(statement, kGlobalMapPointer);
    if (row.bytes[0] == u::kInlineMap) {
        const std::uint32_t start = u32At(row.bytes + 1);
        if (page >= start && page - start < (row.size - 5) * 8) {
            setBit(row.bytes + 5, page - start, free);
            return;
        }
        // Sliding the window would leave the pages before it used for good.
        convertFreeMapToReference(statement);
    } else if (row.bytes[0] != u::kReferenceMap) {
        throw Error(mapName(kGlobalMapPointer) + " (the map of free pages) is of unknown kind " +
                    std::to_string(row.bytes[0]));
    }
    setFreeByReference(statement, page, free);
}

// The lowest page of the file above `after` that the map marks free; 0 for none.
std::uint32_t lowestFreePage(WriteStatement& statement, std::uint32_t after) {
    const std::uint64_t end = statement.pageCount();
    const std::uint64_t from =
        std::max<std::uint64_t>(std::uint64_t{after} + 1, kFirstFreeablePage);
    const MapRow row = mapRow(statement, kGlobalMapPointer);
    if (row.bytes[0] == u::kInlineMap) {
        const std::uint64_t start = u32At(row.bytes + 1);
        const std::uint64_t stop = std::min(end, start + (row.size - 5) * 8);
        if (from >= stop) return 0;
        const std::uint64_t first = std::max(from, start) - start;
        const std::uint64_t bit = firstSetBit(row.bytes + 5, first, stop - start);
        return bit < stop - start ? static_cast<std::uint32_t>(start + bit) : 0;
    }
    if (row.bytes[0] != u::kReferenceMap) return 0;  // setFree reports it
    for (std::size_t slot = from / u::kPagesPerMapPage;
         slot < referenceSlots(row) && std::uint64_t{slot} * u::kPagesPerMapPage < end; ++slot) {
        const std::uint32_t number = freeMapPage(statement, slot);
        if (number == 0) continue;
        Page bitmap{};
        statement.read(number, bitmap);
        if (bitmap[0] != format::kPageUsageMap) continue;  // setFree reports it
        const std::uint64_t first = std::uint64_t{slot} * u::kPagesPerMapPage;
        const std::uint64_t stop = std::min(end - first, std::uint64_t{u::kPagesPerMapPage});
        const std::uint64_t bit = firstSetBit(bitmap.data() + u::kMapPageBitmapOffset,
                                              std::max(from, first) - first, stop);
        if (bit < stop) return static_cast<std::uint32_t>(first + bit);
    }
    return 0;
}

// --- Maps of tables and indexes ---------------------------------------------

std::uint32_t newMapPage(WriteStatement& statement) {
    const std::uint32_t number = allocatePage(statement);
    Page& page = statement.change(number);
    page[0] = format::kPageUsageMap;
    page[1] = 0x01;
    return number;
}

// Sets a bit of a map by reference, making its usage map page when missing.
void setReferenceBit(WriteStatement& statement, std::uint32_t pointer, std::uint32_t page,
                     bool on) {
    const std::size_t slot = page / u::kPagesPerMapPage;
    {
        const MapRow row = mapRow(statement, pointer);
        if (slot >= referenceSlots(row)) {
            throw Error("page " + std::to_string(page) + " lies beyond the reach of " +
                        mapName(pointer));
        }
        if (u32At(row.bytes + 1 + 4 * slot) == 0 && !on) return;
    }
    std::uint32_t bitmapPage = u32At(mapRow(statement, pointer).bytes + 1 + 4 * slot);
    if (bitmapPage == 0) {
        bitmapPage = newMapPage(statement);
        // Taking a page may have changed the statement's pages; look the row up again.
        putU32(mapRow(statement, pointer).bytes + 1 + 4 * slot, bitmapPage);
    }
    setBit(usageMapPage(statement, bitmapPage).data() + u::kMapPageBitmapOffset,
           page % u::kPagesPerMapPage, on);
}

// Turns an inline map into a map by reference holding the same pages.
void convertToReference(WriteStatement& statement, std::uint32_t pointer) {
    std::vector<std::uint32_t> pages;
    {
        const MapRow row = mapRow(statement, pointer);
        const std::uint32_t start = u32At(row.bytes + 1);
        for (std::size_t bit = 0; bit < (row.size - 5) * 8; ++bit) {
            if (getBit(row.bytes + 5, bit))
                pages.push_back(static_cast<std::uint32_t>(start + bit));
        }
        std::memset(row.bytes, 0, row.size);
        row.bytes[0] = u::kReferenceMap;
    }
    for (const std::uint32_t page : pages) setReferenceBit(statement, pointer, page, true);
}

// Moves the window of an inline map to begin at or just below the lowest of
// its pages and `page`; false (map unchanged) when the window cannot then
// hold them all.
bool moveWindow(const MapRow& row, std::uint32_t page) {
    const std::uint32_t start = u32At(row.bytes + 1);
    const std::uint64_t bits = (row.size - 5) * 8;
    std::vector<std::uint32_t> pages{page};
    for (std::uint64_t bit = 0; bit < bits; ++bit) {
        if (getBit(row.bytes + 5, bit)) pages.push_back(static_cast<std::uint32_t>(start + bit));
    }
    const auto [lowest, highest] = std::minmax_element(pages.begin(), pages.end());
    const std::uint32_t newStart = *lowest & ~7u;
    if (*highest - newStart >= bits) return false;
    std::memset(row.bytes + 5, 0, row.size - 5);
    putU32(row.bytes + 1, newStart);
    for (const std::uint32_t marked : pages) setBit(row.bytes + 5, marked - newStart, true);
    return true;
}

void changeUsageMap(WriteStatement& statement, std::uint32_t pointer, std::uint32_t page, bool on) {
    const MapRow row = mapRow(statement, pointer);
    if (row.bytes[0] == u::kInlineMap) {
        const std::uint32_t start = u32At(row.bytes + 1);
        const std::uint64_t bits = (row.size - 5) * 8;
        if (page >= start && page - start < bits) {
            setBit(row.bytes + 5, page - start, on);
            return;
        }
        if (!on) return;  // a page outside the window is not in the map
        if (moveWindow(row, page)) return;
        convertToReference(statement, pointer);
    } else if (row.bytes[0] != u::kReferenceMap) {
        throw Error(mapName(pointer) + " is of unknown kind " + std::to_string(row.bytes[0]));
    }
    setReferenceBit(statement, pointer, page, on);
}

}  // namespace

void addToUsageMap(WriteStatement& statement, std::uint32_t pointer, std::uint32_t page) {
    changeUsageMap(statement, pointer, page, true);
}

void removeFromUsageMap(WriteStatement& statement, std::uint32_t pointer, std::uint32_t page) {
    changeUsageMap(statement, pointer, page, false);
}

std::uint32_t allocatePage(WriteStatement& statement, std::uint32_t after) {
    const std::uint32_t reused = lowestFreePage(statement, after);
    if (reused == 0) return appendPage(statement);
    setFree(statement, reused, false);
    statement.change(reused).fill(0);
    return reused;
}

void releasePage(WriteStatement& statement, std::uint32_t page) {
    if (page < kFirstFreeablePage || page >= statement.pageCount()) {
        throw Error("page " + std::to_string(page) + " cannot be freed");
    }
    statement.change(page).fill(0);
    setFree(statement, page, true);
}

}  // namespace jet
