#include "display/form8.h"

#include <tuple>
#include <utility>

#include <QUrl>

#include "display/colour_text.h"
#include "shell/kit/app_path.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/grid_column.h"
#include "shell/kit/output_file.h"
#include "shell/kit/placing.h"
#include "shell/kit/vb_number.h"

namespace display {
namespace {

// The page as the display expects it, byte for byte: every line ends in CR
// LF, the last one too; the FONT element is never closed and the colours
// have no number sign. The double quote opened after style= closes after
// the text's background colour.
const QString kTemplate = QStringLiteral(
    "<html>\r\n"
    "<head>\r\n"
    "<title>Kayan</title>\r\n"
    "</head>\r\n"
    "<body bgColor=[arkaplan]>\r\n"
    "<marquee><FONT style=\"BACKGROUND-COLOR: \r\n"
    "[yazıarkaplanı]\" color=[yazırengi] size=[boyut]>[metin]\r\n"
    "</marquee></body></html>\r\n");

// The designed window, in twips.
constexpr int kWindowWidth = 9600;
constexpr int kWindowHeight = 3480;

using kit::named;
using kit::place;

// A swatch's number for an HTML colour; the text goes to htmlrenk as a copy
// of its own, which htmlrenk may pad.
double swatchColour(QString htmlColour) {
    return kit::Val(htmlrenk(htmlColour));
}

}  // namespace

Form8::Form8() {
    kit::designWindow(this, "Form8", QStringLiteral("Kayan Yazı"), kWindowWidth, kWindowHeight);
    placeControls();
    connectHandlers();
    kit::bare([this] { Form_Load(); });
}

void Form8::placeControls() {
    Label1 = named(new QLabel(QStringLiteral("Kayan yazı metni"), this), "Label1");
    place(Label1, 120, 120, 3000, 255);
    Text1 = named(new QLineEdit(this), "Text1");
    Label1->setBuddy(Text1);
    place(Text1, 120, 375, 9360, 330);

    Label3 = named(new QLabel(QStringLiteral("Metin Boyutu"), this), "Label3");
    place(Label3, 120, 840, 1335, 255);
    Combo1 = named(new kit::ComboBox(this), "Combo1");
    Combo1->setEditable(true);
    Combo1->setInsertPolicy(QComboBox::NoInsert);
    for (int size = 1; size <= 10; ++size)
        Combo1->addItem(QString::number(size));
    Combo1->setAccessibleName(Label3->text());
    Label3->setBuddy(Combo1);
    place(Combo1, 120, 1095, 1335, 330);

    // A caption, the colour's box and its swatch, side by side.
    const auto colour = [this](const QString& caption, const char* labelName, const char* boxName,
                               const char* swatchName, int left) {
        auto* label = named(new QLabel(caption, this), labelName);
        place(label, left, 840, 2160, 255);
        auto* box = named(new QLineEdit(this), boxName);
        label->setBuddy(box);
        place(box, left, 1095, 1335, 330);
        auto* swatch = named(new kit::Label(this), swatchName);
        swatch->setFrameStyle(QFrame::Box | QFrame::Plain);
        swatch->setAccessibleName(caption + QStringLiteral(" seç"));
        swatch->setCursor(Qt::PointingHandCursor);
        place(swatch, left + 1395, 1095, 330, 330);
        return std::tuple{label, box, swatch};
    };
    std::tie(Label2, Text2, Label5) =
        colour(QStringLiteral("Arkaplan rengi"), "Label2", "Text2", "Label5", 1575);
    std::tie(Label4, Text4, Label6) =
        colour(QStringLiteral("Yazı rengi"), "Label4", "Text4", "Label6", 3795);
    std::tie(Label8, Text5, Label7) =
        colour(QStringLiteral("Yazı arkaplan rengi"), "Label8", "Text5", "Label7", 6015);

    Command1 = named(new QPushButton(QStringLiteral("Kaydet"), this), "Command1");
    place(Command1, 8040, 1050, 1440, 420);
    cd = named(new kit::CommonDialog(this), "cd");

    wb = named(new kit::WebBrowser(this), "wb");
    wb->setAccessibleName(QStringLiteral("Önizleme"));
    place(wb, 0, 1620, kWindowWidth, 1860);

    Text3 = named(new kit::MultiLineTextBox(this), "Text3");
    Text3->setText(kTemplate);
    Text3->hide();
    Text9 = named(new kit::MultiLineTextBox(this), "Text9");
    Text9->hide();
}

void Form8::connectHandlers() {
    kit::on(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    kit::on(Label5, &kit::Label::Click, this, [this] { Label5_Click(); });
    kit::on(Label6, &kit::Label::Click, this, [this] { Label6_Click(); });
    kit::on(Label7, &kit::Label::Click, this, [this] { Label7_Click(); });
}

void Form8::Form_Load() {
    Combo1->setListIndex(5);
    Text2->setText(QStringLiteral("FFFFFF"));
    Text4->setText(QStringLiteral("FF0000"));
    Text5->setText(QStringLiteral("FFFFFF"));
    Label5->setBackColor(swatchColour(QStringLiteral("FFFFFF")));
    Label6->setBackColor(swatchColour(QStringLiteral("FF0000")));
    Label7->setBackColor(swatchColour(QStringLiteral("FFFFFF")));
}

// Nothing is checked: what the boxes hold goes into the page as it stands,
// HTML included. "[metin]" goes first, so a placeholder typed into Text1 is
// filled in by the steps after it.
void Form8::Command1_Click() {
    const std::pair<QString, QString> placeholders[] = {
        {QStringLiteral("[metin]"), Text1->text()},
        {QStringLiteral("[boyut]"), Combo1->currentText()},
        {QStringLiteral("[arkaplan]"), Text2->text()},
        {QStringLiteral("[yazırengi]"), Text4->text()},
        {QStringLiteral("[yazıarkaplanı]"), Text5->text()},
    };
    Text9->setText(Text3->Text());
    for (const auto& [placeholder, value] : placeholders)
        Text9->setText(Text9->Text().replace(placeholder, value));
    const QString path = kit::inAppPath(QStringLiteral("kay.html"));
    kit::printToOutputFile(path, Text9->Text());
    wb->Navigate(QUrl::fromLocalFile(path).toString());
}

void Form8::Label5_Click() {
    chooseColour(Label5, Text2);
}

void Form8::Label6_Click() {
    chooseColour(Label6, Text4);
}

void Form8::Label7_Click() {
    chooseColour(Label7, Text5);
}

// A cancelled dialog is taken like a choice: its colour as it stands, black
// before the first choice.
void Form8::chooseColour(kit::Label* swatch, QLineEdit* colourBox) {
    cd->ShowColor();
    colourBox->setText(renkhtml(QString::number(cd->Color())));
    swatch->setBackColor(cd->Color());
}

}  // namespace display
