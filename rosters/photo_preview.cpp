#include "rosters/photo_preview.h"

#include <QPixmap>

#include "shell/kit/app_path.h"
#include "shell/kit/failure_modes.h"
#include "store/data_error.h"

namespace rosters {

void showPhotograph(QLabel* image, const QString& path) {
    // Each step is passed over when it fails.
    kit::skip([&] { image->clear(); });
    kit::skip([&] {
        QPixmap picture;
        if (!picture.load(kit::localPath(path)))
            throw store::DataError("the picture cannot be loaded");
        image->setPixmap(picture);
    });
    kit::skip([&] { image->update(); });
}

}  // namespace rosters
