#include "store/jet/header.h"

#include <gtest/gtest.h>

#include "store/jet/database.h"
#include "store/jet/format.h"
#include "store/jet/text.h"
#include "tests/store/jet/test_files.h"

namespace jet {
namespace {

TEST(Header, PasswordsCodePageAndSortOrder) {
    SKIP_WITHOUT_FIXTURES();
    const auto dir = testing::fixturesDir();
    EXPECT_EQ(toUtf8(Database((dir / "kvl" / "kvl.mdb").string()).header().password),
              "HtRvZpQsD2019");
    EXPECT_EQ(toUtf8(Database((dir / "kvl" / "yurtsayim" / "kvl.mdb").string()).header().password),
              "HtRvZpSw2019");
    for (const auto& file : testing::fixtureDatabases()) {
        if (file.parent_path().filename() != "access") continue;
        const DatabaseHeader header = Database(file.string()).header();
        EXPECT_TRUE(header.password.empty()) << file;
        EXPECT_EQ(header.version, format::kVersionJet4) << file;
        EXPECT_EQ(header.codePage, 1252) << file;
        EXPECT_EQ(header.sortOrder, format::kSortGeneral) << file;
        EXPECT_EQ(header.encodingKey, 0u) << file;
    }
    // blankAccess2000.mdb was made by Access on 2004-06-05.
    const DatabaseHeader blank =
        Database((dir / "access" / "blankAccess2000.mdb").string()).header();
    const CivilDateTime created = blank.created.toCivil();
    EXPECT_EQ(created.year, 2004);
    EXPECT_EQ(created.month, 6);
    EXPECT_EQ(created.day, 5);
}

}  // namespace
}  // namespace jet
