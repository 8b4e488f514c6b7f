#include "compound_file.h"

#include <algorithm>
#include <cstring>

#include "store/workbook/workbook_error.h"

namespace workbook {
namespace {

constexpr std::uint8_t kSignature[8] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
constexpr std::uint32_t kEndOfChain = 0xFFFFFFFE;
constexpr std::uint32_t kNoStream = 0xFFFFFFFF;
constexpr std::size_t kHeaderDifatEntries = 109;
constexpr std::size_t kEntrySize = 128;

[[noreturn]] void damaged(const std::string& what) {
    throw WorkbookError(WorkbookError::Kind::Damaged,
                        "the workbook's compound file is damaged: " + what);
}

std::uint16_t u16(const std::uint8_t* p) {
    return static_cast<std::uint16_t>(p[0] | p[1] << 8);
}
std::uint32_t u32(const std::uint8_t* p) {
    return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
           static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}
std::uint64_t u64(const std::uint8_t* p) {
    return static_cast<std::uint64_t>(u32(p)) | static_cast<std::uint64_t>(u32(p + 4)) << 32;
}

char16_t asciiUpper(char16_t c) {
    return c >= u'a' && c <= u'z' ? c - 32 : c;
}

bool sameEntryName(std::u16string_view a, std::u16string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](auto x, auto y) {
               return asciiUpper(x) == asciiUpper(y);
           });
}

}  // namespace

