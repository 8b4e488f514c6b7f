#include "reports/engine/picture.h"

#include <algorithm>

#include <QCache>
#include <QDateTime>
#include <QFileInfo>
#include <QImageReader>

namespace engine {
namespace {

// Photographs are reduced to this many pixels on their long side: a card
// shows them a few centimetres wide, and a page holds every picture it shows.
constexpr int kLongestSide = 2000;

// The last pictures loaded, by absolute path: a background loaded for each
// of hundreds of cards is read once and shared by all of them.
constexpr int kCachedFiles = 64;

struct CachedPicture {
    qint64 size;
    QDateTime modified;
    QImage image;
};

QCache<QString, CachedPicture>& cache() {
    static QCache<QString, CachedPicture> pictures(kCachedFiles);
    return pictures;
}

QImage readPicture(const QString& path) {
    QImageReader reader(path);
    reader.setAutoTransform(true);  // a photograph taken upright shows upright
    const QSize size = reader.size();
    if (size.isValid() && std::max(size.width(), size.height()) > kLongestSide)
        reader.setScaledSize(size.scaled(kLongestSide, kLongestSide, Qt::KeepAspectRatio));
    QImage image = reader.read();
    if (image.isNull())
        throw PictureError(481, "Invalid picture");
    return image;
}

}  // namespace

QImage LoadPicture(const QString& path) {
    if (path.isEmpty())
        return {};
    const QFileInfo file(path);
    if (!file.isFile())
        throw PictureError(53, "File not found");
    const QString key = file.absoluteFilePath();
    const CachedPicture* cached = cache().object(key);
    if (cached != nullptr && cached->size == file.size() && cached->modified == file.lastModified())
        return cached->image;
    QImage image = readPicture(key);
    cache().insert(key, new CachedPicture{file.size(), file.lastModified(), image});
    return image;
}

}  // namespace engine
