#pragma once

#include <filesystem>

#include <QColor>
#include <QString>

#include "shell/kit/data_grid.h"
#include "tests/reports/report_reading.h"

// What the roster windows' tests share: ORNEK's columns, pictures made on
// disk, the file's integrity after a window's writes, a click on a cell.
namespace rosters::testing {

// ORNEK's columns as mdb-export gives them.
constexpr int kOrnekSno = 0;
constexpr int kOrnekTCKimlikNo = 1;
constexpr int kOrnekAdi = 2;
constexpr int kOrnekSoyadi = 3;
constexpr int kOrnekNumara = 4;
constexpr int kOrnekSinif = 5;
constexpr int kOrnekResim = 19;
constexpr int kOrnekYatililik = 20;

QString pathText(const std::filesystem::path& path);

// A real JPEG of one colour at the path, its folders made.
void writePicture(const std::filesystem::path& path, QColor colour, int width = 60,
                  int height = 80);

// The rows of a class, in the order given.
reports::testing::Rows classRows(const reports::testing::Rows& rows, const QString& sinif);

// The file passes our integrity check.
void expectSound(const std::filesystem::path& database);

// A click on a grid's cell, scrolled into view first, as a user does.
void clickCell(kit::DataGrid* grid, int row, int column);

}  // namespace rosters::testing
