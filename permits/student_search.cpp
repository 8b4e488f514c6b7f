// The main window's search for a student in the roster, and the photograph
// of the student who is current.

#include <QPixmap>

#include "shell/form1.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"
#include "shell/kit/vb_number.h"
#include "shell/platform.h"
#include "store/data_error.h"

namespace shell {
namespace {

bool isAll(const QString& item) {
    return item == QStringLiteral("Tümü") || item == QStringLiteral("TÜMÜ");
}

std::u16string text(const QString& filter) {
    return filter.toStdU16String();
}

}  // namespace

void Form1::Combo1_Click() {
    kit::skip([this] {
        if (isAll(Combo1->currentText())) {
            ornek.Recordset().clearFilter();
            ornek.Refresh();
        } else {
            ornek.Recordset().setFilter(
                text(QStringLiteral(" SINIF = '") + Combo1->currentText() + QStringLiteral("'")));
        }
    });
}

// No error handling: an apostrophe in the name breaks the filter and ends
// the program through the run-time error report.
void Form1::Text10_Change() {
    if (Text10->text().isEmpty()) {
        Command2_Click();
    } else {
        ornek.Recordset().setFilter(
            text(QStringLiteral(" Adi like '") + Text10->text().trimmed() + QStringLiteral("%'")));
    }
}

void Form1::Text9_Change() {
    if (Text9->text().isEmpty()) {
        Command2_Click();
    } else {
        ornek.Recordset().setFilter(text(QStringLiteral(" Soyadi like '") +
                                         Text9->text().trimmed() + QStringLiteral("%'")));
    }
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
    kit::skip([&] {
        if (number.isEmpty()) {
            Command2_Click();
        } else {
            ornek.Recordset().setFilter(text(QStringLiteral(" Numara like ") + number));
        }
    });
}

void Form1::Text11_KeyPress(int keyAscii) {
    if (keyAscii != 13 || !kit::IsNumeric(Text11->text()))
        return;
    Command1_Click();
    Text11->setFocus();
    Text11->setSelection(0, static_cast<int>(Text1->text().size()));
}

void Form1::Text23_Change() {
    kit::skip([this] {
        if (Text23->text().isEmpty()) {
            ornek.Recordset().clearFilter();
            ornek.Refresh();
        } else {
            ornek.Recordset().setFilter(
                text(QStringLiteral("TCKimlikno=") + kit::plainNumber(kit::Val(Text23->text()))));
        }
    });
}

void Form1::Text5_Change() {
    loadPicture(QStringLiteral("resim"), ornek);
}

void Form1::DataGrid4_Click() {
    loadPicture(QStringLiteral("resim"), izinler);
}

// The photograph of the current row. A Null path is never equal to Null,
// so the logo's branch does not run and the image stays empty.
void Form1::loadPicture(const QString& field, kit::DataControl& control) {
    jet::Value path;
    kit::skip([&] { path = control.Recordset().field(field.toStdU16String()); });
    kit::skip([&] { Image1->clear(); });
    kit::skip([&] {
        if (path.isNull())
            throw store::DataError("invalid use of Null");
        QPixmap picture;
        const QString file = QString::fromStdU16String(path.asText());
        if (!file.isEmpty() && !picture.load(file))
            throw store::DataError("the picture cannot be loaded");
        Image1->setPixmap(picture);
    });
}

}  // namespace shell
