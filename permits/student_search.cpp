// The main window's search for a student in the roster, and the photograph
// of the student who is current.

#include <QPixmap>

#include "permits/search_filters.h"
#include "shell/form1.h"
#include "shell/kit/app_path.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"
#include "shell/kit/vb_number.h"
#include "shell/platform.h"
#include "store/data_error.h"

namespace shell {

void Form1::Combo1_Click() {
    kit::skip([this] { permits::classSearch(ornek, Combo1->currentText()); });
}

// No error handling: an apostrophe in the name ends the program through the
// run-time error report.
void Form1::Text10_Change() {
    permits::prefixSearch(ornek, QStringLiteral("Adi"), Text10->text(),
                          [this] { Command2_Click(); });
}

void Form1::Text9_Change() {
    permits::prefixSearch(ornek, QStringLiteral("Soyadi"), Text9->text(),
                          [this] { Command2_Click(); });
}

void Form1::Text11_Change() {
    const QString number = Text11->text();
    kit::skip([&] {
        if (!number.isEmpty() && !kit::IsNumeric(number)) {
            kit::MsgBox(QStringLiteral("Rakam&Sayı giriniz."), 16);
            Text11->setFocus();
            // The selection's length is that of the first name in Text1,
            // not of the number: kept as the program always had it.
            Text11->setSelection(0, static_cast<int>(Text1->text().size()));
        }
    });
    kit::skip([&] { permits::numberSearch(ornek, number, [this] { Command2_Click(); }); });
}

void Form1::Text11_KeyPress(int keyAscii) {
    if (keyAscii != 13 || !kit::IsNumeric(Text11->text()))
        return;
    Command1_Click();
    Text11->setFocus();
    Text11->setSelection(0, static_cast<int>(Text1->text().size()));
}

void Form1::Text23_Change() {
    kit::skip([this] { permits::identitySearch(ornek, Text23->text()); });
}

void Form1::Text5_Change() {
    loadPicture(ornek);
}

void Form1::DataGrid4_Click() {
    loadPicture(izinler);
}

// The photograph of the current row. A Null path is never equal to Null,
// so the logo's branch does not run and the image stays empty.
void Form1::loadPicture(kit::DataControl& control) {
    jet::Value path;
    kit::skip([&] { path = control.Recordset().field(u"resim"); });
    kit::skip([&] { Image1->clear(); });
    kit::skip([&] {
        if (path.isNull())
            throw store::DataError("invalid use of Null");
        QPixmap picture;
        const QString file = kit::localPath(QString::fromStdU16String(path.asText()));
        if (!file.isEmpty() && !picture.load(file))
            throw store::DataError("the picture cannot be loaded");
        Image1->setPixmap(picture);
    });
}

}  // namespace shell
