#pragma once

#include <QLabel>
#include <QString>

namespace rosters {

// The preview of a roster's current row: the picture file that the row's
// RESIM cell names, stretched over the image. The path is used as stored,
// with backslashes taken as folder separators; a missing file, an empty
// cell or a file that is no picture leave the image empty and say nothing.
void showPhotograph(QLabel* image, const QString& path);

}  // namespace rosters
