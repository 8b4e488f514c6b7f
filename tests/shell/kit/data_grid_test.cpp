// Bound boxes and the data grid over a data control, on a copy of the
// school's menu table: what a user types is written to the row it was read
// from when the record set leaves the row.

#include <sstream>

#include <QKeyEvent>
#include <QTest>

#include "shell/kit/bound_text_box.h"
#include "shell/kit/data_control.h"
#include "shell/kit/data_grid.h"
#include "shell/kit/navigation_bar.h"
#include "tests/shell/window_driver.h"

namespace {

using jet::testing::runCommand;
using jet::testing::shellQuote;
using windows::testing::kvlFixture;
using windows::testing::SchoolFolder;

std::vector<std::string> exportedLines(const std::filesystem::path& file) {
    std::vector<std::string> lines;
    std::istringstream csv(runCommand("mdb-export " + shellQuote(file.string()) + " MENULER"));
    for (std::string line; std::getline(csv, line);)
        lines.push_back(line);
    return lines;
}

class BoundControls : public ::testing::Test {
protected:
    void SetUp() override {
        SKIP_WITHOUT_FIXTURES();
        folder_ = std::make_unique<SchoolFolder>(kvlFixture());
        menus_ = std::make_unique<kit::DataControl>(QStringLiteral("MENULER"),
                                                    QStringLiteral("Program Menü"));
        menus_->Refresh();
    }
    std::unique_ptr<SchoolFolder> folder_;
    std::unique_ptr<kit::DataControl> menus_;
};

TEST_F(BoundControls, GridEditsAddsAndDeletesThroughTheRecordSet) {
    kit::DataGrid grid;
    grid.setDataSource(menus_.get());
    grid.setColumns({{QStringLiteral("AY"),
                      QStringLiteral("ay"),
                      true,
                      900,
                      {{QStringLiteral("11"), QStringLiteral("KASIM")}}},
                     {QStringLiteral("GÜN"), QStringLiteral("gun")},
                     {QStringLiteral("SABAH"), QStringLiteral("sabah")},
                     {QStringLiteral("gizli"), QStringLiteral("oglen"), false}});
    grid.setAllowUpdate(true);
    grid.setAllowAddNew(true);
    grid.allowDelete = true;
    grid.show();
    const std::vector<std::string> before = exportedLines(folder_->database());
    const int rows = static_cast<int>(before.size()) - 1;
    kit::DataGridModel& model = grid.model();
    ASSERT_EQ(model.rowCount(), rows + 1);  // and the asterisk row
    EXPECT_EQ(model.headerData(rows, Qt::Vertical, Qt::DisplayRole).toString(),
              QStringLiteral("*"));
    EXPECT_EQ(model.data(model.index(0, 0), Qt::DisplayRole).toString(), QStringLiteral("KASIM"));
    EXPECT_TRUE(grid.isColumnHidden(3));
    EXPECT_EQ(grid.accessibleName(), QStringLiteral("Program Menü"));

    // An edit waits in the row's buffer until the grid leaves the row.
    grid.setCurrentIndex(model.index(1, 2));
    ASSERT_TRUE(model.setData(model.index(1, 2), QStringLiteral("BAL, KAYMAK"), Qt::EditRole));
    EXPECT_EQ(exportedLines(folder_->database())[2], before[2]);
    grid.setCurrentIndex(model.index(2, 2));
    EXPECT_EQ(exportedLines(folder_->database())[2],
              "11,1,\"BAL, KAYMAK\",\"TAVUK SOTE\",\"ET SOTE\",");

    // A month typed as its shown name is stored as its number; a number
    // that is no number is refused and the row keeps its value.
    ASSERT_TRUE(model.setData(model.index(2, 0), QStringLiteral("KASIM"), Qt::EditRole));
    {
        windows::testing::MessageBoxAnswerer answerer;
        EXPECT_FALSE(model.setData(model.index(2, 1), QStringLiteral("on iki"), Qt::EditRole));
        EXPECT_EQ(answerer.seen.size(), 1);
    }

    // The asterisk row: a new record, written last when the grid leaves it.
    ASSERT_TRUE(model.setData(model.index(rows, 1), QStringLiteral("31"), Qt::EditRole));
    ASSERT_TRUE(model.setData(model.index(rows, 2), QStringLiteral("SİMİT"), Qt::EditRole));
    grid.setCurrentIndex(model.index(0, 1));
    std::vector<std::string> after = exportedLines(folder_->database());
    ASSERT_EQ(after.size(), before.size() + 1);
    EXPECT_EQ(after.back(), ",31,\"SİMİT\",,,");
    EXPECT_EQ(model.rowCount(), rows + 2);

    // The Delete key removes the current record from the file.
    grid.setFocus();
    QTest::keyClick(&grid, Qt::Key_Delete);
    after = exportedLines(folder_->database());
    ASSERT_EQ(after.size(), before.size());
    EXPECT_EQ(after[1], "11,1,\"BAL, KAYMAK\",\"TAVUK SOTE\",\"ET SOTE\",");
    EXPECT_EQ(model.rowCount(), rows + 1);
}

TEST_F(BoundControls, BoundBoxWritesWhenTheRowIsLeftOrTheWindowGoesDown) {
    QWidget window;
    auto* breakfast = new kit::BoundTextBox(&window);
    breakfast->bind(*menus_, QStringLiteral("SABAH"));
    auto* day = new kit::BoundTextBox(&window);
    day->bind(*menus_, QStringLiteral("gun"));
    auto* bar = new kit::NavigationBar(*menus_, &window);
    window.show();
    menus_->setParent(&window);
    EXPECT_EQ(breakfast->text(), QStringLiteral("PEYNİR"));
    EXPECT_EQ(day->text(), QStringLiteral("1"));

    windows::testing::type(breakfast, QStringLiteral(" VE BAL"));
    EXPECT_TRUE(exportedLines(folder_->database())[1].starts_with("11,1,\"PEYNİR\","));
    for (auto* button : bar->findChildren<QToolButton*>()) {
        if (button->accessibleName() == QStringLiteral("Sonraki kayıt"))
            QTest::mouseClick(button, Qt::LeftButton);
    }
    EXPECT_EQ(breakfast->text(), QStringLiteral("ZEYTİN"));
    EXPECT_TRUE(exportedLines(folder_->database())[1].starts_with("11,1,\"PEYNİR VE BAL\","));

    // A pending edit is written when the window goes down.
    windows::testing::type(day, QStringLiteral("5"));
    kit::writePendingEdits(&window);
    EXPECT_EQ(exportedLines(folder_->database())[2].substr(0, 5), "11,15");
    menus_.release();  // owned by the window now
}

}  // namespace
