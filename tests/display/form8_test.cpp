// The running text page: the colours' two spellings, the window driven as
// the office uses it with the page it writes read back byte for byte and
// through the preview, and a page that cannot be written.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

#include <QApplication>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include "display/colour_text.h"
#include "display/form8.h"
#include "shell/kit/app_path.h"
#include "shell/kit/vb_number.h"
#include "shell/window_registry.h"
#include "tests/shell/page_picture.h"
#include "tests/shell/window_driver.h"

namespace {

using display::Form8;
using display::htmlrenk;
using display::renkhtml;

// The page with the defaults and no text, as the template and Windows-1254
// make it, with the line end written after the template's last one.
const std::string kDefaultPage =
    "<html>\r\n<head>\r\n<title>Kayan</title>\r\n</head>\r\n<body bgColor=FFFFFF>\r\n"
    "<marquee><FONT style=\"BACKGROUND-COLOR: \r\nFFFFFF\" color=FF0000 size=6>\r\n"
    "</marquee></body></html>\r\n\r\n";

// The page of the test below: Ç C7, ı FD, ş FE, Ş DE, ü FC, ğ F0, İ DD.
// The "[boyut]" typed into the text became the typed size.
const std::string kTypedPage =
    "<html>\r\n<head>\r\n<title>Kayan</title>\r\n</head>\r\n<body bgColor=Ff\xC7>\r\n"
    "<marquee><FONT style=\"BACKGROUND-COLOR: \r\n000000\xFD\" color=123456 size=7\xFE>"
    "Afiyet olsun <b>\xDE\xFCkr\xFC</b> \xFD\xF0\xDD 7\xFE\r\n"
    "</marquee></body></html>\r\n\r\n";

std::string fileBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The colour a swatch shows on the screen, read from its middle.
QColor painted(QWidget* swatch) {
    return swatch->grab().toImage().pixelColor(swatch->width() / 2, swatch->height() / 2);
}

// Clicks the swatch and answers the colour dialog it opens as a user
// would: picks the colour and presses OK, or presses Cancel without one.
void clickSwatch(kit::Label* swatch, const std::optional<QColor>& choice) {
    bool answered = false;
    QTimer answerer;
    answerer.setInterval(5);
    QObject::connect(&answerer, &QTimer::timeout, [&] {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr || !dialog->isVisible())
            return;
        if (choice)
            dialog->setCurrentColor(*choice);
        auto* buttons = dialog->findChild<QDialogButtonBox*>();
        buttons->button(choice ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel)->click();
        answered = true;
    });
    answerer.start();
    QTest::mouseClick(swatch, Qt::LeftButton);
    EXPECT_TRUE(answered) << "no colour dialog came up";
}

// Replaces a box's text by typing over all of it.
void typeOver(QWidget* box, const QString& text) {
    QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
    windows::testing::type(box, text);
}

class RunningTextPage : public ::testing::Test {
protected:
    void SetUp() override { kit::setAppPathForTests(QString::fromStdString(folder_.path())); }
    void TearDown() override {
        if (shell::isLoaded<Form8>())
            delete &shell::instance<Form8>();
        kit::setAppPathForTests(QString());
    }

    static Form8& open() {
        shell::showWindow<Form8>();
        return shell::instance<Form8>();
    }

    // Presses Kaydet and waits for the preview to load the page written.
    static void save(Form8& window) {
        QSignalSpy loaded(window.wb, &QWebEngineView::loadFinished);
        QTest::mouseClick(window.Command1, Qt::LeftButton);
        ASSERT_TRUE(loaded.wait(30000)) << "the preview did not load";
        EXPECT_TRUE(loaded.first().first().toBool());
    }

    std::filesystem::path page() const { return folder_.path() / "kay.html"; }

    jet::testing::TempDir folder_;
};

TEST_F(RunningTextPage, ColoursTurnBothWaysAndTheSwatchesShowThem) {
    EXPECT_EQ(renkhtml(QStringLiteral("255")), QStringLiteral("FF0000"));
    EXPECT_EQ(renkhtml(QStringLiteral("16777215")), QStringLiteral("FFFFFF"));
    EXPECT_EQ(renkhtml(QStringLiteral("0")), QStringLiteral("000000"));
    EXPECT_EQ(renkhtml(QStringLiteral("1193046")), QStringLiteral("563412"));  // &H123456
    // Rounded half to even; seven digits, of which only the first six count.
    EXPECT_EQ(renkhtml(QStringLiteral("2.5")), QStringLiteral("020000"));
    EXPECT_EQ(renkhtml(QStringLiteral("16777215.5")), QStringLiteral("000010"));

    QString red = QStringLiteral("FF0000");
    EXPECT_EQ(htmlrenk(red), QStringLiteral("&H0000FF"));
    EXPECT_EQ(red, QStringLiteral("FF0000"));
    // Short text is padded at its end, and the caller's text with it.
    QString shortText = QStringLiteral("ABC");
    EXPECT_EQ(htmlrenk(shortText), QStringLiteral("&H00C0AB"));
    EXPECT_EQ(shortText, QStringLiteral("ABC000"));
    QString longText = QStringLiteral("12345678");
    EXPECT_EQ(htmlrenk(longText), QStringLiteral("&H563412"));
    EXPECT_EQ(longText, QStringLiteral("12345678"));
    // Two and six significant digits: an Integer and a Long, both positive.
    EXPECT_EQ(kit::Val(QStringLiteral("&H0000FF")), 255);
    EXPECT_EQ(kit::Val(QStringLiteral("&HFFFFFF")), 16777215);

    // The swatches as the window opens: red in the colour number's low byte.
    const Form8& window = open();
    EXPECT_EQ(window.Label6->BackColor(), 255);
    EXPECT_EQ(painted(window.Label5), QColor(255, 255, 255));
    EXPECT_EQ(painted(window.Label6), QColor(255, 0, 0));
    EXPECT_EQ(painted(window.Label7), QColor(255, 255, 255));
}

