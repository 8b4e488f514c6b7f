// Damaged, foreign and hostile files: each must end in a jet::Error that says
// what was found, never in a crash, a hang or a read outside a buffer (the
// sanitizer build runs these too).

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/database.h"
#include "store/jet/error.h"
#include "store/jet/format.h"
#include "tests/store/jet/read_everything.h"
#include "tests/store/jet/test_files.h"

namespace jet {
namespace {

using testing::readEverything;
using testing::readFileBytes;
using testing::TempDir;
using testing::writeFileBytes;

using Bytes = std::vector<unsigned char>;

// The message of the error that opening and reading the file gives; empty
// when it reads without one.
std::string errorOf(const std::filesystem::path& path) {
    try {
        readEverything(path.string());
    } catch (const Error& error) {
        return error.what();
    }
    return "";
}

std::string errorOf(const TempDir& dir, const Bytes& bytes) {
    const auto path = dir.path() / "probe.mdb";
    writeFileBytes(path, bytes);
    return errorOf(path);
}

TEST(Robustness, ForeignFilesAreRefusedByName) {
    TempDir dir;
    EXPECT_NE(errorOf(dir, {}).find("the file is empty"), std::string::npos);
    EXPECT_NE(errorOf(dir, Bytes(2 * format::kPageSize, 0)).find("is not an Access database"),
              std::string::npos);
    const std::string text = "Adı;Soyadı\nAyşe;Yılmaz\n";
    EXPECT_NE(errorOf(dir, Bytes(text.begin(), text.end())).find("is not an Access database"),
              std::string::npos);
    EXPECT_NE(errorOf(dir.path() / "missing.mdb").size(), 0u);

    // A Jet 4 header with another version byte or the ACE name.
    Bytes header(2 * format::kPageSize, 0);
    header[1] = 0x01;
    const std::string jetName = "Standard Jet DB";
    std::copy(jetName.begin(), jetName.end(), header.begin() + format::header::kFormatNameOffset);
    header[format::header::kVersionOffset] = format::kVersionJet3;
    EXPECT_NE(errorOf(dir, header).find("Jet 3 database (Access 97)"), std::string::npos);
    const std::string aceName = "Standard ACE DB";
    std::copy(aceName.begin(), aceName.end(), header.begin() + format::header::kFormatNameOffset);
    header[format::header::kVersionOffset] = 0x03;
    EXPECT_NE(errorOf(dir, header).find("ACE database"), std::string::npos);
}

TEST(Robustness, TruncatedFilesGiveErrors) {
    SKIP_WITHOUT_FIXTURES();
    TempDir dir;
    const Bytes whole = readFileBytes(testing::fixturesDir() / "access" / "testV2000.mdb");
    EXPECT_NE(errorOf(dir, Bytes(whole.begin(), whole.begin() + 1000)).find("cut short"),
              std::string::npos);
    // Cut at page boundaries and in the middle of pages: an error or, when
    // all that is read lies before the cut, a good read.
    for (std::size_t length = format::kPageSize; length < whole.size(); length += 1531) {
        errorOf(dir, Bytes(whole.begin(), whole.begin() + static_cast<long>(length)));
    }
}

TEST(Robustness, LoopingDefinitionChainIsAnError) {
    SKIP_WITHOUT_FIXTURES();
    TempDir dir;
    const auto path = dir.path() / "loop.mdb";
    std::filesystem::copy_file(testing::fixturesDir() / "access" / "testV2000.mdb", path);
    std::uint32_t definitionPage = 0;
    {
        const Database database(path.string());
        for (const CatalogEntry& entry : database.catalog()) {
            if (entry.isUserTable()) definitionPage = entry.definitionPage();
        }
    }
    ASSERT_NE(definitionPage, 0u);
    Bytes bytes = readFileBytes(path);
    const std::size_t next = definitionPage * format::kPageSize + format::tdef::kNextPageOffset;
    for (int i = 0; i < 4; ++i) bytes[next + i] = static_cast<unsigned char>(definitionPage >> (8 * i));
    writeFileBytes(path, bytes);
    const Database database(path.string());
    for (const CatalogEntry& entry : database.catalog()) {
        if (entry.isUserTable() && entry.definitionPage() == definitionPage) {
            EXPECT_THROW(database.table(entry.name), Error);
        }
    }
}

// Every fixture, damaged many times over in the ways a disk or a hostile
// sender would: bytes overwritten at random, page pointers aimed beyond the
// end, whole pages zeroed.
TEST(Robustness, DamagedFixturesNeverCrash) {
    SKIP_WITHOUT_FIXTURES();
    TempDir dir;
    std::mt19937 random(20261123);
    for (const auto& file : testing::fixtureDatabases()) {
        const Bytes original = readFileBytes(file);
        const std::size_t pages = original.size() / format::kPageSize;
        for (int variant = 0; variant < 30; ++variant) {
            Bytes damaged = original;
            const int edits = 1 + static_cast<int>(random() % 40);
            for (int e = 0; e < edits; ++e) {
                // Skip the header page: damage there only gives "not a database".
                const std::size_t page = 1 + random() % (pages - 1);
                const std::size_t offset = page * format::kPageSize + random() % format::kPageSize;
                switch (random() % 3) {
                    case 0:
                        damaged[offset] = static_cast<unsigned char>(random());
                        break;
                    case 1:
                        for (std::size_t i = 0; i < 4 && offset + i < damaged.size(); ++i)
                            damaged[offset + i] = 0xff;
                        break;
                    default:
                        std::fill_n(damaged.begin() + static_cast<long>(page * format::kPageSize),
                                    format::kPageSize, 0);
                        break;
                }
            }
            errorOf(dir, damaged);
        }
    }
}

// Inputs the fuzzer once found faults with stay fixed.
TEST(Robustness, FuzzRegressions) {
    const std::filesystem::path regressions = FUZZ_REGRESSIONS_DIR;
    if (!std::filesystem::exists(regressions)) GTEST_SKIP() << "no fuzz regressions folder";
    for (const auto& entry : std::filesystem::directory_iterator(regressions)) {
        if (entry.path().filename() == "README.md") continue;
        SCOPED_TRACE(entry.path().string());
        errorOf(entry.path());
    }
}

}  // namespace
}  // namespace jet
