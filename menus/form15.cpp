#include "menus/form15.h"

#include <cmath>
#include <stdexcept>

#include <QCloseEvent>
#include <QSignalBlocker>

#include "menus/school_year.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"
#include "shell/kit/resizer.h"
#include "shell/months.h"
#include "shell/program_state.h"
#include "store/data_error.h"
#include "store/number_text.h"
#include "store/write_scope.h"

namespace menus {
namespace {

// The Excel ODBC driver's connection, DefaultDir left empty on purpose; the
// driver decides each column's type from the first eight data rows.
QString workbookConnectionString(const QString& path) {
    return QStringLiteral(
               "Provider=MSDASQL.1;Persist Security Info=False;Extended Properties=DBQ=") +
           path +
           QStringLiteral(
               ";DefaultDir=;Driver={Microsoft Excel Driver (*.xls)};DriverId=790;FIL=excel "
               "8.0;MaxBufferSize=2048;MaxScanRows=8;PageTimeout=5;ReadOnly=1;SafeTransactions=0;"
               "Threads=3;UID=admin;UserCommitSync=Yes;");
}

// The runtime's CInt of a field: a number rounded half to even, a numeric
// text read as one. Null and texts that are no number fail, and so does a
// number outside the 16-bit range.
int integerOf(const jet::Value& value) {
    double number = 0;
    switch (value.kind()) {
        case jet::Value::Kind::Integer:
            number = value.asInteger();
            break;
        case jet::Value::Kind::Double:
            number = value.asDouble();
            break;
        case jet::Value::Kind::Text: {
            const auto read = store::readNumber(value.asText());
            if (!read)
                throw store::DataError("type mismatch");
            number = read->toDouble();
            break;
        }
        default:
            throw store::DataError("invalid use of Null or a value that is no number");
    }
    const double rounded = std::nearbyint(number);
    if (!(rounded >= -32768 && rounded <= 32767))
        throw std::overflow_error("overflow");
    return static_cast<int>(rounded);
}

QString filterOfMonth(int month) {
    return QStringLiteral(" ay=") + QString::number(month);
}

void fillMonths(kit::ComboBox* combo, const QString& startingText) {
    combo->setEditable(true);
    combo->addItems(schoolYearMonths());
    combo->setCurrentIndex(-1);
    combo->setEditText(startingText);
}

}  // namespace

Form15::Form15()
    : Adodc1(QString(), QStringLiteral("  Excel Menü")),
      Adodc2(QStringLiteral("MENULER"), QStringLiteral(" Program Menü")) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Exce'den veri aktarma"));
    setAccessibleName(windowTitle());
    Adodc1.setObjectName(QStringLiteral("Adodc1"));
    Adodc2.setObjectName(QStringLiteral("Adodc2"));
    Adodc1.setParent(this);
    Adodc2.setParent(this);

    Combo2 = new kit::ComboBox(this);
    Combo2->setObjectName(QStringLiteral("Combo2"));
    Combo2->setAccessibleName(QStringLiteral("Aktarılacak ay"));
    fillMonths(Combo2, QStringLiteral("Ay Seçimi.."));
    Combo2->setGeometry(8, 8, 200, 26);
    Combo1 = new kit::ComboBox(this);
    Combo1->setObjectName(QStringLiteral("Combo1"));
    fillMonths(Combo1, QStringLiteral("Aktarılacak ay"));
    Combo1->hide();
    Command2 = new QPushButton(QStringLiteral("AKTARIM YAP"), this);
    Command2->setObjectName(QStringLiteral("Command2"));
    Command2->setGeometry(220, 6, 160, 30);
    Command1 = new QPushButton(QStringLiteral("Bağlantı"), this);
    Command1->setObjectName(QStringLiteral("Command1"));
    Command1->hide();

    Adodc1Bar = new kit::NavigationBar(Adodc1, this);
    Adodc1Bar->setObjectName(QStringLiteral("Adodc1Bar"));
    Adodc1Bar->setGeometry(8, 44, 440, 26);
    DataGrid1 = new kit::DataGrid(this);
    DataGrid1->setObjectName(QStringLiteral("DataGrid1"));
    DataGrid1->setAccessibleName(QStringLiteral("Excel menüsü"));
    DataGrid1->setGeometry(8, 72, 440, 540);
    Adodc2Bar = new kit::NavigationBar(Adodc2, this);
    Adodc2Bar->setObjectName(QStringLiteral("Adodc2Bar"));
    Adodc2Bar->setGeometry(456, 44, 436, 26);
    DataGrid2 = new kit::DataGrid(this);
    DataGrid2->setObjectName(QStringLiteral("DataGrid2"));
    DataGrid2->setDataSource(&Adodc2);
    DataGrid2->setAccessibleName(QStringLiteral("Program menüsü"));
    DataGrid2->setColumns(
        {kit::gridColumn(QStringLiteral("GÜN"), QStringLiteral("gun"), 500),
         kit::gridColumn(QStringLiteral("SABAH"), QStringLiteral("sabah")),
         kit::gridColumn(QStringLiteral("ÖĞLEN"), QStringLiteral("oglen")),
         kit::gridColumn(QStringLiteral("AKŞAM"), QStringLiteral("aksam")),
         kit::gridColumn(QStringLiteral("ARA ÖĞÜN"), QStringLiteral("ara_ogun"))});
    DataGrid2->setGeometry(456, 72, 436, 540);

