#include "portal/form12.h"

#include <QDate>

#include "portal/menu_page.h"
#include "portal/portal_address.h"
#include "shell/clock.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"
#include "shell/kit/placing.h"
#include "shell/kit/value_text.h"
#include "shell/kit/vb_number.h"
#include "shell/months.h"

namespace portal {
namespace {

using kit::named;
using kit::place;

const QString kNoMonthChosen = QStringLiteral("Menü girilecek ay seçimi yapılmamış");
const QString kMonthUnreadable =
    QStringLiteral("Gerekli ay bilgileri alınamıyor.Bilgileri tekrar giriniz...");

// The designed window, in twips: the page on the left, the menu and the
// buttons on the right.
constexpr int kWindowWidth = 19200;
constexpr int kWindowHeight = 11400;
constexpr int kPanelLeft = 12840;
constexpr int kPanelWidth = 6240;

void warn(const QString& message) {
    kit::MsgBox(message, kit::vbExclamation);
}

}  // namespace

Form12::Form12() {
    kit::designWindow(this, "Form12", QStringLiteral("Yemek menüsü aktarımı"), kWindowWidth,
                      kWindowHeight);
    placeControls();
    connectHandlers();
    // The data control opens as the window loads, before its Form_Load.
    kit::openDataControl(Adodc1);
    Resizer1 = named(new kit::Resizer(this), "Resizer1");
    Form_Load();
}

void Form12::placeControls() {
    wb = named(new kit::WebBrowser(this), "wb");
    wb->setAccessibleName(QStringLiteral("e-Okul"));
    place(wb, 0, 0, kPanelLeft - 120, kWindowHeight);

    Frame1 = named(new QGroupBox(QStringLiteral("Aktarılacak Öğün"), this), "Frame1");
    place(Frame1, kPanelLeft, 120, kPanelWidth, 1020);
    const auto option = [this](const QString& caption, const char* name, int left, int top) {
        auto* button = named(new QRadioButton(caption, Frame1), name);
        place(button, left, top, 1800, 300);
        return button;
    };
    Option1 = option(QStringLiteral("Sabah"), "Option1", 240, 300);
    Option2 = option(QStringLiteral("Öğle"), "Option2", 2160, 300);
    Option3 = option(QStringLiteral("Akşam"), "Option3", 4080, 300);
    Option4 = option(QStringLiteral("Ara Öğün"), "Option4", 240, 630);
    Option5 = option(QStringLiteral("Tümü"), "Option5", 2160, 630);

    Command2 =
        named(new QPushButton(QStringLiteral("Seçilen ay verilerini getir"), this), "Command2");
    place(Command2, kPanelLeft, 1260, 3960, 420);
    Text2 = named(new QLineEdit(this), "Text2");
    Text2->setAccessibleName(QStringLiteral("Ay"));
    place(Text2, kPanelLeft + 4080, 1290, 1020, 360);
    Text1 = named(new QLineEdit(QStringLiteral("Text1"), this), "Text1");
    Text1->setAccessibleName(QStringLiteral("Ayın gün sayısı"));
    place(Text1, kPanelLeft + 5220, 1290, 1020, 360);

    Command1 = named(new QPushButton(QStringLiteral("MENÜ AKTAR"), this), "Command1");
    place(Command1, kPanelLeft, 1800, 3000, 420);
    Command3 = named(new QPushButton(QStringLiteral("BOŞLUK SİL"), this), "Command3");
    place(Command3, kPanelLeft + 3240, 1800, 3000, 420);
    placeMealButtons();

    Label1 = named(new QLabel(QStringLiteral("Öğünlerden her hangi birinde bos satır varsa tek tek "
                                             "aktarım yapınız."),
                              this),
                   "Label1");
    Label1->setWordWrap(true);
    place(Label1, kPanelLeft, 2880, kPanelWidth, 480);

    TDBGrid1 = named(new kit::DataGrid(this), "TDBGrid1");
    TDBGrid1->setAccessibleName(QStringLiteral("Menü listesi"));
    place(TDBGrid1, kPanelLeft, 3480, kPanelWidth, kWindowHeight - 3600);
    TDBGrid1->setDataSource(&Adodc1);
    TDBGrid1->setColumns({kit::gridColumn(QStringLiteral("gun"), QStringLiteral("gun"), 600),
                          kit::gridColumn(QStringLiteral("sabah"), QStringLiteral("sabah")),
                          kit::gridColumn(QStringLiteral("oglen"), QStringLiteral("oglen")),
                          kit::gridColumn(QStringLiteral("aksam"), QStringLiteral("aksam")),
                          kit::gridColumn(QStringLiteral("ara_ogun"), QStringLiteral("ara_ogun"))});
}

void Form12::placeMealButtons() {
    const auto mealButton = [this](const QString& caption, const char* name, int left) {
        auto* button = named(new QPushButton(caption, this), name);
        place(button, kPanelLeft + left, 2340, 1500, 420);
        return button;
    };
    cmdsabah = mealButton(QStringLiteral("SABAH"), "cmdsabah", 0);
    cmdogle = mealButton(QStringLiteral("ÖĞLE"), "cmdogle", 1580);
    cmdaksam = mealButton(QStringLiteral("AKŞAM"), "cmdaksam", 3160);
    cmdara = mealButton(QStringLiteral("ARA ÖĞÜN"), "cmdara", 4740);
}

void Form12::connectHandlers() {
    kit::on(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    kit::on(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    kit::on(Command3, &QPushButton::clicked, this, [this] { Command3_Click(); });
    kit::on(cmdsabah, &QPushButton::clicked, this, [this] { cmdsabah_Click(); });
    kit::on(cmdogle, &QPushButton::clicked, this, [this] { cmdogle_Click(); });
    kit::on(cmdaksam, &QPushButton::clicked, this, [this] { cmdaksam_Click(); });
    kit::on(cmdara, &QPushButton::clicked, this, [this] { cmdara_Click(); });
    kit::on(Option1, &QRadioButton::clicked, this, [this] { Option1_Click(); });
    kit::on(Option2, &QRadioButton::clicked, this, [this] { Option2_Click(); });
    kit::on(Option3, &QRadioButton::clicked, this, [this] { Option3_Click(); });
    kit::on(Option4, &QRadioButton::clicked, this, [this] { Option4_Click(); });
    kit::on(Option5, &QRadioButton::clicked, this, [this] { Option5_Click(); });
}

// The page is left to load on its own: the clerk's presses pace the work.
void Form12::Form_Load() {
    Option5->setChecked(true);
    Option5_Click();
    Text1->setText(QString::number(shell::aygunu(shell::today().month())));
    wb->setSilent(true);
    wb->Navigate(startPage());
}

// All months, with no filter left from a fetched month.
void Form12::Option5_Click() {
    kit::skip([this] { Adodc1.setRecordSource(QStringLiteral("select* from menuler")); });
    kit::skip([this] { Adodc1.Refresh(); });
}

// Fetch month: the month chosen in the page narrows the menu.
void Form12::Command2_Click() {
    try {
        const QString month = chosenMonth(*wb);
        if (month.isEmpty()) {
            warn(kNoMonthChosen);
            Text2->clear();
            return;
        }
        Text1->setText(QString::number(shell::aygunu(kit::CInt(month))));
        Text2->setText(month);
        Adodc1.Recordset().setFilter(
            (QStringLiteral(" ay =") + kit::plainNumber(kit::Val(Text2->text()))).toStdU16String());
        Adodc1.announce();
    } catch (const std::exception&) {
        warn(kMonthUnreadable);
        Text2->clear();
    }
}

// Transfer chosen meal: the month is fetched again first, so a month
// changed in the page since is taken over.
void Form12::Command1_Click() {
    if (Text2->text().isEmpty()) {
        warn(kNoMonthChosen);
        return;
    }
    Command2_Click();
    kit::silentExit([this] {
        if (Option1->isChecked())
            cmdsabah_Click();
        if (Option2->isChecked())
            cmdogle_Click();
        if (Option3->isChecked())
            cmdaksam_Click();
        if (Option4->isChecked())
            cmdara_Click();
        moveToFirstRecord();
    });
}

// Clean text areas: the "null" a Null first line leaves.
void Form12::Command3_Click() {
    kit::skip([this] { moveToFirstRecord(); });
    kit::skip([this] { removeNullWords(*wb); });
}

void Form12::cmdsabah_Click() {
    transferMeal(1, u"sabah");
}

void Form12::cmdogle_Click() {
    transferMeal(2, u"oglen");
}

void Form12::cmdaksam_Click() {
    transferMeal(3, u"aksam");
}

void Form12::cmdara_Click() {
    transferMeal(4, u"ara_ogun");
}

// Transfer one meal: the record set from its first record, four records a
// day, into the text areas at the meal's position. Every failure is passed
// over: a page that is not the menu page is left as it is.
void Form12::transferMeal(int position, std::u16string_view column) {
    kit::skip([this] { moveToFirstRecord(); });
    QVariantList values;
    kit::skip([&] {
        const store::Recordset& rows = Adodc1.Recordset();
        const std::size_t ordinal = rows.ordinalOf(column);
        for (long row = 1; row <= rows.recordCount(); ++row) {
            const jet::Value value = rows.valueAt(row, ordinal);
            values.append(value.isNull() ? QVariant() : QVariant(kit::displayText(value)));
        }
    });
    kit::skip([&] { writeMeal(*wb, position, values); });
}

void Form12::moveToFirstRecord() {
    Adodc1.Recordset().moveFirst();
    Adodc1.announce();
}

}  // namespace portal
