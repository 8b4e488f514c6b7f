// The identity cards as the office prints them: a class chosen, the cards
// shown, saved as a PDF and printed by print-report. Every barcode is read
// back from the rendered pages and compared with ORNEK as mdbtools reads it.

#include <fstream>
#include <set>

#include <QAction>
#include <QImage>
#include <QPainter>
#include <QTest>

#include <ZXing/ReadBarcode.h>

#include "reports/engine/page_painter.h"
#include "reports/engine/units.h"
#include "rosters/gkimlik.h"
#include "rosters/kimlik.h"
#include "shell/clock.h"
#include "shell/form1.h"
#include "shell/kit/app_path.h"
#include "shell/window_registry.h"
#include "tests/reports/report_reading.h"
#include "tests/rosters/roster_testing.h"
#include "tests/shell/window_driver.h"

namespace {

namespace fs = std::filesystem;
using jet::testing::runCommand;
using jet::testing::shellQuote;
using reports::testing::exported;
using reports::testing::pick;
using reports::testing::Rows;
using windows::testing::MessageBoxAnswerer;
using windows::testing::SchoolWindowTest;
using namespace rosters::testing;

const QString kPictureMessage =
    QStringLiteral("Resim dosyaları bulunamadı.Resim işlerinden\nkontrol ediniz.");

using Numbers = std::multiset<std::string>;

// Where the program finds a stored photograph: "C:\Sofra\resimler\1.jpg"
// is read as a path under the working folder, which is the school's folder.
fs::path photoOf(const fs::path& folder, const QStringList& student) {
    return folder / kit::localPath(student.value(kOrnekResim)).toStdString();
}

// The barcodes read off a picture of the page, one card at a time: around
// each barcode's place the picture is cut out, with the card's margin, and
// given to the reader.
Numbers barcodesIn(const QImage& picture, const engine::Page& page) {
    const double scale = static_cast<double>(picture.width()) / page.width;
    Numbers numbers;
    for (const engine::PageItem& item : page.items) {
        const auto* barcode = std::get_if<engine::BarcodeItem>(&item);
        if (barcode == nullptr)
            continue;
        constexpr int kMargin = 400;  // twips
        const engine::Box& box = barcode->box;
        const QImage card =
            picture
                .copy(QRectF((box.left - kMargin) * scale, (box.top - kMargin) * scale,
                             (box.width + 2 * kMargin) * scale, (box.height + 2 * kMargin) * scale)
                          .toRect())
                .convertToFormat(QImage::Format_Grayscale8);
        const ZXing::Result found =
            ZXing::ReadBarcode({card.constBits(), card.width(), card.height(),
                                ZXing::ImageFormat::Lum, static_cast<int>(card.bytesPerLine())},
                               ZXing::DecodeHints().setFormats(ZXing::BarcodeFormat::Code128));
        numbers.insert(found.isValid() ? QString::fromStdWString(found.text()).toStdString()
                                       : std::string("unreadable"));
    }
    return numbers;
}

// The pages painted as a printer of that resolution would receive them.
Numbers barcodesOnPages(const std::vector<engine::Page>& pages, int dotsPerInch) {
    Numbers numbers;
    const double scale = engine::pixelsPerTwip(dotsPerInch);
    for (const engine::Page& page : pages) {
        QImage picture(static_cast<int>(page.width * scale), static_cast<int>(page.height * scale),
                       QImage::Format_RGB32);
        QPainter painter(&picture);
        engine::paintPage(page, painter, scale);
        painter.end();
        numbers.merge(barcodesIn(picture, page));
    }
    return numbers;
}

// The same pages in the PDF, turned into pictures by poppler.
Numbers barcodesInPdf(const fs::path& pdf, int dotsPerInch,
                      const std::vector<engine::Page>& pages) {
    Numbers numbers;
    for (std::size_t index = 0; index < pages.size(); ++index) {
        const std::string number = std::to_string(index + 1);
        const fs::path png = pdf.parent_path() / ("card-page-" + number);
        runCommand("pdftoppm -r " + std::to_string(dotsPerInch) + " -f " + number + " -l " +
                   number + " -png -singlefile " + shellQuote(pdf.string()) + " " +
                   shellQuote(png.string()));
        numbers.merge(barcodesIn(QImage(pathText(png) + QStringLiteral(".png")), pages[index]));
    }
    return numbers;
}

std::string pdftotext(const fs::path& pdf) {
    return runCommand("pdftotext -layout " + shellQuote(pdf.string()) + " -");
}

class IdCards : public SchoolWindowTest {
protected:
    void SetUp() override {
        SchoolWindowTest::SetUp();
        if (IsSkipped())
            return;
        students_ = exported(folder_->database(), "ORNEK");
        background_ = folder_->path() / "GunduzluKimlik.jpg";
        writePicture(background_, QColor(240, 236, 220), 500, 300);
    }

