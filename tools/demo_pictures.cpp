#include "tools/demo_pictures.h"

#include <memory>
#include <stdexcept>

#include <QFont>
#include <QGuiApplication>
#include <QImageWriter>
#include <QPainter>
#include <QPainterPath>
#include <QString>

#include "tools/picture_writer.h"

namespace demo {
namespace {

constexpr int kJpegQuality = 85;
const QColor kSchoolBlue(28, 58, 110);
const QColor kSchoolGold(212, 168, 58);

QFont boldFont(int pixelSize) {
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setBold(true);
    font.setPixelSize(pixelSize);
    return font;
}

QString initials(const Portrait& person) {
    const QString name = QString::fromStdU16String(person.name);
    const QString surname = QString::fromStdU16String(person.surname);
    return QString(name.left(1) + surname.left(1)).toUpper();
}

void save(const QImage& image, const std::filesystem::path& path) {
    const QString name = QString::fromStdU16String(path.u16string());
    QImageWriter writer(name, "jpeg");
    writer.setQuality(kJpegQuality);
    if (!writer.write(image)) {
        throw std::runtime_error(
            (name + QStringLiteral(": ") + writer.errorString()).toStdString());
    }
}

}  // namespace

QImage portrait(const Portrait& person) {
    constexpr int kWidth = 240;
    constexpr int kHeight = 320;
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    // Hues a golden-ratio step apart, so neighbours in a class look different.
    const int hue = (person.number * 137) % 360;
    image.fill(QColor::fromHsv(hue, 60, 235));

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromHsv(hue, 90, 90));
    QPainterPath shoulders;
    shoulders.addRoundedRect(QRectF(25, 215, 190, 200), 80, 80);
    painter.drawPath(shoulders);
    painter.drawRect(QRectF(98, 170, 44, 60));      // neck
    painter.drawEllipse(QRectF(70, 60, 100, 125));  // head

    painter.setPen(QColor::fromHsv(hue, 30, 250));
    painter.setFont(boldFont(40));
    painter.drawText(QRect(25, 240, 190, 70), Qt::AlignCenter, initials(person));
    return image;
}

QImage identityCardBackground() {
    constexpr int kWidth = 1000;
    constexpr int kHeight = 600;
    constexpr int kBand = 110;
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    image.fill(QColor(247, 245, 238));

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(0, 0, kWidth, kBand, kSchoolBlue);
    painter.fillRect(0, kBand, kWidth, 8, kSchoolGold);
    painter.fillRect(0, kHeight - 24, kWidth, 24, kSchoolBlue);
    painter.setPen(Qt::white);
    painter.setFont(boldFont(46));
    painter.drawText(QRect(0, 0, kWidth, kBand), Qt::AlignCenter,
                     QStringLiteral("ÖĞRENCİ KİMLİK KARTI"));
    return image;
}

QImage schoolLogo() {
    constexpr int kSize = 256;
    QImage image(kSize, kSize, QImage::Format_RGB32);
    image.fill(Qt::white);

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kSchoolGold, 14));
    painter.setBrush(kSchoolBlue);
    painter.drawEllipse(QRectF(12, 12, kSize - 24, kSize - 24));
    painter.setPen(Qt::white);
    painter.setFont(boldFont(64));
    painter.drawText(QRect(0, 0, kSize, kSize), Qt::AlignCenter, QStringLiteral("OKUL"));
    return image;
}

// Drawing text needs a GUI application, but no screen.
std::shared_ptr<void> startPictures(int& argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    return std::make_shared<QGuiApplication>(argc, argv);
}

bool writePictures(const std::filesystem::path& folder, const std::vector<Portrait>& portraits) {
    for (const Portrait& person : portraits) {
        const std::filesystem::path path(person.path);
        std::filesystem::create_directories(path.parent_path());
        save(portrait(person), path);
    }
    save(identityCardBackground(), folder / "GunduzluKimlik.jpg");
    save(schoolLogo(), folder / "logo.jpg");
    return true;
}

}  // namespace demo