CompoundFile::CompoundFile(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {
    if (bytes_.size() >= 2 && bytes_[0] == 'P' && bytes_[1] == 'K') {
        throw WorkbookError(WorkbookError::Kind::NewerFormat,
                            "the file is a ZIP package (an Excel 2007 or later workbook), "
                            "not an Excel 97-2003 workbook");
    }
    if (bytes_.size() < sizeof kSignature ||
        std::memcmp(bytes_.data(), kSignature, sizeof kSignature) != 0) {
        throw WorkbookError(WorkbookError::Kind::NotAWorkbook,
                            "the file is not an Excel workbook (no compound file signature)");
    }
    if (bytes_.size() < 512)
        damaged("the header is cut short");
    const std::uint8_t* header = bytes_.data();
    if (u16(header + 0x1C) != 0xFFFE)
        damaged("the byte order mark is wrong");
    sectorShift_ = u16(header + 0x1E);
    miniSectorShift_ = u16(header + 0x20);
    if (sectorShift_ != 9 && sectorShift_ != 12)
        damaged("a sector size other than 512 or 4096");
    if (miniSectorShift_ != 6)
        damaged("a mini sector size other than 64");
    miniCutoff_ = u32(header + 0x38);
    if (miniCutoff_ != 4096)
        damaged("a mini stream cutoff other than 4096");
    readFat();
    readDirectory();
    readMiniStream();
}

std::uint32_t CompoundFile::sectorCount() const {
    const std::size_t sectorSize = std::size_t{1} << sectorShift_;
    if (bytes_.size() <= sectorSize)
        return 0;
    // A last sector cut short is read as if padded with zeros.
    return static_cast<std::uint32_t>((bytes_.size() - sectorSize + sectorSize - 1) / sectorSize);
}

std::vector<std::uint32_t> CompoundFile::chain(const std::vector<std::uint32_t>& table,
                                               std::uint32_t first, std::size_t needed, bool exact,
                                               const char* what) const {
    // `needed` bounds the walk: a chain that loops runs into it.
    std::vector<std::uint32_t> sectors;
    std::uint32_t sector = first;
    while (sectors.size() < needed) {
        if (sector == kEndOfChain) {
            if (exact)
                damaged(std::string("the chain of ") + what + " ends early");
            return sectors;
        }
        if (sector >= table.size()) {
            damaged(std::string("the chain of ") + what + " points outside the file");
        }
        sectors.push_back(sector);
        sector = table[sector];
    }
    if (!exact && sector != kEndOfChain) {
        damaged(std::string("the chain of ") + what + " loops or runs past the file");
    }
    return sectors;
}

std::vector<std::uint8_t> CompoundFile::readChain(const std::vector<std::uint32_t>& sectors,
                                                  std::uint64_t size) const {
    const std::size_t sectorSize = std::size_t{1} << sectorShift_;
    std::vector<std::uint8_t> out(static_cast<std::size_t>(size));
    std::size_t written = 0;
    for (const std::uint32_t sector : sectors) {
        if (sector >= sectorCount())
            damaged("a sector past the end of the file");
        const std::size_t offset = (static_cast<std::size_t>(sector) + 1) << sectorShift_;
        const std::size_t wanted = std::min(sectorSize, out.size() - written);
        const std::size_t available = std::min(wanted, bytes_.size() - offset);
        std::memcpy(out.data() + written, bytes_.data() + offset, available);
        written += wanted;
        if (written == out.size())
            break;
    }
    return out;
}

void CompoundFile::readFat() {
    const std::uint8_t* header = bytes_.data();
    const std::uint32_t fatSectors = u32(header + 0x2C);
    const std::uint32_t difatSectors = u32(header + 0x48);
    const std::uint32_t sectors = sectorCount();
    if (fatSectors > sectors || difatSectors > sectors)
        damaged("more FAT sectors than the file has");
    std::vector<std::uint32_t> fatSectorList;
    for (std::size_t i = 0; i < kHeaderDifatEntries && fatSectorList.size() < fatSectors; ++i) {
        fatSectorList.push_back(u32(header + 0x4C + 4 * i));
    }
    const std::size_t perSector = (std::size_t{1} << sectorShift_) / 4;
    std::uint32_t difat = u32(header + 0x44);
    for (std::uint32_t k = 0; k < difatSectors && fatSectorList.size() < fatSectors; ++k) {
        if (difat >= sectors)
            damaged("a DIFAT sector past the end of the file");
        const std::vector<std::uint8_t> sector = readChain({difat}, perSector * 4);
        for (std::size_t i = 0; i + 1 < perSector && fatSectorList.size() < fatSectors; ++i) {
            fatSectorList.push_back(u32(sector.data() + 4 * i));
        }
        difat = u32(sector.data() + 4 * (perSector - 1));
    }
    if (fatSectorList.size() < fatSectors)
        damaged("the DIFAT lists too few FAT sectors");
    const std::vector<std::uint8_t> fatBytes =
        readChain(fatSectorList, fatSectorList.size() * perSector * 4);
    fat_.resize(fatBytes.size() / 4);
    for (std::size_t i = 0; i < fat_.size(); ++i)
        fat_[i] = u32(fatBytes.data() + 4 * i);
}

void CompoundFile::readDirectory() {
    const std::uint32_t first = u32(bytes_.data() + 0x30);
    const std::vector<std::uint32_t> sectors = chain(
        fat_, first, std::min<std::size_t>(fat_.size(), sectorCount()) + 1, false, "the directory");
    const std::vector<std::uint8_t> directory = readChain(sectors, sectors.size() << sectorShift_);
    for (std::size_t offset = 0; offset + kEntrySize <= directory.size(); offset += kEntrySize) {
        const std::uint8_t* p = directory.data() + offset;
        Entry entry;
        const std::size_t nameBytes = std::min<std::size_t>(u16(p + 64), 64);
        for (std::size_t i = 0; i + 1 < nameBytes; i += 2) {
            const char16_t c = u16(p + i);
            if (c == 0)
                break;
            entry.name.push_back(c);
        }
        entry.type = p[66];
        entry.left = u32(p + 68);
        entry.right = u32(p + 72);
        entry.child = u32(p + 76);
        entry.start = u32(p + 116);
        // Version 3 files leave the high half of the size undefined.
        entry.size = sectorShift_ == 9 ? u32(p + 120) : u64(p + 120);
        entries_.push_back(std::move(entry));
    }
    if (entries_.empty() || entries_[0].type != 5)
        damaged("the directory has no root entry");
}

void CompoundFile::readMiniStream() {
    const Entry& root = entries_[0];
    const std::size_t sectorSize = std::size_t{1} << sectorShift_;
    if (root.size > bytes_.size())
        damaged("the mini stream is larger than the file");
    if (root.size > 0) {
        const std::size_t needed = (root.size + sectorSize - 1) / sectorSize;
        miniStream_ =
            readChain(chain(fat_, root.start, needed, true, "the mini stream"), root.size);
    }
    const std::uint32_t firstMiniFat = u32(bytes_.data() + 0x3C);
    if (firstMiniFat == kEndOfChain || firstMiniFat == kNoStream)
        return;
    const std::vector<std::uint32_t> sectors =
        chain(fat_, firstMiniFat, std::min<std::size_t>(fat_.size(), sectorCount()) + 1, false,
              "the mini FAT");
    const std::vector<std::uint8_t> miniFatBytes =
        readChain(sectors, sectors.size() << sectorShift_);
    miniFat_.resize(miniFatBytes.size() / 4);
    for (std::size_t i = 0; i < miniFat_.size(); ++i)
        miniFat_[i] = u32(miniFatBytes.data() + 4 * i);
}

const CompoundFile::Entry* CompoundFile::find(std::u16string_view name) const {
    // The root's children form a tree through left and right; a visited mark
    // keeps a damaged tree from looping.
    std::vector<bool> visited(entries_.size());
    std::vector<std::uint32_t> pending = {entries_[0].child};
    while (!pending.empty()) {
        const std::uint32_t index = pending.back();
        pending.pop_back();
        if (index >= entries_.size() || visited[index])
            continue;
        visited[index] = true;
        const Entry& entry = entries_[index];
        if (entry.type == 2 && sameEntryName(entry.name, name))
            return &entry;
        pending.push_back(entry.left);
        pending.push_back(entry.right);
    }
    return nullptr;
}

bool CompoundFile::hasStream(std::u16string_view name) const {
    return find(name) != nullptr;
}

std::vector<std::uint8_t> CompoundFile::stream(std::u16string_view name) const {
    const Entry* entry = find(name);
    if (entry == nullptr)
        damaged("a stream is missing");
    if (entry->size > bytes_.size())
        damaged("a stream is larger than the file");
    if (entry->size < miniCutoff_) {
        const std::size_t miniSize = std::size_t{1} << miniSectorShift_;
        const std::size_t needed = (entry->size + miniSize - 1) / miniSize;
        const std::vector<std::uint32_t> sectors =
            chain(miniFat_, entry->start, needed, true, "a small stream");
        std::vector<std::uint8_t> out(static_cast<std::size_t>(entry->size));
        std::size_t written = 0;
        for (const std::uint32_t sector : sectors) {
            const std::size_t offset = static_cast<std::size_t>(sector) << miniSectorShift_;
            const std::size_t wanted = std::min(miniSize, out.size() - written);
            if (offset + wanted > miniStream_.size())
                damaged("a mini sector past the mini stream");
            std::memcpy(out.data() + written, miniStream_.data() + offset, wanted);
            written += wanted;
        }
        return out;
    }
    const std::size_t sectorSize = std::size_t{1} << sectorShift_;
    const std::size_t needed = (entry->size + sectorSize - 1) / sectorSize;
    return readChain(chain(fat_, entry->start, needed, true, "a stream"), entry->size);
}

}  // namespace workbook
