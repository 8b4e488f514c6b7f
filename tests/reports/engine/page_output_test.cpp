// Pages painted as a person sees them: written to PDF and read back as
// text, turned into pictures and looked at pixel by pixel.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

#include <QDir>
#include <QFontInfo>
#include <QImage>
#include <QPainter>
#include <QPrinter>
#include <QStringList>

#include <ZXing/ReadBarcode.h>
#include <gtest/gtest.h>

#include "reports/engine/barcode.h"
#include "reports/engine/page_output.h"
#include "reports/engine/page_painter.h"
#include "reports/engine/picture.h"
#include "reports/engine/report_font.h"
#include "tests/store/jet/test_files.h"

namespace engine {
namespace {

using jet::testing::runCommand;
using jet::testing::shellQuote;
using jet::testing::TempDir;

constexpr int kA4Width = 11906;
constexpr int kA4Height = 16838;

TextItem text(Box box, const QString& words, Qt::Alignment alignment = Qt::AlignLeft) {
    TextStyle style;
    style.pointSize = 12;
    style.alignment = alignment | Qt::AlignTop;
    return {box, words, style};
}

std::string pdftotext(const std::filesystem::path& pdf) {
    return runCommand("pdftotext -layout " + shellQuote(pdf.string()) + " -");
}

// A line of pdfinfo's answer, as "Pages: 2", its spaces made single.
QStringList pdfinfo(const std::filesystem::path& pdf) {
    const std::string info = runCommand("pdfinfo -f 1 -l 9 " + shellQuote(pdf.string()));
    QStringList lines;
    for (const QString& line : QString::fromStdString(info).split(QLatin1Char('\n')))
        lines.append(line.simplified());
    return lines;
}

// The PDF's first page as a picture of the given resolution.
QImage rendered(const std::filesystem::path& pdf, int dotsPerInch) {
    const std::filesystem::path png = pdf.parent_path() / "page";
    runCommand("pdftoppm -r " + std::to_string(dotsPerInch) + " -png -singlefile " +
               shellQuote(pdf.string()) + " " + shellQuote(png.string()));
    return QImage(QString::fromStdString(png.string() + ".png"));
}

TEST(PageOutput, PdfPagesKeepTheirTurkishTextSizesAndTitle) {
    EXPECT_EQ(QFontInfo(reportFont(TextStyle{})).family(), QStringLiteral("Tahoma"));
    const Page portrait{kA4Width,
                        kA4Height,
                        {text({1440, 1440, 9000, 400}, "Öğrenci: Işıl Şahin, İğdır çiçek Ünal"),
                         text({1440, 2000, 9000, 800}, "Birinci satır\r\nİkinci satır"),
                         FrameItem{{1440, 3000, 9000, 800}}}};
    Page landscape{15840, 12240, {text({720, 720, 9000, 400}, "YATAY SAYFA", Qt::AlignRight)}};
    const TempDir folder;
    const std::filesystem::path pdf = folder.path() / "liste.pdf";
    ASSERT_EQ(savePdf({portrait, landscape}, QString::fromStdString(pdf.string()),
                      QStringLiteral("Öğrenci kimlik basımı")),
              QString());

    const QStringList info = pdfinfo(pdf);
    for (const char* line :
         {"Title: Öğrenci kimlik basımı", "Pages: 2", "Page 1 size: 595 x 842 pts (A4)",
          "Page 2 size: 792 x 612 pts (letter)"})
        EXPECT_TRUE(info.contains(QString::fromUtf8(line))) << line;
    EXPECT_NE(runCommand("pdffonts " + shellQuote(pdf.string())).find("Tahoma"), std::string::npos);

    const std::string words = pdftotext(pdf);
    EXPECT_NE(words.find("Öğrenci: Işıl Şahin, İğdır çiçek Ünal"), std::string::npos) << words;
    EXPECT_NE(words.find("Birinci satır\n"), std::string::npos) << words;
    EXPECT_NE(words.find("İkinci satır"), std::string::npos) << words;
    EXPECT_LT(words.find("Ünal"), words.find("YATAY SAYFA"));

    // The print dialog's range: only the second page reaches the printer.
    const std::filesystem::path printed = folder.path() / "yazici.pdf";
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(QString::fromStdString(printed.string()));
    printer.setPrintRange(QPrinter::PageRange);
    printer.setFromTo(2, 2);
    ASSERT_EQ(printPages({portrait, landscape}, printer), QString());
    const std::string printedWords = pdftotext(printed);
    EXPECT_NE(printedWords.find("YATAY SAYFA"), std::string::npos) << printedWords;
    EXPECT_EQ(printedWords.find("Ünal"), std::string::npos) << printedWords;
    EXPECT_TRUE(pdfinfo(printed).contains(QStringLiteral("Pages: 1")));
}

TEST(PageOutput, BarcodeReadsBackFromThePrintedPage) {
    EXPECT_TRUE(code128Modules(QString()).empty());
    EXPECT_TRUE(code128Modules(QStringLiteral("Ağ")).empty());
    const QString number = QStringLiteral("12345678901");
    const std::vector<bool> modules = code128Modules(number);
    ASSERT_FALSE(modules.empty());
    EXPECT_TRUE(modules.front());  // quiet zones left out: the first bar starts the symbol
    EXPECT_TRUE(modules.back());

    // The box of the ID card's barcode.
    const Box box{992, 2320, 1984, 283};
    const Page page{kA4Width, kA4Height, {BarcodeItem{box, modules, number}}};
    const TempDir folder;
    const std::filesystem::path pdf = folder.path() / "kimlik.pdf";
    ASSERT_EQ(savePdf({page}, QString::fromStdString(pdf.string()), QString()), QString());
    EXPECT_NE(pdftotext(pdf).find("12345678901"), std::string::npos);

    constexpr int kDotsPerInch = 300;
    const QImage picture = rendered(pdf, kDotsPerInch).convertToFormat(QImage::Format_Grayscale8);
    ASSERT_FALSE(picture.isNull());
    picture.save(QDir::temp().filePath(QStringLiteral("report_paint_barcode.png")));
    const ZXing::Result result =
        ZXing::ReadBarcode({picture.constBits(), picture.width(), picture.height(),
                            ZXing::ImageFormat::Lum, static_cast<int>(picture.bytesPerLine())},
                           ZXing::DecodeHints().setFormats(ZXing::BarcodeFormat::Code128));
    ASSERT_TRUE(result.isValid());
    EXPECT_EQ(result.text(), "12345678901");
}

// Pixels of the picture that are not white outside the boxes, given in
// twips; the rasterizer's smoothing may tint the pixel next to an edge.
int darkOutside(const QImage& picture, std::initializer_list<Box> boxes, double scale) {
    int dark = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const bool inside = std::any_of(boxes.begin(), boxes.end(), [&](const Box& box) {
                return QRectF(box.left * scale, box.top * scale, box.width * scale,
                              box.height * scale)
                    .toAlignedRect()
                    .adjusted(-1, -1, 1, 1)
                    .contains(x, y);
            });
            if (!inside && qGray(picture.pixel(x, y)) < 250)
                ++dark;
        }
    }
    return dark;
}

