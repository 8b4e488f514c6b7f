#include "shell/frmayar.h"

#include <stdexcept>
#include <tuple>
#include <utility>

#include <QCloseEvent>

#include "shell/form1.h"
#include "shell/kit/connection_strings.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"
#include "shell/kit/placing.h"
#include "shell/kit/value_text.h"
#include "shell/program_state.h"
#include "shell/scramble.h"
#include "shell/window_registry.h"
#include "store/data_error.h"

namespace shell {
namespace {

using kit::named;
using kit::place;

// The designed window, in twips.
constexpr int kWindowWidth = 7080;
constexpr int kWindowHeight = 6480;

const QString kHourMask = QStringLiteral("##:##");
// The columns' texts: 255 characters, and a password is stored as two
// hexadecimal digits a character.
constexpr int kNameLength = 255;
constexpr int kPasswordLength = 127;

// A text column of the current row as the original's code reads it into a
// string: Null cannot be.
QString fieldText(const store::Recordset& row, std::u16string_view column) {
    const jet::Value value = row.field(column);
    if (value.isNull())
        throw store::DataError("invalid use of Null");
    return kit::displayText(value);
}

// One of the times of a meal's "hh:mm-hh:mm": the part at `index` of the
// text split at "-". An empty text has no parts at all.
QString hourPart(const store::Recordset& row, std::u16string_view column, qsizetype index) {
    const QString hours = fieldText(row, column);
    const QStringList parts = hours.isEmpty() ? QStringList() : hours.split(u'-');
    if (index >= parts.size())
        throw std::out_of_range("Subscript out of range");
    return parts[index];
}

jet::Value hours(const kit::MaskedBox* start, const kit::MaskedBox* end) {
    return jet::Value::text((start->Text() + u'-' + end->Text()).toStdU16String());
}

kit::MaskedBox* hourBox(QWidget* frame, const char* name, const QString& accessibleName, int left,
                        int top) {
    auto* box = named(new kit::MaskedBox(frame), name);
    box->setMask(kHourMask);
    box->setAccessibleName(accessibleName);
    place(box, left, top, 900, 330);
    return box;
}

}  // namespace

FRMAYAR::FRMAYAR() {
    kit::designWindow(this, "FRMAYAR", QStringLiteral("Ayarlar"), kWindowWidth, kWindowHeight);
    placeControls();
    connectHandlers();
    // The data control opens as the window loads, before its Form_Load.
    kit::openDataControl(Adodc1);
    Form_Load();
}

void FRMAYAR::placeControls() {
    Frame1 = named(new QGroupBox(QStringLiteral("ÖĞÜN SAATLERİ"), this), "Frame1");
    place(Frame1, 120, 120, 6840, 1800);
    // A meal's row: its title, the start, "-", the end.
    const auto meal = [this](const char* labelName, const QString& caption, int top) {
        auto* label = named(new QLabel(caption, Frame1), labelName);
        place(label, 240, top + 30, 1440, 285);
        return label;
    };
    Label6 = meal("Label6", QStringLiteral("SABAH "), 360);
    Label2 = meal("Label2", QStringLiteral("ÖĞLE"), 840);
    Label1 = meal("Label1", QStringLiteral("AKŞAM"), 1320);
    // Row by row, so that the tab key goes from a start to its end.
    MaskEdBox1 =
        hourBox(Frame1, "MaskEdBox1", QStringLiteral("Kahvaltı başlangıç saati"), 1800, 360);
    MaskEdBox4 = hourBox(Frame1, "MaskEdBox4", QStringLiteral("Kahvaltı bitiş saati"), 3060, 360);
    MaskEdBox2 =
        hourBox(Frame1, "MaskEdBox2", QStringLiteral("Öğle yemeği başlangıç saati"), 1800, 840);
    MaskEdBox5 =
        hourBox(Frame1, "MaskEdBox5", QStringLiteral("Öğle yemeği bitiş saati"), 3060, 840);
    MaskEdBox3 =
        hourBox(Frame1, "MaskEdBox3", QStringLiteral("Akşam yemeği başlangıç saati"), 1800, 1320);
    MaskEdBox6 =
        hourBox(Frame1, "MaskEdBox6", QStringLiteral("Akşam yemeği bitiş saati"), 3060, 1320);
    Label6->setBuddy(MaskEdBox1);
    Label2->setBuddy(MaskEdBox2);
    Label1->setBuddy(MaskEdBox3);
    const auto dash = [this](const char* name, int top) {
        auto* label = named(new QLabel(QStringLiteral("-"), Frame1), name);
        label->setAlignment(Qt::AlignCenter);
        place(label, 2760, top + 30, 240, 285);
        return label;
    };
    Label8 = dash("Label8", 360);
    Label9 = dash("Label9", 840);
    Label10 = dash("Label10", 1320);

    Frame2 = named(new QGroupBox(QStringLiteral("KURUM BİLGİLERİ"), this), "Frame2");
    place(Frame2, 120, 2040, 6840, 1800);
    const auto name = [this](const char* labelName, const QString& caption, const char* boxName,
                             const QString& column, int top) {
        auto* label = named(new QLabel(caption, Frame2), labelName);
        place(label, 240, top + 30, 1800, 285);
        auto* box = named(new kit::BoundTextBox(Frame2), boxName);
        box->setMaxLength(kNameLength);
        box->bind(Adodc1, column);
        label->setBuddy(box);
        place(box, 2100, top, 4500, 330);
        return std::pair{label, box};
    };
    std::tie(Label3, Text6) =
        name("Label3", QStringLiteral("OKUL ADI :"), "Text6", QStringLiteral("OKUL"), 360);
    std::tie(Label4, Text7) =
        name("Label4", QStringLiteral("OKUL MDR :"), "Text7", QStringLiteral("MRD"), 840);
    std::tie(Label5, Text8) =
        name("Label5", QStringLiteral("PANS.MDR YRD :"), "Text8", QStringLiteral("MDRYRD"), 1320);

    Frame3 = named(new QGroupBox(QStringLiteral("KULLANICI ŞİFRESİ"), this), "Frame3");
    place(Frame3, 120, 3960, 6840, 1620);
    Label7 = named(new QLabel(QStringLiteral("ŞİFRE"), Frame3), "Label7");
    place(Label7, 240, 390, 1800, 285);
    Text4 = named(new QLineEdit(Frame3), "Text4");
    Text4->setMaxLength(kPasswordLength);
    Label7->setBuddy(Text4);
    place(Text4, 2100, 360, 3000, 330);
    Label11 = named(
        new QLabel(QStringLiteral("Şifreyi not ediniz. Kaybederseniz program kilitlenir"), Frame3),
        "Label11");
    Label11->setWordWrap(true);
    Label11->setStyleSheet(QStringLiteral("color: #c00000"));
    place(Label11, 240, 840, 6360, 600);

    Command1 = named(new QPushButton(QStringLiteral("KAYDET"), this), "Command1");
    place(Command1, 3600, 5760, 1620, 480);
    Command2 = named(new QPushButton(QStringLiteral("TEMİZLE"), this), "Command2");
    place(Command2, 5340, 5760, 1620, 480);
}

void FRMAYAR::connectHandlers() {
    kit::on(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    kit::on(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
}

// Every statement is passed over when it fails.
void FRMAYAR::Form_Load() {
    store::Recordset& row = Adodc1.Recordset();
    // A missing part, or one the mask refuses, leaves its box as it was.
    const auto split = [&row](std::u16string_view column, kit::MaskedBox* start,
                              kit::MaskedBox* end) {
        kit::skip([&] { start->assignText(hourPart(row, column, 0)); });
        kit::skip([&] { end->assignText(hourPart(row, column, 1)); });
    };
    split(u"SABAH_SAATI", MaskEdBox1, MaskEdBox4);
    split(u"OGLE_SAATI", MaskEdBox2, MaskEdBox5);
    split(u"AKSAM_SAATI", MaskEdBox3, MaskEdBox6);
    QString password;
    kit::skip([&] { password = sifrecoz(scrambleKey, fieldText(row, u"SIFRE")); });
    // Lunch and dinner go back into the row as the masks show them, not
    // breakfast; the row is not written here.
    kit::skip([&] { row.setField(u"OGLE_SAATI", hours(MaskEdBox2, MaskEdBox5)); });
    kit::skip([&] { row.setField(u"AKSAM_SAATI", hours(MaskEdBox3, MaskEdBox6)); });
    Text4->setText(password);
}

void FRMAYAR::Command1_Click() {
    store::Recordset& row = Adodc1.Recordset();
    row.setField(u"SABAH_SAATI", hours(MaskEdBox1, MaskEdBox4));
    row.setField(u"OGLE_SAATI", hours(MaskEdBox2, MaskEdBox5));
    row.setField(u"AKSAM_SAATI", hours(MaskEdBox3, MaskEdBox6));
    if (!Text4->text().isEmpty()) {
        row.setField(u"SIFRE",
                     jet::Value::text(sifrele(scrambleKey, Text4->text()).toStdU16String()));
        row.update();
        kit::MsgBox(QStringLiteral("Lütfen Şifrenizi not ediniz. Aksi taktirde\n"
                                   "programa giriş yapamazsınız."),
                    16);
    } else {
        // No password: the program opens without the login.
        row.setField(u"SIFRE", jet::Value::text(u""));
        row.update();
    }
    row.update();
}

void FRMAYAR::Command2_Click() {
    // The bound boxes' columns are emptied in the row's edit buffer with
    // them, as an assignment to a bound box does.
    store::Recordset& row = Adodc1.Recordset();
    for (kit::BoundTextBox* box : {Text6, Text7, Text8}) {
        box->clear();
        row.setField(box->dataField().toStdU16String(), jet::Value::text(u""));
    }
    // A masked box takes no empty text under its mask.
    for (kit::MaskedBox* box :
         {MaskEdBox1, MaskEdBox2, MaskEdBox3, MaskEdBox4, MaskEdBox5, MaskEdBox6}) {
        const QString mask = box->Mask();
        box->setMask(QString());
        box->assignText(QString());
        box->setMask(mask);
    }
}

void FRMAYAR::closeEvent(QCloseEvent* event) {
    // The row's pending edit is written first, so that the name read
    // below is the one the file holds.
    kit::writePendingEdits(this);
    Form_Unload();
    event->accept();
}

// The main window's copy of the school's name, read again from the file;
// every statement is passed over when it fails. A name that could not be
// read empties the copy; a Null one leaves it.
void FRMAYAR::Form_Unload() {
    const jet::Value okul = readSchoolName(jet::Value::text(u""));
    kit::skip([&okul] {
        if (okul.isNull())
            throw store::DataError("invalid use of Null");
        if (isLoaded<Form1>())
            instance<Form1>().Text12->setText(kit::displayText(okul));
    });
}

}  // namespace shell
