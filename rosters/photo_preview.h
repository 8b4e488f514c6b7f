#pragma once

#include <QLabel>

#include "shell/kit/data_control.h"

namespace rosters {

// The preview of a roster's current row: the picture file its "resim"
// field names, stretched over the image. The path is used as stored, with
// backslashes taken as folder separators; a missing file, an empty or Null
// path or a file that is no picture leave the image empty and say nothing.
void showPhotograph(QLabel* image, kit::DataControl& roster);

}  // namespace rosters
