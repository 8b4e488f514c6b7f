#pragma once

#include <QImage>

#include "tools/demo_school.h"

namespace demo {

// The pictures of the made-up school, drawn rather than photographed. Each is
// the same on every run. Drawing text needs a QGuiApplication.

// A passport-style portrait: a coloured background picked by the school
// number, a head-and-shoulders silhouette and the person's initials.
QImage portrait(const Portrait& person);

// The background of the day students' identity card, 5:3 landscape.
QImage identityCardBackground();

// The school's logo.
QImage schoolLogo();

// Writing them to files: writePictures() of tools/picture_writer.h.

}  // namespace demo
