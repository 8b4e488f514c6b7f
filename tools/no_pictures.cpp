#include "tools/picture_writer.h"

namespace demo {

// The engine-only build has no Qt to draw with: the rows name their
// photographs all the same, and none is there.
bool writePictures(const std::filesystem::path& /*folder*/,
                   const std::vector<Portrait>& /*portraits*/) {
    return false;
}

std::shared_ptr<void> startPictures(int& /*argc*/, char** /*argv*/) {
    return nullptr;
}

}  // namespace demo
