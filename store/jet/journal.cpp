#include "journal.h"

#include <cstring>
#include <filesystem>
#include <vector>

#include "bytes.h"
#include "error.h"
#include "os_file.h"

namespace jet {
namespace {

// Layout: magic, page count of the file before the statement, number of
// records, then per record the page number, its old contents and a checksum
// of both; the whole journal ends with the magic again, written last.
constexpr char kMagic[8] = {'J', 'E', 'T', 'J', 'R', 'N', 'L', '1'};
constexpr std::size_t kHeaderSize = 8 + 4 + 4;
constexpr std::size_t kRecordSize = 4 + format::kPageSize + 4;

std::uint32_t checksum(std::uint32_t page, const std::uint8_t* data, std::size_t size) {
    // FNV-1a: enough to tell a torn record from a whole one.
    std::uint32_t hash = 2166136261u ^ page;
    for (std::size_t i = 0; i < size; ++i) {
        hash = (hash ^ data[i]) * 16777619u;
    }
    return hash;
}

void putU32(std::vector<std::uint8_t>& out, std::uint32_t value) {
    for (int i = 0; i < 4; ++i)
        out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

void syncDirectoryOf(const std::string& path) {
    os::syncFolder(os::utf8Text(os::utf8Path(path).parent_path()));
}

std::vector<std::uint8_t> readWhole(const std::string& path) {
    std::vector<std::uint8_t> bytes;
    const os::File file = os::File::open(path, os::File::Mode::Read);
    if (!file.isOpen())
        return bytes;
    std::uint8_t buffer[1 << 16];
    std::int64_t got = 0;
    while ((got = file.readAt(buffer, sizeof buffer, bytes.size())) > 0) {
        bytes.insert(bytes.end(), buffer, buffer + got);
    }
    return bytes;
}

}  // namespace

std::string RollbackJournal::journalPath(const std::string& databasePath) {
    return databasePath + "-journal";
}

void RollbackJournal::write(const std::string& databasePath, std::uint32_t originalPageCount,
                            const std::map<std::uint32_t, Page>& originals) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(kHeaderSize + originals.size() * kRecordSize + sizeof kMagic);
    bytes.insert(bytes.end(), kMagic, kMagic + sizeof kMagic);
    putU32(bytes, originalPageCount);
    putU32(bytes, static_cast<std::uint32_t>(originals.size()));
    for (const auto& [number, page] : originals) {
        putU32(bytes, number);
        bytes.insert(bytes.end(), page.begin(), page.end());
        putU32(bytes, checksum(number, page.data(), page.size()));
    }
    bytes.insert(bytes.end(), kMagic, kMagic + sizeof kMagic);

    const std::string path = journalPath(databasePath);
    os::File file = os::File::open(path, os::File::Mode::Replace);
    if (!file.isOpen())
        throw Error("cannot create the journal " + path + ": " + os::lastError());
    std::size_t done = 0;
    // Written in page-sized pieces, each a point where a crash can strike.
    while (done < bytes.size()) {
        crashPoint();
        const std::size_t piece = std::min(bytes.size() - done, format::kPageSize);
        const std::int64_t put = file.writeAt(bytes.data() + done, piece, done);
        if (put < 0)
            throw Error("cannot write the journal " + path + ": " + os::lastError());
        done += static_cast<std::size_t>(put);
    }
    const bool flushed = file.sync();
    file.close();
    if (!flushed)
        throw Error("cannot flush the journal " + path + " to disk");
    syncDirectoryOf(path);
}

void RollbackJournal::remove(const std::string& databasePath) {
    crashPoint();
    const std::string path = journalPath(databasePath);
    if (!os::removeFile(path)) {
        throw Error("cannot remove the journal " + path + ": " + os::lastError());
    }
    syncDirectoryOf(path);
}

bool RollbackJournal::rollBack(PageFile& file) {
    const std::string path = journalPath(file.path());
    if (!std::filesystem::exists(os::utf8Path(path)))
        return false;
    const std::vector<std::uint8_t> bytes = readWhole(path);
    const ByteView journal(bytes.data(), bytes.size());
    const bool whole =
        journal.size() >= kHeaderSize + sizeof kMagic &&
        std::memcmp(journal.data(), kMagic, sizeof kMagic) == 0 &&
        journal.size() == kHeaderSize + journal.u32(12) * static_cast<std::uint64_t>(kRecordSize) +
                              sizeof kMagic &&
        std::memcmp(journal.data() + journal.size() - sizeof kMagic, kMagic, sizeof kMagic) == 0;
    if (whole) {
        const std::uint32_t originalPageCount = journal.u32(8);
        const std::uint32_t records = journal.u32(12);
        Page page{};
        for (std::uint32_t i = 0; i < records; ++i) {
            const std::size_t at = kHeaderSize + i * kRecordSize;
            const std::uint32_t number = journal.u32(at);
            std::memcpy(page.data(), journal.data() + at + 4, page.size());
            if (checksum(number, page.data(), page.size()) != journal.u32(at + 4 + page.size())) {
                throw Error("the journal " + path + " is damaged (record " + std::to_string(i) +
                            "); it is kept for inspection and the database is left as it is");
            }
            file.write(number, page);
        }
        file.truncate(originalPageCount);
        file.sync();
    }
    // A journal that is not whole was cut short before any page changed.
    remove(file.path());
    return whole;
}

}  // namespace jet
