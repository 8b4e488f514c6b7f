#pragma once

#include <QByteArray>

namespace resources {

// The sample menu workbook that the program writes out as YEMEK_MENUSU.XLS:
// an Excel 97 file whose first sheet holds a made-up April, four rows a day.
// Made by tools/make_sample_workbook.pl.
QByteArray sampleWorkbook();

}  // namespace resources