TEST(PageOutput, PicturesAndTextStayInsideTheirBoxes) {
    QImage photo(800, 200, QImage::Format_RGB32);
    photo.fill(Qt::red);
    const Box pictureBox{1440, 1440, 2880, 2880};
    const Box textBox{1440, 5760, 2880, 300};
    // Capitals with dots at the very top of their box.
    const Box capitalsBox{1440, 7200, 2880, 1440};
    TextItem capitals = text(capitalsBox, "ÖÜİ");
    capitals.style.pointSize = 36;
    const Page page{kA4Width / 2,
                    kA4Height / 2,
                    {ImageItem{pictureBox, photo},
                     text(textBox, "Görünen satır\r\nKesilen satır\r\nKesilen satır"), capitals}};
    const TempDir folder;
    const std::filesystem::path pdf = folder.path() / "resim.pdf";
    ASSERT_EQ(savePdf({page}, QString::fromStdString(pdf.string()), QString()), QString());
    constexpr int kDotsPerInch = 100;
    constexpr double kScale = kDotsPerInch / 1440.0;
    const QImage picture = rendered(pdf, kDotsPerInch);
    ASSERT_FALSE(picture.isNull());
    picture.save(QDir::temp().filePath(QStringLiteral("report_paint_boxes.png")));

    EXPECT_EQ(darkOutside(picture, {pictureBox, textBox, capitalsBox}, kScale), 0);
    EXPECT_LT(darkOutside(picture, {pictureBox, capitalsBox}, kScale), 2000);  // the one line
    // The dots of the capitals are whole: the ink starts below the box's
    // top and is nearly an em high (36 points, 50 pixels at 100 dpi).
    std::vector<int> inkedRows;
    for (int y = capitalsBox.top * kScale; y < (capitalsBox.top + capitalsBox.height) * kScale;
         ++y) {
        for (int x = capitalsBox.left * kScale; x < (capitalsBox.left + capitalsBox.width) * kScale;
             ++x) {
            if (qGray(picture.pixel(x, y)) < 128) {
                inkedRows.push_back(y);
                break;
            }
        }
    }
    ASSERT_FALSE(inkedRows.empty());
    EXPECT_GT(inkedRows.front(), capitalsBox.top * kScale + 1);
    EXPECT_GT(inkedRows.back() - inkedRows.front(), 45);
    // Wider than high, the picture fills the box's width in its middle.
    const auto red = [&](int x, int y) { return qGreen(picture.pixel(x, y)) < 16; };
    EXPECT_TRUE(red(200, 200));
    EXPECT_TRUE(red(102, 200));
    EXPECT_EQ(picture.pixel(200, 120), qRgb(255, 255, 255));
}