TEST_F(RunningTextPage, SavesThePageAsTypedAndPreviewsIt) {
    Form8& window = open();
    EXPECT_EQ(window.Combo1->currentText(), QStringLiteral("6"));
    EXPECT_EQ(window.Combo1->count(), 10);

    // The defaults and no text make a whole page with an empty line.
    save(window);
    EXPECT_EQ(fileBytes(page()), kDefaultPage);

    // Cancelled at first use the dialog gives black; a choice gives its
    // colour, in the box as RRGGBB.
    clickSwatch(window.Label7, std::nullopt);
    EXPECT_EQ(window.Text5->text(), QStringLiteral("000000"));
    EXPECT_EQ(painted(window.Label7), QColor(0, 0, 0));
    clickSwatch(window.Label6, QColor(0x12, 0x34, 0x56));
    EXPECT_EQ(window.Text4->text(), QStringLiteral("123456"));
    EXPECT_EQ(window.Label6->BackColor(), 0x563412);
    EXPECT_EQ(painted(window.Label6), QColor(0x12, 0x34, 0x56));

    // Typed colours and size go in unchecked, and the swatch stays.
    typeOver(window.Text2, QStringLiteral("FfÇ"));
    EXPECT_EQ(painted(window.Label5), QColor(255, 255, 255));
    QTest::keyClick(window.Text5, Qt::Key_End);
    windows::testing::type(window.Text5, QStringLiteral("ı"));
    typeOver(window.Combo1->lineEdit(), QStringLiteral("7ş"));
    windows::testing::type(window.Text1, QStringLiteral("Afiyet olsun <b>Şükrü</b> ığİ [boyut]"));

    save(window);
    EXPECT_EQ(fileBytes(page()), kTypedPage);
    save(window);
    EXPECT_EQ(fileBytes(page()), kTypedPage);

    // The preview reads the page in the Turkish code page: the letters come
    // back, and the HTML in the text is HTML. Chromium guesses the code page
    // of a page that names none from its bytes, and falls back to the
    // browser's default only when unsure; it reads a text of this length as
    // windows-1254 (a lone "Şş" it takes for windows-1252).
    EXPECT_EQ(window.wb->url(), QUrl::fromLocalFile(QString::fromStdString(page())));
    EXPECT_EQ(window.wb
                  ->evaluate(QStringLiteral("const marquee = document.querySelector('marquee');"
                                            "return [marquee.textContent.trim(),"
                                            " marquee.querySelector('font > b').textContent,"
                                            " document.body.getAttribute('bgcolor'),"
                                            " marquee.querySelector('font').getAttribute('size')]"
                                            ".join('|');"))
                  .toString(),
              QStringLiteral("Afiyet olsun Şükrü ığİ 7ş|Şükrü|FfÇ|7ş"));
}

// The window after a save with the default colours, as a person sees it:
// red letters run in from the right over the white page. The marquee is
// stopped once its first letters are well in view, so that the picture
// catches them.
TEST_F(RunningTextPage, ThePreviewShowsThePageRunning) {
    Form8& window = open();
    windows::testing::type(window.Text1, QStringLiteral("İyi günler! Bugün öğlen köfte ve çorba"));
    save(window);
    const auto textLeft = [&] {
        return window.wb
            ->evaluate(QStringLiteral(
                "return document.querySelector('font').getBoundingClientRect().left;"))
            .toDouble();
    };
    QTRY_VERIFY_WITH_TIMEOUT(textLeft() < 400, 10000);
    window.wb->evaluate(QStringLiteral("document.querySelector('marquee').stop();"));

    const QImage picture = windows::testing::windowPicture(window);
    EXPECT_TRUE(picture.save(QStringLiteral(SOFRAVAN_SCREENSHOT_DIR "/form8.png")));
    const QRect strip(window.wb->mapTo(&window, QPoint(0, 0)), window.wb->size());
    int red = 0;
    int white = 0;
    for (int y = strip.top(); y <= strip.bottom(); ++y) {
        for (int x = strip.left(); x <= strip.right(); ++x) {
            const QColor pixel = picture.pixelColor(x, y);
            red += pixel.red() > 200 && pixel.green() < 60 && pixel.blue() < 60 ? 1 : 0;
            white += pixel == QColor(255, 255, 255) ? 1 : 0;
        }
    }
    EXPECT_GT(red, 200) << "no red letters in the preview";
    EXPECT_GT(white, strip.width() * strip.height() / 2) << "the page is not white";
}

// A short Turkish text is what Chromium, guessing the code page of a page
// that names none from its bytes, takes for windows-1252 ("Ýyi"); the
// preview reads it in the Turkish code page.
TEST_F(RunningTextPage, AShortTurkishTextComesBackInThePreview) {
    Form8& window = open();
    windows::testing::type(window.Text1, QStringLiteral("İyi günler"));
    save(window);
    EXPECT_EQ(
        window.wb
            ->evaluate(QStringLiteral("return document.querySelector('font').textContent.trim();"))
            .toString(),
        QStringLiteral("İyi günler"));
}

// A folder where the page should be: the handler has no error handling, so
// the run-time error report ends the program.
TEST_F(RunningTextPage, APageThatCannotBeWrittenEndsTheProgram) {
    std::filesystem::create_directory(page());
    Form8& window = open();
    EXPECT_EXIT(
        {
            windows::testing::MessageBoxAnswerer answerer;
            QTest::mouseClick(window.Command1, Qt::LeftButton);
        },
        ::testing::ExitedWithCode(1), "'75'.*Path/File access error");
}

}  // namespace