    Rows classRows(const QString& sinif) const {
        return rosters::testing::classRows(students_, sinif);
    }

    Rows students_;
    fs::path background_;
};

std::size_t imageCount(const std::vector<engine::Page>& pages) {
    std::size_t count = 0;
    for (const engine::Page& page : pages) {
        for (const engine::PageItem& item : page.items)
            count += std::holds_alternative<engine::ImageItem>(item) ? 1 : 0;
    }
    return count;
}

// A class of 9A's: photographs where the file names them, one of them
// missing and one damaged, a student without an identity number, a surname
// with an apostrophe; the cards in the viewer, then in the PDF of the day.
TEST_F(IdCards, TheCardsOfAClassCarryTheirNumbersAsBarcodes) {
    shell::setTodayForTests(QDate(2026, 3, 5));
    const Rows nineA = classRows(QStringLiteral("9A"));
    ASSERT_GE(nineA.size(), 10u);
    Numbers expected;
    fs::path missingPhoto;
    fs::path damagedPhoto;
    int photos = 0;
    for (const QStringList& student : nineA) {
        if (!student.value(kOrnekTCKimlikNo).isEmpty())
            expected.insert(student.value(kOrnekTCKimlikNo).toStdString());
        if (student.value(kOrnekResim).isEmpty())
            continue;
        if (missingPhoto.empty()) {
            missingPhoto = photoOf(folder_->path(), student);
            continue;
        }
        if (damagedPhoto.empty()) {
            damagedPhoto = photoOf(folder_->path(), student);
            std::ofstream(damagedPhoto) << "no picture";
            continue;
        }
        writePicture(photoOf(folder_->path(), student),
                     QColor::fromHsv(photos++ * 37 % 360, 120, 200));
    }
    ASSERT_LT(expected.size(), nineA.size());  // one card without a barcode
    ASSERT_FALSE(damagedPhoto.empty());

    shell::instance<shell::Form1>().kimlikbas->trigger();
    ASSERT_TRUE(shell::isLoaded<rosters::kimlik>());
    rosters::kimlik& window = shell::instance<rosters::kimlik>();
    EXPECT_EQ(window.Combo1->currentText(), QStringLiteral("Tümü"));
    EXPECT_EQ(window.Combo1->itemText(0), QStringLiteral("Tümü"));
    QTest::mouseClick(window.Command2, Qt::LeftButton);  // nothing to stop: nothing happens

    MessageBoxAnswerer answerer;
    pick(window.Combo1, QStringLiteral("9A"));
    QTest::mouseClick(window.Command1, Qt::LeftButton);
    engine::Report* shown = window.arv->ReportSource();
    ASSERT_NE(shown, nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(shown->done(), 20000);
    // The missing and the damaged photograph are told once each, and the
    // run goes on.
    EXPECT_EQ(answerer.seen, (QStringList{kPictureMessage, kPictureMessage}));
    const std::vector<engine::Page>& pages = shown->pages();
    ASSERT_EQ(pages.size(), (nineA.size() + 8) / 9);  // nine cards a page
    // A background on every card; a photograph on every card whose box was
    // ever filled, the missing one keeping the card before's.
    EXPECT_GE(imageCount(pages), nineA.size() + photos);
    EXPECT_EQ(barcodesOnPages(pages, 300), expected);
    EXPECT_EQ(barcodesOnPages(pages, 150), expected);
    window.grab().save(QStringLiteral(SOFRAVAN_SCREENSHOT_DIR "/kimlik.png"));

    // The PDF of the day: the report runs again on the default instance,
    // now that every picture is there, and lands beside the folder; where
    // it cannot be written, the export asks for the report first.
    writePicture(missingPhoto, Qt::darkCyan);
    writePicture(damagedPhoto, Qt::darkMagenta);
    const fs::path pdf = pathText(folder_->path()).toStdString() + "05_03_2026Gunduzlu_kimlik.pdf";
    EXPECT_EQ(rosters::cardPdfPath(shell::today()).toStdString(), pdf.string());
    fs::create_directory(pdf);
    window.pdfTool->trigger();
    EXPECT_EQ(answerer.seen.size(), 3);
    EXPECT_EQ(answerer.seen.last(), QStringLiteral("Önce rapor oluşturunuz"));
    fs::remove(pdf);
    answerer.seen.clear();
    window.pdfTool->trigger();
    ASSERT_TRUE(fs::exists(pdf));
    EXPECT_EQ(answerer.seen, QStringList());
    EXPECT_FALSE(shell::isLoaded<rosters::gkimlik>());  // the export cleared it
    EXPECT_EQ(barcodesInPdf(pdf, 300, pages), expected);
    EXPECT_EQ(barcodesInPdf(pdf, 150, pages), expected);
    fs::copy_file(pdf.parent_path() / "card-page-1.png",
                  fs::path(SOFRAVAN_SCREENSHOT_DIR) / "kimlik-page.png",
                  fs::copy_options::overwrite_existing);
    const std::string words = pdftotext(pdf);
    for (const char* word : {"9A", "116", "O'Neil", "Işık", "Yağmur", "Kılıç"})
        EXPECT_NE(words.find(word), std::string::npos) << word << "\n" << words;
    EXPECT_EQ(words.find("9B"), std::string::npos);
    fs::remove(pdf);

    // Without the card background the export stops at the first card: no
    // page is finished, and the export says to make the report first.
    fs::remove(background_);
    window.pdfTool->trigger();
    EXPECT_EQ(answerer.seen,
              (QStringList{kPictureMessage, QStringLiteral("Önce rapor oluşturunuz")}));
    EXPECT_FALSE(fs::exists(pdf));

    // In the viewer the message comes for every card, and every card is
    // printed with what it held.
    answerer.seen.clear();
    QTest::mouseClick(window.Command1, Qt::LeftButton);
    shown = window.arv->ReportSource();
    QTRY_VERIFY_WITH_TIMEOUT(shown->done(), 20000);
    EXPECT_EQ(answerer.seen.size(), static_cast<qsizetype>(nineA.size()));
    EXPECT_EQ(barcodesOnPages(shown->pages(), 300), expected);
}

// The tool prints a class as the window does, the pictures found from the
// file's folder; a class without students and a class whose name breaks
// the query are told apart by the exit status.
TEST_F(IdCards, PrintReportWritesTheCardsOfAClass) {
    const Rows nineB = classRows(QStringLiteral("9B"));
    Numbers expected;
    for (const QStringList& student : nineB) {
        expected.insert(student.value(kOrnekTCKimlikNo).toStdString());
        if (!student.value(kOrnekResim).isEmpty())
            writePicture(photoOf(folder_->path(), student), Qt::darkYellow);
    }
    const fs::path pdf = folder_->path() / "kart.pdf";
    const auto printCards = [&](const std::string& chosen) {
        int status = -1;
        fs::remove(pdf);
        runCommand(std::string(PRINT_REPORT_EXECUTABLE) + " " +
                       shellQuote(folder_->database().string()) + " gkimlik --class " +
                       shellQuote(chosen) + " " + shellQuote(pdf.string()) + " 2>/dev/null",
                   &status);
        return status;
    };
    ASSERT_EQ(printCards("9B"), 0);
    // The same cards made here tell where each barcode stands.
    rosters::setCardClassWithoutWindow(QStringLiteral("9B"));
    rosters::gkimlik cards;
    cards.Run();
    rosters::setCardClassWithoutWindow(QStringLiteral("Tümü"));
    EXPECT_EQ(barcodesInPdf(pdf, 200, cards.pages()), expected);
    EXPECT_NE(pdftotext(pdf).find(nineB.front().value(3).toStdString()), std::string::npos);

    // A class without students: one empty page.
    EXPECT_EQ(printCards("12Z"), 0);
    EXPECT_EQ(runCommand("pdfinfo " + shellQuote(pdf.string()) + " | grep Pages"),
              "Pages:           1\n");
    EXPECT_EQ(QString::fromStdString(pdftotext(pdf)).trimmed(), QString());
    EXPECT_EQ(printCards("9'A"), 1);  // the query fails as the window's would
    EXPECT_FALSE(fs::exists(pdf));
}

}  // namespace