TEST(PageOutput, PdfThatCannotBeWrittenLeavesNothing) {
    const TempDir folder;
    const QString path = QString::fromStdString((folder.path() / "yok" / "liste.pdf").string());
    const Page page{kA4Width, kA4Height, {text({0, 0, 2000, 400}, "Liste")}};
    EXPECT_EQ(savePdf({page}, path, QString()), QStringLiteral("PDF dosyası yazılamadı: ") + path);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
    // Over a file of the same name nothing is left half written either.
    const QString taken = QString::fromStdString((folder.path() / "liste.pdf").string());
    std::filesystem::create_directory(taken.toStdString());
    EXPECT_FALSE(savePdf({page}, taken, QString()).isEmpty());
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST(Picture, LoadPictureSharesUnchangedFilesAndNamesItsFailures) {
    EXPECT_TRUE(LoadPicture(QString()).isNull());
    const TempDir folder;
    const QString missing = QString::fromStdString((folder.path() / "yok.jpg").string());
    const QString notPicture = QString::fromStdString((folder.path() / "not.jpg").string());
    std::ofstream(notPicture.toStdString()) << "bu bir resim değil";
    for (const auto& [path, number] : {std::pair(missing, 53), std::pair(notPicture, 481)}) {
        try {
            LoadPicture(path);
            ADD_FAILURE() << path.toStdString();
        } catch (const PictureError& error) {
            EXPECT_EQ(error.number(), number);
        }
    }

    const QString path = QString::fromStdString((folder.path() / "arka plan.png").string());
    QImage large(3000, 1500, QImage::Format_RGB32);
    large.fill(Qt::blue);
    ASSERT_TRUE(large.save(path));
    const QImage first = LoadPicture(path);
    EXPECT_EQ(first.size(), QSize(2000, 1000));
    EXPECT_EQ(LoadPicture(path).cacheKey(), first.cacheKey());
    QImage small(30, 20, QImage::Format_RGB32);
    small.fill(Qt::green);
    ASSERT_TRUE(small.save(path));
    EXPECT_EQ(LoadPicture(path).size(), QSize(30, 20));
}

}  // namespace
}  // namespace engine
