#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "tools/demo_school.h"

namespace demo {

// Writes the made-up school's pictures: every portrait to the path its row
// names, and the card background and the logo as GunduzluKimlik.jpg and
// logo.jpg into `folder`. Drawing them needs Qt, so the build links one of
// two forms: demo_pictures.cpp draws them; no_pictures.cpp, for the build
// without Qt (the Windows one), writes nothing. Returns whether the pictures
// were written; throws std::runtime_error when a file cannot be.
bool writePictures(const std::filesystem::path& folder, const std::vector<Portrait>& portraits);

// Readies the drawing: Qt's GUI application, made first and kept by main
// until it returns. Null without Qt.
std::shared_ptr<void> startPictures(int& argc, char** argv);

}  // namespace demo
