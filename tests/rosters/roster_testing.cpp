#include "tests/rosters/roster_testing.h"

#include <gtest/gtest.h>
#include <QImage>
#include <QTest>

#include "store/jet/database.h"
#include "store/jet/integrity_check.h"

namespace rosters::testing {

QString pathText(const std::filesystem::path& path) {
    return QString::fromStdString(path.string());
}

void writePicture(const std::filesystem::path& path, QColor colour, int width, int height) {
    std::filesystem::create_directories(path.parent_path());
    QImage picture(width, height, QImage::Format_RGB32);
    picture.fill(colour);
    ASSERT_TRUE(picture.save(pathText(path), "JPG")) << path;
}

reports::testing::Rows classRows(const reports::testing::Rows& rows, const QString& sinif) {
    reports::testing::Rows found;
    for (const QStringList& row : rows) {
        if (row.value(kOrnekSinif) == sinif)
            found.push_back(row);
    }
    return found;
}

void expectSound(const std::filesystem::path& database) {
    EXPECT_EQ(jet::checkIntegrity(jet::Database(database.string()).file()),
              std::vector<std::string>{});
}

void clickCell(kit::DataGrid* grid, int row, int column) {
    const QModelIndex cell = grid->model().index(row, column);
    grid->scrollTo(cell);
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(cell).center());
}

}  // namespace rosters::testing
