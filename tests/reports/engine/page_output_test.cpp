// Pages painted as a person sees them: written to PDF and read back as
// text, turned into pictures and looked at pixel by pixel.

#include <filesystem>
#include <fstream>
#include <string>

#include <QDir>
#include <QFontInfo>
#include <QImage>
#include <QPrinter>
#include <QStringList>

#include <ZXing/ReadBarcode.h>
#include <gtest/gtest.h>

#include "reports/engine/barcode.h"
#include "reports/engine/page_output.h"
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

// A page of the PDF as a picture of the given resolution.
QImage rendered(const std::filesystem::path& pdf, int dotsPerInch, int page = 1) {
    const std::filesystem::path png = pdf.parent_path() / "page";
    const std::string number = std::to_string(page);
    runCommand("pdftoppm -r " + std::to_string(dotsPerInch) + " -f " + number + " -l " + number +
               " -png -singlefile " + shellQuote(pdf.string()) + " " + shellQuote(png.string()));
    return QImage(QString::fromStdString(png.string() + ".png"));
}

// Where the picture is not white.
QRect ink(const QImage& picture) {
    QRect bounds;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (qGray(picture.pixel(x, y)) < 250)
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

QString pathIn(const TempDir& folder, const char* name) {
    return QString::fromStdString((folder.path() / name).string());
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
    // The text under the bars is set in Arial or its metric twin.
    const QString family = QFontInfo(barcodeFont()).family();
    EXPECT_TRUE(family == "Arial" || family == "Liberation Sans") << family.toStdString();
}

// Each on a page of its own: a picture larger than its box, a text taller
// than its box, capitals whose dots reach their box's top.
TEST(PageOutput, PicturesAndTextStayInsideTheirBoxes) {
    QImage photo(800, 200, QImage::Format_RGB32);
    photo.fill(Qt::red);
    const Box box{1440, 1440, 2880, 2880};  // 200 pixels from 100 at 100 dpi
    TextItem capitals = text(box, "ÖÜİ");
    capitals.style.pointSize = 36;  // 50 pixels
    const Page page{kA4Width / 2, kA4Height / 2, {}};
    std::vector<Page> pages(3, page);
    pages[0].items = {ImageItem{box, photo}};
    pages[1].items = {text({1440, 1440, 2880, 300}, "Görünen satır\r\nKesilen\r\nKesilen")};
    pages[2].items = {capitals};
    const TempDir folder;
    const std::filesystem::path pdf = folder.path() / "kutular.pdf";
    ASSERT_EQ(savePdf(pages, QString::fromStdString(pdf.string()), QString()), QString());

    // Wider than high, the picture fills the box's width in its middle;
    // the rasterizer's smoothing may tint the pixels next to an edge.
    const QImage picture = rendered(pdf, 100);
    picture.save(QDir::temp().filePath(QStringLiteral("report_paint_picture.png")));
    EXPECT_TRUE(QRect(99, 99, 202, 202).contains(ink(picture))) << ink(picture).top();
    EXPECT_LT(qGreen(picture.pixel(101, 200)), 16);  // red, as the PDF's compression keeps it
    EXPECT_EQ(picture.pixel(200, 120), qRgb(255, 255, 255));
    const QRect cut = ink(rendered(pdf, 100, 2));
    EXPECT_GE(cut.top(), 100);
    EXPECT_LE(cut.bottom(), 121);
    // The dots are whole: the ink starts below the box's top and is
    // nearly an em high.
    const QRect dotted = ink(rendered(pdf, 100, 3));
    EXPECT_GT(dotted.top(), 101);
    EXPECT_GT(dotted.height(), 45);
}

TEST(PageOutput, PdfThatCannotBeWrittenLeavesNothing) {
    const TempDir folder;
    const QString path = pathIn(folder, "yok/liste.pdf");
    const Page page{kA4Width, kA4Height, {text({0, 0, 2000, 400}, "Liste")}};
    EXPECT_EQ(savePdf({page}, path, QString()), QStringLiteral("PDF dosyası yazılamadı: ") + path);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
    // Over a file of the same name nothing is left half written either.
    const QString taken = pathIn(folder, "liste.pdf");
    std::filesystem::create_directory(taken.toStdString());
    EXPECT_FALSE(savePdf({page}, taken, QString()).isEmpty());
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST(Picture, LoadPictureSharesUnchangedFilesAndNamesItsFailures) {
    EXPECT_TRUE(LoadPicture(QString()).isNull());
    const TempDir folder;
    const QString missing = pathIn(folder, "yok.jpg");
    const QString notPicture = pathIn(folder, "not.jpg");
    std::ofstream(notPicture.toStdString()) << "bu bir resim değil";
    for (const auto& [path, number] : {std::pair(missing, 53), std::pair(notPicture, 481)}) {
        try {
            LoadPicture(path);
            ADD_FAILURE() << path.toStdString();
        } catch (const PictureError& error) {
            EXPECT_EQ(error.number(), number);
        }
    }

    const QString path = pathIn(folder, "arka plan.png");
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