    const auto hidden = [this](const char* name, const QString& role) {
        auto* box = new QLineEdit(this);
        box->setObjectName(QString::fromLatin1(name));
        box->setAccessibleName(role);
        box->hide();
        return box;
    };
    Text1 = hidden("Text1", QStringLiteral("Ayın gün sayısı"));
    Text2 = hidden("Text2", QStringLiteral("Ayın numarası"));
    Text3 = hidden("Text3", QStringLiteral("Excel dosyası"));
    Text4 = hidden("Text4", QStringLiteral("Sayfa adı"));

    kit::on(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    kit::on(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    kit::on(Combo2, &kit::ComboBox::Click, this, [this] { Combo2_Click(); });
    resize(900, 620);
    Resizer1 = new kit::Resizer(this);
    Resizer1->setObjectName(QStringLiteral("Resizer1"));
    kit::openDataControl(Adodc2);
}

void Form15::Command1_Click() {
    const QString sheet = Text4->text();
    const QString path = Text3->text();
    DataGrid1->setDataSource(nullptr);
    Adodc1.setConnectionString(workbookConnectionString(path));
    Adodc1.setRecordSource(QStringLiteral("`") + sheet + QStringLiteral("$`"));
    DataGrid1->setDataSource(&Adodc1);
    Adodc1.Refresh();

    // From here a failing statement is passed over.
    const int widths[] = {300, 400, 3000, 3000, 2000, 1100};
    for (int column = 0; column < 6; ++column)
        kit::skip([&] { DataGrid1->setColumnWidthTwips(column, widths[column]); });
    int month = 0;
    kit::skip([&] { month = integerOf(Adodc1.Recordset().field(u"ay")); });
    if (month >= 1 && month <= 12)
        Combo1->setCurrentIndex(positionOfMonth(month));
    // Setting the list index raises Combo2's Click, whose failures fall
    // under this routine's skipping.
    kit::skip([&] {
        {
            const QSignalBlocker quiet(Combo2);
            Combo2->setListIndex(Combo1->ListIndex());
        }
        Combo2_Click();
    });
    kit::skip([&] { Adodc2.Recordset().setFilter(filterOfMonth(month).toStdU16String()); });
}

void Form15::Combo2_Click() {
    const int month = monthAtPosition(Combo2->ListIndex());
    Text2->setText(QString::number(month));
    Text1->setText(QString::number(shell::aygunu(month)));
    Adodc1.Recordset().setFilter(filterOfMonth(month).toStdU16String());
    Adodc2.Recordset().setFilter(filterOfMonth(month).toStdU16String());
}

void Form15::Command2_Click() {
    if (Adodc2.Recordset().recordCount() >= 1) {
        const QString question = QStringLiteral("Programda kayıtlı ") + Combo2->currentText() +
                                 QStringLiteral(" ayı menüsü silinecek.\nDevam edilsin mi?");
        if (kit::MsgBox(question, 4 + 32) == kit::vbNo)
            return;
        // No transaction: once the month's rows are deleted they are gone,
        // whatever fails after.
        kit::skip([] { shell::baglantiac(); });
        kit::skip([this] {
            shell::kayit = std::make_unique<store::Recordset>();
            shell::kayit->open(QStringLiteral("delete * from MENULER where ay=")
                                   .append(Text2->text())
                                   .toStdU16String(),
                               *shell::baglanti);
        });
        kit::skip([] { shell::kayit->close(); });
        kit::skip([] { shell::baglanti->Close(); });
        shell::kayit.reset();
        shell::baglanti.reset();
        // The new record set has no filter: the grid shows every month.
        kit::skip([this] { Adodc2.Refresh(); });
        kit::skip([this] { Adodc2.Refresh(); });
        kit::skip([this] { Adodc1.Recordset().moveFirst(); });
        copyRows(true);
    } else {
        // From the sheet's present row, without rewinding.
        copyRows(false);
    }
    kit::MsgBox(QStringLiteral("Excel menüsü programa aktarıldı."), 64);
}

// One new row of MENULER for each row of the sheet under its filter, in
// sheet order. Every statement that fails is passed over, so a row that
// cannot be stored is simply missing. The second way names the noon column
// the other way round (ogle from oglen), which neither side has: that
// assignment always fails and the noon meal stays unset.
void Form15::copyRows(bool noonFromOgle) {
    store::Recordset& sheet = Adodc1.Recordset();
    store::Recordset& menu = Adodc2.Recordset();
    long count = 0;
    kit::skip([&] { count = sheet.recordCount(); });
    const std::u16string noonTarget = noonFromOgle ? u"oglen" : u"ogle";
    const std::u16string noonSource = noonFromOgle ? u"ogle" : u"oglen";
    const std::pair<std::u16string, std::u16string> assignments[] = {
        {u"ay", u"ay"},           {u"gun", u"gun"},     {u"sabah", u"sabah"},
        {noonTarget, noonSource}, {u"aksam", u"aksam"}, {u"ara_ogun", u"ara_ogun"}};
    std::optional<store::WriteScope> scope;
    kit::skip([&] { scope.emplace(menu); });
    for (long row = 0; row < count; ++row) {
        kit::skip([&] { menu.addNew(); });
        for (const auto& assignment : assignments)
            kit::skip([&] { menu.setField(assignment.first, sheet.field(assignment.second)); });
        kit::skip([&] { menu.update(); });
        kit::skip([&] { sheet.moveNext(); });
    }
    if (scope)
        kit::skip([&] { scope->commit(); });
    Adodc2.announce();
}

void Form15::closeEvent(QCloseEvent* event) {
    kit::writePendingEdits(this);
    event->accept();
}

}  // namespace menus
