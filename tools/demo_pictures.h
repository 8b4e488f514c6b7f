#pragma once

#include <filesystem>
#include <vector>

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

// Writes every portrait to its path, and the card background and the logo
// as GunduzluKimlik.jpg and logo.jpg into `folder`. Throws std::runtime_error
// when a file cannot be written.
void writePictures(const std::filesystem::path& folder, const std::vector<Portrait>& portraits);

}  // namespace demo
