#include "rosters/photo_preview.h"

#include <QPixmap>

#include "shell/kit/failure_modes.h"
#include "store/data_error.h"

namespace rosters {

void showPhotograph(QLabel* image, kit::DataControl& roster) {
    // Each step is passed over when it fails.
    kit::skip([&] { image->clear(); });
    kit::skip([&] {
        const jet::Value path = roster.Recordset().field(u"resim");
        if (path.kind() != jet::Value::Kind::Text)
            throw store::DataError("invalid use of Null");
        QString file = QString::fromStdU16String(path.asText());
        file.replace(u'\\', u'/');
        QPixmap picture;
        if (!picture.load(file))
            throw store::DataError("the picture cannot be loaded");
        image->setPixmap(picture);
    });
    kit::skip([&] { image->update(); });
}

}  // namespace rosters
