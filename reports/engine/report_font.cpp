#include "reports/engine/report_font.h"

#include <QFontDatabase>

namespace engine {
namespace {

// Where the system's setup puts Tahoma (Debian's fonts-wine); fontconfig
// does not look there, so the program adds the files itself.
constexpr const char* kTahomaFiles[] = {
    "/usr/share/wine/fonts/tahoma.ttf",
    "/usr/share/wine/fonts/tahomabd.ttf",
};

// The family the report's text is set in; the first call makes sure the
// font database has it.
QString tahoma() {
    static const QString family = QStringLiteral("Tahoma");
    static const bool registered = [] {
        if (!QFontDatabase::hasFamily(family)) {
            for (const char* file : kTahomaFiles)
                QFontDatabase::addApplicationFont(QString::fromLatin1(file));
        }
        return true;
    }();
    (void)registered;
    return family;
}

// Text is laid out in twips and drawn at many scales; hinting would snap
// the glyphs to each device's grid and let a line wrap differently on
// screen and on paper.
QFont unhinted(QFont font) {
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

}  // namespace

QFont reportFont(const TextStyle& style) {
    QFont font(tahoma());
    font.setPointSizeF(style.pointSize);
    font.setBold(style.bold);
    return unhinted(font);
}

QFont barcodeFont() {
    QFont font(QStringLiteral("Arial"));
    font.setPointSizeF(8);
    return unhinted(font);
}

}  // namespace engine
