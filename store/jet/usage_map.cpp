#include "usage_map.h"

#include <string>

#include "data_page.h"
#include "error.h"
#include "format.h"
#include "page_file.h"

namespace jet {
namespace {

namespace u = format::usage;

// Pages past the end of the file: an error in a table's map; in the map of
// free pages, which covers a window wider than the file, they are left out.
enum class BeyondEnd { Damage, Skip };

void collectBits(ByteView bitmap, std::uint64_t firstPage, std::uint32_t pageCount,
                 std::uint32_t mapPointer, BeyondEnd beyondEnd, std::vector<std::uint32_t>& pages) {
    for (std::size_t byte = 0; byte < bitmap.size(); ++byte) {
        const std::uint8_t bits = bitmap.u8(byte);
        if (bits == 0) continue;
        for (int bit = 0; bit < 8; ++bit) {
            if ((bits & (1u << bit)) == 0) continue;
            const std::uint64_t page = firstPage + byte * 8 + static_cast<unsigned>(bit);
            if (page >= pageCount) {
                if (beyondEnd == BeyondEnd::Skip) return;
                throw Error("the usage map in row " + std::to_string(pointerRow(mapPointer)) +
                            " of page " + std::to_string(pointerPage(mapPointer)) +
                            " names page " + std::to_string(page) + ", beyond the end of the " +
                            "file (" + std::to_string(pageCount) + " pages)");
            }
            pages.push_back(static_cast<std::uint32_t>(page));
        }
    }
}

std::vector<std::uint32_t> readMap(const PageSource& file, std::uint32_t pointer, BeyondEnd beyondEnd) {
    const std::uint32_t pageCount = file.pageCount();
    Page page{};
    file.read(pointerPage(pointer), page);
    const DataPage mapPage(page, pointerPage(pointer));
    const RowSlot slot = mapPage.slot(pointerRow(pointer));
    const ByteView map = mapPage.rowBytes(slot);
    if (map.empty()) {
        throw Error("the usage map in row " + std::to_string(pointerRow(pointer)) + " of page " +
                    std::to_string(pointerPage(pointer)) + " is empty");
    }

    std::vector<std::uint32_t> pages;
    switch (map.u8(0)) {
        case u::kInlineMap:
            collectBits(map.from(5), map.u32(1), pageCount, pointer, beyondEnd, pages);
            break;
        case u::kReferenceMap: {
            Page bitmapPage{};
            for (std::size_t k = 0; 1 + 4 * (k + 1) <= map.size(); ++k) {
                const std::uint32_t bitmapPageNumber = map.u32(1 + 4 * k);
                if (bitmapPageNumber == 0) continue;
                // Access ends the free-page map of a larger file with a word
                // that is no page (0xffffff80 seen); only real pages count.
                if (beyondEnd == BeyondEnd::Skip && bitmapPageNumber >= pageCount) continue;
                file.read(bitmapPageNumber, bitmapPage);
                if (bitmapPage[0] != format::kPageUsageMap) {
                    throw Error("page " + std::to_string(bitmapPageNumber) +
                                " should be a usage map page but is of type " +
                                std::to_string(bitmapPage[0]));
                }
                const ByteView bitmap(bitmapPage.data() + u::kMapPageBitmapOffset,
                                      bitmapPage.size() - u::kMapPageBitmapOffset);
                collectBits(bitmap, static_cast<std::uint64_t>(k) * u::kPagesPerMapPage, pageCount,
                            pointer, beyondEnd, pages);
            }
            break;
        }
        default:
            throw Error("the usage map in row " + std::to_string(pointerRow(pointer)) +
                        " of page " + std::to_string(pointerPage(pointer)) +
                        " is of unknown kind " + std::to_string(map.u8(0)));
    }
    return pages;
}

}  // namespace

std::vector<std::uint32_t> readUsageMap(const PageSource& file, std::uint32_t pointer) {
    return readMap(file, pointer, BeyondEnd::Damage);
}

std::vector<std::uint32_t> readFreePages(const PageSource& file) {
    return readMap(file, format::usage::kFreePagesMap, BeyondEnd::Skip);
}

bool isPageFree(const PageSource& file, std::uint32_t page) {
    const auto bitOf = [](ByteView bitmap, std::uint64_t bit) {
        return bit / 8 < bitmap.size() && (bitmap.u8(bit / 8) & (1u << (bit % 8))) != 0;
    };
    Page holder{};
    file.read(pointerPage(u::kFreePagesMap), holder);
    const DataPage mapPage(holder, pointerPage(u::kFreePagesMap));
    const ByteView map = mapPage.rowBytes(mapPage.slot(pointerRow(u::kFreePagesMap)));
    if (map.size() >= 5 && map.u8(0) == u::kInlineMap) {
        const std::uint32_t start = map.u32(1);
        return page >= start && bitOf(map.from(5), page - start);
    }
    const std::size_t slot = page / u::kPagesPerMapPage;
    if (map.empty() || map.u8(0) != u::kReferenceMap || !map.contains(1 + 4 * slot, 4))
        return false;
    const std::uint32_t number = map.u32(1 + 4 * slot);
    if (number == 0 || number >= file.pageCount()) return false;
    Page bitmap{};
    file.read(number, bitmap);
    return bitmap[0] == format::kPageUsageMap &&
           bitOf(ByteView(bitmap.data() + u::kMapPageBitmapOffset,
                          bitmap.size() - u::kMapPageBitmapOffset),
                 page % u::kPagesPerMapPage);
}

}  // namespace jet
